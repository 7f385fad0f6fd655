#include "rendering/plan.h"

#include <cmath>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <set>
#include <utility>

namespace vantle {

namespace {

using Json = nlohmann::ordered_json;

double seconds(std::int64_t frames, const Film& film) {
    return static_cast<double>(frames) / av_q2d(film.canvas.rate);
}

/// To a thousandth: what a person or another program goes on with.
double inThousandths(double value) { return std::round(value * 1000.0) / 1000.0; }

/// As 1:02.50.
std::string clock(double time) {
    const auto hundredths = static_cast<long long>(std::llround(time * 100.0));
    char text[48] = "";
    std::snprintf(text, sizeof text, "%lld:%02lld.%02lld", hundredths / 6000, hundredths / 100 % 60,
                  hundredths % 100);
    return text;
}

Json inputEntry(const CopyPlan& plan, std::size_t number) {
    const Film& film = plan.film;
    const Part& part = film.parts[number];
    Json entry = {{"file", film.sourceOf(part).name},
                  {"in", inThousandths(seconds(part.first, film))},
                  {"out", inThousandths(seconds(part.first + part.frames, film))},
                  {"first", part.start},
                  {"last", part.end() - 1},
                  {"copied", plan.copiedOf(number)}};
    if (!plan.why[number].empty()) entry["why"] = plan.why[number];
    return {{"input", std::move(entry)}};
}

Json joinEntry(const Join& join) {
    const std::string name = join.transition ? join.transition->shown : "cut";
    return {{"join", {{"transition", name}, {"first", join.start}, {"frames", join.frames}}}};
}

double share(std::int64_t frames, const Film& film) {
    return static_cast<double>(frames) / static_cast<double>(film.frames());
}

/// Which frames are copied, as "0-99, 130-299".
std::string copiedRanges(const std::vector<Stretch>& stretches) {
    std::string text;
    for (const Stretch& stretch : stretches)
        if (stretch.part)
            text += (text.empty() ? "" : ", ") + std::to_string(stretch.first) + "-" +
                    std::to_string(stretch.end() - 1);
    return text;
}

void printJson(const CopyPlan& copies, const std::vector<std::string>& notes) {
    const Film& film = copies.film;
    Json plan;
    plan["frames"] = film.frames();
    plan["seconds"] = inThousandths(seconds(film.frames(), film));
    plan["width"] = film.canvas.size.width;
    plan["height"] = film.canvas.size.height;
    plan["rate"] = std::to_string(film.canvas.rate.num) + "/" + std::to_string(film.canvas.rate.den);
    Json& timeline = plan["timeline"] = Json::array();
    for (std::size_t i = 0; i < film.parts.size(); ++i) {
        timeline.push_back(inputEntry(copies, i));
        if (i < film.joins.size()) timeline.push_back(joinEntry(film.joins[i]));
    }
    Json& copied = plan["copied"] = Json::array();
    for (const Stretch& stretch : copies.stretches)
        if (stretch.part) copied.push_back({{"first", stretch.first}, {"frames", stretch.frames}});
    plan["copiedShare"] = inThousandths(share(copies.copied(), film));
    if (const Orientation held = copies.orientation(); held != Orientation{})
        plan["orientation"] = {{"turn", 90 * held.quarterTurns}, {"mirrored", held.mirrored}};
    plan["warnings"] = notes;
    // A file's name need not be text.
    std::puts(plan.dump(2, ' ', false, Json::error_handler_t::replace).c_str());
}

void printRow(const Film& film, std::int64_t start, std::int64_t frames, const std::string& what) {
    const std::string range = std::to_string(start) + "-" + std::to_string(start + frames - 1);
    std::printf("%15s  %9s  %9s  %s\n", range.c_str(), clock(seconds(start, film)).c_str(),
                clock(seconds(frames, film)).c_str(), what.c_str());
}

}  // namespace

void printPlan(const CopyPlan& plan, const std::vector<std::string>& notes, bool json) {
    if (json) return printJson(plan, notes);
    const Film& film = plan.film;
    std::printf("%15s  %9s  %9s\n", "FRAMES", "FROM", "LENGTH");
    for (std::size_t i = 0; i < film.parts.size(); ++i) {
        const Part& part = film.parts[i];
        std::string what = film.sourceOf(part).name;
        if (film.sourceOf(part).still)
            what += " (still)";
        else if (!film.sourceOf(part).endless)
            what += ", " + clock(seconds(part.first, film)) + " to " +
                    clock(seconds(part.first + part.frames, film));
        printRow(film, part.start, part.frames, what);
        if (i == film.joins.size()) break;
        const Join& join = film.joins[i];
        if (join.transition)
            printRow(film, join.start, join.frames, "  + " + join.transition->shown);
        else
            std::printf("%15s  %9s  %9s    + cut\n", "", "", "");
    }
    std::printf("\n%lld frames, %s, %dx%d, %g frames per second\n", static_cast<long long>(film.frames()),
                clock(seconds(film.frames(), film)).c_str(), film.canvas.size.width, film.canvas.size.height,
                av_q2d(film.canvas.rate));
    if (const std::int64_t copied = plan.copied(); copied > 0) {
        std::printf("Copied: %lld frames (%.1f %%), %s; the others are encoded\n",
                    static_cast<long long>(copied), 100.0 * share(copied, film),
                    copiedRanges(plan.stretches).c_str());
        if (plan.orientation() != Orientation{})
            std::printf("Stored as %s was held, and shown upright\n", plan.modelSource().name.c_str());
    }
    std::set<std::string> told;
    for (const std::string& why : plan.why)
        if (!why.empty() && told.insert(why).second) std::printf("Not copied: %s\n", why.c_str());
    for (const std::string& note : notes) std::printf("Note: %s\n", note.c_str());
}

}  // namespace vantle
