#include "overview/gallery.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <nlohmann/json.hpp>
#include <string_view>

#include "Host/words.h"
#include "output/output_kind.h"
#include "output/staged_folder.h"
#include "overview/page_files.h"
#include "overview/sprite.h"
#include "system/interrupt.h"

namespace vantle {

namespace {

using Json = nlohmann::ordered_json;

constexpr std::string_view dataFile = "transitions.js";
constexpr std::string_view framesFolder = "frames";
constexpr std::string_view folderTitle =
    "Made by vantle gallery, which with --force replaces these files and no others.";

/// Evenly spread from start to end, in few digits, so that the command for a frame draws that very frame.
std::vector<double> evenPositions(int count) {
    std::vector<double> positions;
    for (int k = 0; k < count; ++k) positions.push_back(std::round(1e4 * k / (count - 1)) / 1e4);
    return positions;
}

Size frameSize(const GalleryOptions& options, Size own) {
    if (options.size) return *options.size;
    constexpr double longest = 480.0;
    const double factor = std::min(longest / std::max(own.width, own.height), 1.0);
    return {std::max(static_cast<int>(std::lround(own.width * factor)), 1),
            std::max(static_cast<int>(std::lround(own.height * factor)), 1)};
}

std::string spriteName(std::size_t number) {
    const std::string digits = std::to_string(number);
    return std::string(framesFolder) + (digits.size() < 2 ? "/0" : "/") + digits + ".webp";
}

/// An input as a person calls it.
std::string title(const std::string& input) {
    std::error_code ignored;  // a graph may be too long to be a name
    const bool isFile = std::filesystem::exists(input, ignored);
    return isFile ? std::filesystem::path(input).filename().string() : input;
}

/// The options with which `vantle render` shows the same pictures.
Json renderOptions(const FilmRequest& film) {
    Json texts = Json::array();
    const auto add = [&](const char* name, const std::string& value) {
        texts.push_back(name);
        texts.push_back(value);
    };
    if (const Time time = film.duration; time != FilmRequest().duration)
        add("--duration", Json(time.number()).dump() + (time.inFrames ? "f" : ""));
    if (film.rate) add("--fps", std::to_string(film.rate->num) + "/" + std::to_string(film.rate->den));
    if (film.fit != Fit::contain) add("--fit", nameOf(film.fit));
    return texts;
}

std::string data(const OverviewOptions& options, const Overview& overview, const SpriteLayout& layout,
                 const std::vector<double>& positions) {
    const std::string& from = options.film.shots[0].file;
    const std::string& to = options.film.shots[1].file;
    Json gallery;
    gallery["from"] = title(from);
    gallery["to"] = title(to);
    gallery["fromArgument"] = from;
    gallery["toArgument"] = to;
    gallery["options"] = renderOptions(options.film);
    gallery["width"] = layout.frame.width;
    gallery["height"] = layout.frame.height;
    gallery["positions"] = positions;
    gallery["sprite"] = {{"columns", layout.columns},
                         {"cellWidth", layout.cell.width},
                         {"cellHeight", layout.cell.height},
                         {"margin", SpriteLayout::margin}};
    Json& rows = gallery["transitions"] = Json::array();
    for (std::size_t i = 0; i < overview.transitions().size(); ++i) {
        const Transition& transition = overview.transitions()[i];
        rows.push_back({{"name", shownName(transition)},
                        {"function", transition.function},
                        {"family", transition.family},
                        {"sentence", transition.sentence},
                        {"words", wordsFor(transition)},
                        {"sprite", spriteName(i)}});
    }
    // A file's name need not be text.
    return "'use strict';\nconst gallery = " + gallery.dump(1, ' ', false, Json::error_handler_t::replace) +
           ";\n";
}

}  // namespace

void makeGallery(const GalleryOptions& options) {
    const Delivery& asked = options.overview.delivery;
    StagedFolder folder(asked.output, asked.force, folderTitle);
    const std::vector<double> positions = evenPositions(options.positions);
    // Frames too large for a sprite are refused before they are loaded.
    const Overview overview(options.overview, positions, [&](Size own) {
        return SpriteLayout(frameSize(options, own), options.positions).frame;
    });
    const SpriteLayout layout(overview.size(), options.positions);
    checkSpared(overview.files(), asked.output);

    for (const WebFile& file : galleryFiles()) folder.write(file.name, file.contents);
    folder.write(dataFile, data(options.overview, overview, layout, positions));
    std::vector<std::optional<Sprite>> sprites(overview.transitions().size());
    overview.draw(asked.quiet, [&](std::size_t transition, std::size_t position, DIImage frame) {
        std::optional<Sprite>& sprite = sprites[transition];
        if (!sprite) sprite.emplace(layout);
        sprite->set(static_cast<int>(position), frame);
        if (position + 1 < positions.size()) return;
        folder.write(spriteName(transition), sprite->encoded());
        sprite.reset();
    });
    throwIfInterrupted();
    folder.commit();
    if (!asked.quiet)
        std::fprintf(stderr, "%s: %zu transition%s, %d frames of %dx%d each; open %s in a browser\n",
                     asked.output.c_str(), overview.transitions().size(),
                     overview.transitions().size() == 1 ? "" : "s", options.positions, layout.frame.width,
                     layout.frame.height, (std::filesystem::path(asked.output) / "index.html").c_str());
}

}  // namespace vantle
