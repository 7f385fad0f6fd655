#include "rendering/plan.h"

#include <algorithm>
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

/// How a part's pictures lie on the canvas.
struct Placement {
    double scale = 1.0;
    const char* bars = "";     ///< where
    const char* cutOff = "";   ///< what of them
    bool isStretched = false;  ///< more one way than the other
    bool isBlurred = false;    ///< itself, in place of bars
};

Placement placementOf(const Part& part, Size size, Size canvas) {
    const double across = static_cast<double>(canvas.width) / size.width;
    const double down = static_cast<double>(canvas.height) / size.height;
    const bool isOther = std::abs(across / down - 1.0) > 0.005;  // a pixel for an even size is none
    switch (part.fit) {
        case Fit::cover:
            return {std::max(across, down), "", !isOther ? "" : across < down ? "sides" : "top and bottom"};
        case Fit::stretch:
            return {std::max(across, down), "", "", isOther};
        default:
            return {std::min(across, down),
                    !isOther        ? ""
                    : across > down ? "left and right"
                                    : "above and below",
                    "", false, part.fit == Fit::blur};
    }
}

/// What a person sees of it; empty when nothing is lost.
std::string inWords(const Placement& placement) {
    std::string text;
    const auto add = [&](const std::string& words) { text += (text.empty() ? "" : ", ") + words; };
    if (placement.scale > 1.01) {
        char times[48] = "";
        std::snprintf(times, sizeof times, "enlarged %.3g times", placement.scale);
        add(times);
    }
    if (*placement.bars != '\0')
        add((placement.isBlurred ? "blurred " : "bars ") + std::string(placement.bars));
    if (*placement.cutOff != '\0') add(std::string(placement.cutOff) + " cut off");
    if (placement.isStretched) add("stretched");
    return text;
}

/// As "1 frame" or "2 frames".
std::string counted(std::int64_t frames) {
    return std::to_string(frames) + (frames == 1 ? " frame" : " frames");
}

/// As exact as an estimate is.
std::string inWords(const Estimate& estimate) {
    const auto written = [](const char* form, double value) {
        char text[32] = "";
        std::snprintf(text, sizeof text, form, value);
        return std::string(text);
    };
    const double time = estimate.seconds;
    const auto bytes = static_cast<double>(estimate.bytes);
    return (time >= 5400.0 ? written("about %.1f hours", time / 3600.0)
            : time >= 90.0 ? written("about %.0f minutes", time / 60.0)
            : time >= 1.0  ? written("about %.0f s", time)
                           : "about a second") +
           " to render here, " +
           (bytes >= 1e9   ? written("%.1f GB", bytes / 1e9)
            : bytes >= 1e6 ? written("%.0f MB", bytes / 1e6)
                           : written("%.0f kB", bytes / 1e3));
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
    const Placement placement = placementOf(part, film.sourceOf(part).size, film.canvas.size);
    if (placement.scale != 1.0) entry["scale"] = inThousandths(placement.scale);
    if (*placement.bars != '\0') entry[placement.isBlurred ? "blurred" : "bars"] = placement.bars;
    if (*placement.cutOff != '\0') entry["cutOff"] = placement.cutOff;
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

void printJson(const CopyPlan& copies, const std::optional<Estimate>& estimate,
               const std::vector<std::string>& notes) {
    const Film& film = copies.film;
    Json plan;
    plan["frames"] = film.frames();
    plan["seconds"] = inThousandths(seconds(film.frames(), film));
    plan["width"] = film.canvas.size.width;
    plan["height"] = film.canvas.size.height;
    plan["rate"] = std::to_string(film.canvas.rate.num) + "/" + std::to_string(film.canvas.rate.den);
    if (film.fadeIn > 0) plan["fadeIn"] = film.fadeIn;
    if (film.fadeOut > 0) plan["fadeOut"] = film.fadeOut;
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
    plan["audioWhy"] = copies.audioWhy;
    if (estimate)
        plan["estimate"] = {{"seconds", inThousandths(estimate->seconds)},
                            {"bytes", estimate->bytes},
                            {"framesTried", estimate->frames}};
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

void printPlan(const CopyPlan& plan, const std::optional<Estimate>& estimate,
               const std::vector<std::string>& notes, bool json) {
    if (json) return printJson(plan, estimate, notes);
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
        if (const std::string how = inWords(placementOf(part, film.sourceOf(part).size, film.canvas.size));
            !how.empty())
            what += ", " + how;
        printRow(film, part.start, part.frames, what);
        if (i == film.joins.size()) break;
        const Join& join = film.joins[i];
        if (join.transition)
            printRow(film, join.start, join.frames, "  + " + join.transition->shown);
        else
            std::printf("%15s  %9s  %9s    + cut\n", "", "", "");
    }
    std::printf("\n%s, %s, %dx%d, %g frames per second\n", counted(film.frames()).c_str(),
                clock(seconds(film.frames(), film)).c_str(), film.canvas.size.width, film.canvas.size.height,
                av_q2d(film.canvas.rate));
    if (film.fadeIn > 0) std::printf("Fades in over %s\n", counted(film.fadeIn).c_str());
    if (film.fadeOut > 0) std::printf("Fades out over %s\n", counted(film.fadeOut).c_str());
    if (const std::int64_t copied = plan.copied(); copied > 0) {
        std::printf("Copied: %s (%.1f %%), %s; the others are encoded\n", counted(copied).c_str(),
                    100.0 * share(copied, film), copiedRanges(plan.stretches).c_str());
        if (plan.orientation() != Orientation{})
            std::printf("Stored as %s was held, and shown upright\n", plan.modelSource().name.c_str());
    }
    std::set<std::string> told;
    // That stills and generated inputs are encoded is no news.
    for (std::size_t i = 0; i < film.parts.size(); ++i)
        if (film.sourceOf(film.parts[i]).isClip() && !plan.why[i].empty() && told.insert(plan.why[i]).second)
            std::printf("Not copied: %s\n", plan.why[i].c_str());
    for (const std::string& why : plan.audioWhy) std::printf("Audio not copied: %s\n", why.c_str());
    if (estimate)
        std::printf("Estimate, from %s encoded on trial: %s\n", counted(estimate->frames).c_str(),
                    inWords(*estimate).c_str());
    for (const std::string& note : notes) std::printf("Note: %s\n", note.c_str());
}

}  // namespace vantle
