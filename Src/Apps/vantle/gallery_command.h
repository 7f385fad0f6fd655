/// `vantle gallery`: a page to look at many transitions in a browser.
#pragma once

#include <CLI/App.hpp>

namespace vantle {

/// Adds the command to the command line; it runs when it is given.
void addGalleryCommand(CLI::App& app);

}  // namespace vantle
