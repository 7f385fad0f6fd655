#include "reading/operands.h"

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <filesystem>
#include <optional>
#include <set>
#include <string_view>
#include <utility>

#include "Host/error.h"
#include "media/orientation.h"

namespace vantle {

namespace {

constexpr const char* inputSettings = "in, out, hold, fit, turn, flip, motion, mute, volume";

/// `key=value` when the key is one of the closed set.
std::optional<std::pair<std::string, std::string>> settingIn(const std::string& operand) {
    const std::size_t middle = operand.find('=');
    if (middle == std::string::npos) return {};
    const std::string key = operand.substr(0, middle);
    for (const std::string_view known :
         {"in", "out", "hold", "fit", "turn", "flip", "motion", "mute", "volume", "duration"})
        if (key == known) return std::pair{key, operand.substr(middle + 1)};
    return {};
}

/// What looks like a setting and is no file either was meant as one.
void refuseUnknownSetting(const std::string& operand) {
    const std::size_t middle = operand.find_first_not_of("abcdefghijklmnopqrstuvwxyz-");
    std::error_code ignored;
    if (middle < 2 || middle == std::string::npos || operand[middle] != '=' ||
        operand.find('%') != std::string::npos || std::filesystem::exists(operand, ignored))
        return;
    throw UsageError(operand + ": neither a file nor a setting; an input has " + inputSettings +
                     ", a transition duration");
}

Time timeIn(const std::string& setting, const std::string& value) {
    const std::optional<Time> time = parseTime(value);
    if (!time) throw UsageError(setting + ": \"" + value + "\" is no time (as 2.5, 1:02.5, 500ms or 12f)");
    return *time;
}

Fit fitIn(const std::string& setting, const std::string& value) {
    const std::optional<Fit> fit = parseFit(value);
    if (!fit) throw UsageError(setting + ": \"" + value + "\" is none of contain, cover, stretch, blur");
    return *fit;
}

Orientation turnIn(const std::string& setting, const std::string& value) {
    for (const auto& [degrees, turns] : {std::pair{"90", 1}, {"180", 2}, {"270", 3}})
        if (value == degrees) return {turns, false};
    throw UsageError(setting + ": \"" + value + "\" is none of 90, 180, 270 (degrees clockwise)");
}

Orientation flipIn(const std::string& setting, const std::string& value) {
    if (value != "h" && value != "v")
        throw UsageError(setting + ": \"" + value +
                         "\" is neither h, which exchanges left and right, nor v, top and bottom");
    return {value == "h" ? 2 : 0, true};
}

bool yesIn(const std::string& setting, const std::string& value) {
    if (value != "yes" && value != "no") throw UsageError(setting + ": \"" + value + "\" is not yes or no");
    return value == "yes";
}

double volumeIn(const std::string& setting, const std::string& value) {
    const std::optional<double> volume = parseVolume(value);
    if (!volume)
        throw UsageError(setting + ": \"" + value + "\" is no volume (as 0.5 or -6dB, at most 10 or 20dB)");
    return *volume;
}

void set(Shot& shot, const std::string& operand, const std::string& key, const std::string& value) {
    if (key == "in")
        shot.in = timeIn(operand, value);
    else if (key == "out")
        shot.out = timeIn(operand, value);
    else if (key == "hold")
        shot.hold = timeIn(operand, value);
    else if (key == "fit")
        shot.fit = fitIn(operand, value);
    else if (key == "turn")
        shot.turn = inTurn(shot.turn, turnIn(operand, value));
    else if (key == "flip")
        shot.turn = inTurn(shot.turn, flipIn(operand, value));
    else if (key == "motion")
        shot.motion = yesIn(operand, value);
    else if (key == "mute")
        shot.mute = yesIn(operand, value);
    else if (key == "volume")
        shot.volume = volumeIn(operand, value);
    else
        throw UsageError(operand + " belongs after a transition (+NAME); after an input: " + inputSettings);
}

/// A transition as it was asked for: `cut` and `random` in any case of letters, as all others.
std::string named(const std::string& transition) {
    std::string word = transition;
    std::ranges::transform(word, word.begin(), [](unsigned char c) { return std::tolower(c); });
    return word == "cut" || word == "random" ? word : transition;
}

/// Compares as a person counts: digits by the number they make, letters without case.
bool naturallyBefore(const std::string& a, const std::string& b) {
    const auto isDigit = [](char c) { return std::isdigit(static_cast<unsigned char>(c)) != 0; };
    const auto lower = [](char c) { return std::tolower(static_cast<unsigned char>(c)); };
    auto i = a.begin();
    auto j = b.begin();
    while (i != a.end() && j != b.end()) {
        if (isDigit(*i) && isDigit(*j)) {
            const auto number = [&](auto& at, const std::string& text) {
                while (at != text.end() && *at == '0') ++at;
                const auto end = std::find_if_not(at, text.end(), isDigit);
                return std::string_view(std::exchange(at, end), end);
            };
            const std::string_view first = number(i, a);
            const std::string_view second = number(j, b);
            if (first.size() != second.size()) return first.size() < second.size();
            if (first != second) return first < second;
        } else if (lower(*i) != lower(*j)) {
            return lower(*i) < lower(*j);
        } else {
            ++i;
            ++j;
        }
    }
    if (i == a.end() && j == b.end()) return a < b;
    return i == a.end();
}

}  // namespace

std::vector<std::string> parseOperands(FilmRequest& film, const std::vector<std::string>& operands,
                                       const std::vector<std::string>& transitions) {
    bool afterMeeting = false;
    for (const std::string& operand : operands) {
        if (const auto setting = settingIn(operand)) {
            const auto& [key, value] = *setting;
            if (film.shots.empty())
                throw UsageError(operand + " stands before all inputs (a file of this name is ./" + operand +
                                 ")");
            if (!afterMeeting)
                set(film.shots.back(), operand, key, value);
            else if (key == "duration")
                film.meetings.back().duration = timeIn(operand, value);
            else
                throw UsageError(operand + " belongs after an input; after a transition: duration");
        } else if (operand.starts_with('+')) {
            if (film.shots.empty() || afterMeeting)
                throw UsageError(operand + " must stand between two inputs (a file of this name is ./" +
                                 operand + ")");
            film.meetings.push_back({named(operand.substr(1)), {}});
            afterMeeting = true;
        } else {
            refuseUnknownSetting(operand);
            if (!film.shots.empty() && !afterMeeting) film.meetings.push_back({});
            film.shots.push_back({.file = operand});
            afterMeeting = false;
        }
    }
    if (afterMeeting)
        throw UsageError("+" + film.meetings.back().transition + " must stand between two inputs");
    if (film.shots.size() < 2) throw UsageError("a film is made of two inputs or more");
    std::set<std::size_t> taken;
    for (std::size_t i = 0; i < film.meetings.size(); ++i) {
        if (!film.meetings[i].transition.empty()) continue;
        if (transitions.empty()) {
            film.meetings[i].transition = "fade";
            continue;
        }
        const std::size_t turn = i % transitions.size();
        film.meetings[i].transition = named(transitions[turn]);
        taken.insert(turn);
    }
    std::vector<std::string> notes;
    for (std::size_t i = 0; i < transitions.size(); ++i)
        if (!taken.contains(i))
            notes.push_back("-t " + transitions[i] + " is not used: no join is left for it");
    return notes;
}

bool isSetting(const std::string& operand) { return settingIn(operand).has_value(); }

void setMusic(Music& music, const std::string& operand) {
    const std::size_t middle = operand.find('=');
    const std::string key = operand.substr(0, middle);
    const std::string value = operand.substr(middle + 1);
    if (key == "in")
        music.in = timeIn(operand, value);
    else if (key == "out")
        music.out = timeIn(operand, value);
    else if (key == "volume")
        music.volume = volumeIn(operand, value);
    else
        throw UsageError(operand + " belongs after an input; after --music FILE: in, out, volume");
}

void refuseMeetings(const std::vector<std::string>& operands) {
    const auto meeting =
        std::ranges::find_if(operands, [](const std::string& operand) { return operand.starts_with('+'); });
    if (meeting != operands.end())
        throw UsageError("--sort moves the inputs, so that " + *meeting + " has no place; give -t instead");
}

void sortNaturally(FilmRequest& film, const std::vector<std::string>& operands) {
    refuseMeetings(operands);
    std::ranges::stable_sort(film.shots, naturallyBefore, &Shot::file);
}

}  // namespace vantle
