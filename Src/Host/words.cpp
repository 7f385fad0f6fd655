#include "Host/words.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <numeric>
#include <utility>

namespace vantle {

namespace {

/// What other programs and film makers call a transition, and the names of those that look like it here, the
/// nearest first. A name that a catalogue does not have is passed over.
struct Meaning {
    std::array<std::string_view, 6> words;
    std::array<std::string_view, 4> names;
};

constexpr Meaning meanings[] = {
    {{"none", "straight", "jump", "nothing"}, {"cut"}},
    {{"any", "shuffle", "surprise"}, {"random"}},
    {{"crossfade", "fade", "mix", "blend", "melt"}, {"fade", "Dissolve 2", "Zoom"}},
    {{"black", "dip", "blackout"}, {"fade-black", "fade-white"}},
    {{"white", "flash"}, {"fade-white", "fade-black"}},
    {{"dissolve"}, {"fade", "Dissolve 2"}},
    {{"pixel", "sparkle", "noise", "grain", "dust"}, {"Dissolve 2"}},
    {{"wipe", "smooth"}, {"Linear Wipe Right", "Linear Wipe Down", "Blind_1"}},
    {{"slide", "push", "cover", "reveal"}, {"Row_cos_slide", "Topple", "Deposit_up"}},
    {{"circle", "iris", "round", "disc", "ellipse", "oval"},
     {"Round_zoom_out", "Round_zoom_in", "TrCirqueZoomIn", "TrRoundZoomIn2"}},
    {{"rectangle", "box", "square"}, {"Rect_zoom_out", "Rect_zoom_in", "Grid_zoom_in"}},
    {{"diamond", "rhombus"}, {"Diamond_zoom_out", "Diamond_zoom_in"}},
    {{"clock", "radial", "angular", "pie"}, {"sweep_clockwise", "sweep_anti_clockwise"}},
    {{"venetian", "jalousie", "blinds", "slat"}, {"Horizontal_shutter", "Vertical_shutter", "Blind_1"}},
    {{"barn", "door", "curtain", "gate", "open"}, {"Col_split", "Row_split", "Cross_split"}},
    {{"close"}, {"Col_merge", "Row_merge", "Cross_merge"}},
    {{"checker", "chess", "mosaic", "tile"}, {"Cross_shutter_2", "Grid_zoom_in", "Grid_zoom_out"}},
    {{"swirl", "spin", "twirl", "rotate", "whirl", "vortex"}, {"Twrl", "Roll_clockwise"}},
    {{"page", "peel", "swing", "hinge"}, {"Roll_clockwise", "Roll_anti_clockwise"}},
    {{"windmill", "propeller", "fan", "wheel"}, {"Pinwheel", "sweep_clockwise"}},
    {{"plus"}, {"Cross_split", "Cross_merge", "TrCrossSplit2"}},
    {{"diagonal", "slant"}, {"Skew_right_split", "Skew_left_split", "Skew_left_merge", "Skew_right_merge"}},
    {{"squeeze", "squash", "fall", "drop"}, {"Topple", "Deposit_up"}},
    {{"stripe", "bar", "comb", "interlace"}, {"Row_vantle", "Col_vantle", "Cross_vantle"}},
    {{"ripple", "ring", "target"}, {"TrCirqueZoomIn"}},
    {{"wave", "water"}, {"Row_cos_vantle", "Row_cos_slide"}},
    {{"magnify", "scale", "grow"}, {"Zoom", "Rect_zoom_out", "Round_zoom_out"}},
};

constexpr std::size_t most = 3;

std::string lower(std::string_view text) {
    std::string result(text);
    std::ranges::transform(result, result.begin(), [](unsigned char c) { return std::tolower(c); });
    return result;
}

bool isLetter(char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0; }

/// Runs of letters and digits, without case.
std::vector<std::string> wordsIn(std::string_view text) {
    const std::string letters = lower(text);
    std::vector<std::string> words;
    for (auto at = std::ranges::find_if(letters, isLetter); at != letters.end();) {
        const auto end = std::find_if_not(at, letters.end(), isLetter);
        words.emplace_back(at, end);
        at = std::find_if(end, letters.end(), isLetter);
    }
    return words;
}

bool isCalled(const Transition& transition, std::string_view name) {
    return transition.name == name || transition.function == name;
}

void addOnce(std::vector<const Transition*>& found, const Transition& transition) {
    if (std::ranges::find(found, &transition) == found.end()) found.push_back(&transition);
}

/// What the longest word of the table in a text means: also as a part of others, as in "wipeleft".
const Meaning* meaningOf(std::string_view text) {
    std::string letters = lower(text);
    std::erase_if(letters, [](char c) { return !isLetter(c); });
    const Meaning* meant = nullptr;
    std::size_t longest = 0;
    for (const Meaning& meaning : meanings)
        for (const std::string_view word : meaning.words) {
            // Short words are parts of too many others.
            const bool holds = word.size() > 3 ? letters.find(word) != std::string::npos : letters == word;
            if (!holds || word.size() <= longest) continue;
            meant = &meaning;
            longest = word.size();
        }
    return meant;
}

}  // namespace

std::size_t editsBetween(std::string_view a, std::string_view b) {
    const std::string from = lower(a);
    const std::string to = lower(b);
    std::vector<std::size_t> row(to.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < from.size(); ++i) {
        std::size_t diagonal = std::exchange(row[0], i + 1);
        for (std::size_t j = 0; j < to.size(); ++j) {
            const std::size_t replaced = diagonal + (from[i] != to[j] ? 1 : 0);
            diagonal = std::exchange(row[j + 1], std::min({row[j] + 1, row[j + 1] + 1, replaced}));
        }
    }
    return row.back();
}

std::vector<const Transition*> likely(std::span<const Transition> catalogue, std::string_view wanted) {
    const Transition* nearest = nullptr;
    std::size_t fewest = std::max<std::size_t>(2, wanted.size() / 3) + 1;
    for (const Transition& transition : catalogue)
        for (const std::string& text : {transition.name, transition.guid, transition.function})
            if (const std::size_t edits = editsBetween(wanted, text); !text.empty() && edits < fewest) {
                fewest = edits;
                nearest = &transition;
            }
    std::vector<const Transition*> found;
    if (nearest != nullptr && fewest < 2) found.push_back(nearest);
    if (const Meaning* const meaning = meaningOf(wanted))
        for (const std::string_view name : meaning->names)
            for (const Transition& transition : catalogue)
                if (!name.empty() && isCalled(transition, name)) addOnce(found, transition);
    if (found.empty() && nearest != nullptr) found.push_back(nearest);
    if (found.empty())
        for (const Transition& transition : catalogue)
            if (isFoundBy(transition, wanted)) found.push_back(&transition);
    found.resize(std::min(found.size(), most));
    return found;
}

std::vector<std::string_view> wordsFor(const Transition& transition) {
    std::vector<std::string_view> words;
    for (const Meaning& meaning : meanings) {
        const bool isMeant = std::ranges::any_of(meaning.names, [&](std::string_view name) {
            return !name.empty() && isCalled(transition, name);
        });
        if (!isMeant) continue;
        std::ranges::copy_if(meaning.words, std::back_inserter(words),
                             [](std::string_view word) { return !word.empty(); });
    }
    return words;
}

bool isFoundBy(const Transition& transition, std::string_view search) {
    const std::string wanted = lower(search);
    for (const std::string& name : {transition.name, transition.function})
        if (!wanted.empty() && lower(name).find(wanted) != std::string::npos) return true;
    std::string text = transition.name + " " + transition.family + " " + transition.sentence;
    for (const std::string_view word : wordsFor(transition)) text.append(" ").append(word);
    const std::vector<std::string> words = wordsIn(text);
    return std::ranges::all_of(wordsIn(wanted), [&](const std::string& start) {
        return std::ranges::any_of(words, [&](const std::string& word) { return word.starts_with(start); });
    });
}

}  // namespace vantle
