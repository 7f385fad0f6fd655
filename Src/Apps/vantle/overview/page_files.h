/// The page of a gallery, held in the program.
#pragma once

#include <span>
#include <string_view>

namespace vantle {

struct WebFile {
    std::string_view name;
    std::string_view contents;
};

/// The files in `gallery/`, which are the same for every gallery.
std::span<const WebFile> galleryFiles();

}  // namespace vantle
