#include "gallery_command.h"

#include <memory>

#include "options.h"
#include "overview/gallery.h"

namespace vantle {

void addGalleryCommand(CLI::App& app) {
    const auto held = std::make_shared<GalleryOptions>();
    GalleryOptions& options = *held;
    CLI::App* const command =
        app.add_subcommand("gallery", "Make a page to look at every transition in a browser");
    command->footer(
        "FROM and TO are what `vantle render` reads. The page opens from disk, without a server or network.");
    addOverview(*command, options.overview, "The folder to make");
    addSize(*command, options.size,
            "WIDTHxHEIGHT of the frames (default: FROM's shape, 480 on its longer side)");
    command
        ->add_option("--positions", options.positions,
                     "Frames per transition, from its start to its end evenly")
        ->check(CLI::Range(2, 1000))
        ->capture_default_str();
    command->callback([held] { makeGallery(*held); });
}

}  // namespace vantle
