#include "media/heif.h"

#include <libheif/heif.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <fstream>
#include <memory>
#include <string>
#include <string_view>

namespace vantle {

namespace {

struct FreeHeif {
    void operator()(heif_context* context) const { heif_context_free(context); }
    void operator()(heif_image_handle* handle) const { heif_image_handle_release(handle); }
    void operator()(heif_image* image) const { heif_image_release(image); }
    void operator()(heif_color_profile_nclx* profile) const { heif_nclx_color_profile_free(profile); }
};
using HeifContext = std::unique_ptr<heif_context, FreeHeif>;
using HeifHandle = std::unique_ptr<heif_image_handle, FreeHeif>;
using HeifImage = std::unique_ptr<heif_image, FreeHeif>;
using HeifProfile = std::unique_ptr<heif_color_profile_nclx, FreeHeif>;

void checkHeif(const heif_error& error) {
    if (error.code == heif_error_Ok) return;
    std::string message = error.message;
    message.erase(message.find_last_not_of(' ') + 1);
    throw Error(message);
}

/// A file and its main picture, which is not decoded yet.
struct HeifFile {
    explicit HeifFile(const std::filesystem::path& path) : context(heif_context_alloc()) {
        checkHeif(heif_context_read_from_file(context.get(), path.c_str(), nullptr));
        heif_image_handle* found = nullptr;
        checkHeif(heif_context_get_primary_image_handle(context.get(), &found));
        main.reset(found);
    }

    HeifContext context;
    HeifHandle main;
};

/// What its numbers mean, where it says so in numbers.
Colours statedColours(const heif_image_handle& handle) {
    heif_color_profile_nclx* stated = nullptr;
    Colours colours{.space = AVCOL_SPC_RGB, .range = AVCOL_RANGE_JPEG};
    if (heif_image_handle_get_nclx_color_profile(&handle, &stated).code != heif_error_Ok) return colours;
    const HeifProfile profile(stated);
    // Both number them as ISO/IEC 23091 does.
    colours.primaries = static_cast<AVColorPrimaries>(profile->color_primaries);
    colours.transfer = static_cast<AVColorTransferCharacteristic>(profile->transfer_characteristics);
    return colours;
}

}  // namespace

bool isHeif(const std::filesystem::path& path) {
    std::array<char, 12> head{};
    std::ifstream file(path, std::ios::binary);
    file.read(head.data(), head.size());
    const std::string_view start(head.data(), static_cast<std::size_t>(file.gcount()));
    if (start.size() < head.size() || start.substr(4, 4) != "ftyp") return false;
    // What moves has other brands, and is read as video.
    constexpr std::array<std::string_view, 6> brands{"heic", "heix", "heim", "heis", "mif1", "avif"};
    return std::ranges::find(brands, start.substr(8, 4)) != brands.end();
}

HeifPicture readHeif(const std::filesystem::path& path) {
    const HeifFile file(path);
    const bool hasAlpha = heif_image_handle_has_alpha_channel(file.main.get()) != 0;
    const int depth = heif_image_handle_get_luma_bits_per_pixel(file.main.get());
    const heif_chroma chroma =
        depth > 8  ? hasAlpha ? heif_chroma_interleaved_RRGGBBAA_LE : heif_chroma_interleaved_RRGGBB_LE
        : hasAlpha ? heif_chroma_interleaved_RGBA
                   : heif_chroma_interleaved_RGB;
    heif_image* decoded = nullptr;
    checkHeif(heif_decode_image(file.main.get(), &decoded, heif_colorspace_RGB, chroma, nullptr));
    const HeifImage image(decoded);
    int stride = 0;
    const std::uint8_t* const lines =
        heif_image_get_plane_readonly(image.get(), heif_channel_interleaved, &stride);
    if (lines == nullptr) throw Error("its pixels cannot be decoded");

    HeifPicture picture;
    picture.size = {heif_image_get_width(image.get(), heif_channel_interleaved),
                    heif_image_get_height(image.get(), heif_channel_interleaved)};
    picture.format = depth > 8  ? hasAlpha ? AV_PIX_FMT_RGBA64LE : AV_PIX_FMT_RGB48LE
                     : hasAlpha ? AV_PIX_FMT_RGBA
                                : AV_PIX_FMT_RGB24;
    picture.colours = statedColours(*file.main);
    const std::size_t line =
        static_cast<std::size_t>(picture.size.width) * (hasAlpha ? 4 : 3) * (depth > 8 ? 2 : 1);
    picture.pixels.resize(line * static_cast<std::size_t>(picture.size.height));
    for (int y = 0; y < picture.size.height; ++y)
        std::memcpy(picture.pixels.data() + static_cast<std::size_t>(y) * line,
                    lines + static_cast<std::ptrdiff_t>(y) * stride, line);
    if (depth <= 8) return picture;
    // Numbers of 10 or 12 bits become such of 16, from none to all.
    const int bits = heif_image_get_bits_per_pixel_range(image.get(), heif_channel_interleaved);
    for (std::size_t i = 0; i < picture.pixels.size(); i += 2) {
        const unsigned value = picture.pixels[i] | static_cast<unsigned>(picture.pixels[i + 1]) << 8;
        const unsigned wide = value << (16 - bits) | value >> (2 * bits - 16);
        picture.pixels[i] = static_cast<std::uint8_t>(wide);
        picture.pixels[i + 1] = static_cast<std::uint8_t>(wide >> 8);
    }
    return picture;
}

std::vector<std::uint8_t> exifOfHeif(const std::filesystem::path& path) {
    try {
        const HeifFile file(path);
        heif_item_id block = 0;
        if (heif_image_handle_get_list_of_metadata_block_IDs(file.main.get(), "Exif", &block, 1) == 0)
            return {};
        std::vector<std::uint8_t> bytes(heif_image_handle_get_metadata_size(file.main.get(), block));
        checkHeif(heif_image_handle_get_metadata(file.main.get(), block, bytes.data()));
        // It says first how far on it begins; the name before it may be missing.
        constexpr std::string_view name("Exif\0\0", 6);
        std::size_t begin = 4;
        if (bytes.size() < begin) return {};
        for (std::size_t i = 0, offset = 0; i < 4; ++i) {
            offset = offset << 8 | bytes[i];
            if (i == 3) begin += offset;
        }
        if (begin >= bytes.size()) return {};
        bytes.erase(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(begin));
        bytes.insert(bytes.begin(), name.begin(), name.end());
        return bytes;
    } catch (const Error&) {
        return {};  // reading its picture says what is wrong
    }
}

}  // namespace vantle
