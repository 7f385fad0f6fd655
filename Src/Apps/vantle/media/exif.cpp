#include "media/exif.h"

#include <libexif/exif-data.h>
#include <libexif/exif-utils.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <cmath>
#include <cstdio>
#include <fstream>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "media/heif.h"

namespace vantle {

namespace {

struct Unref {
    void operator()(ExifData* data) const { exif_data_unref(data); }
};
using Exif = std::unique_ptr<ExifData, Unref>;

// Of EXIF 2.31, which libexif's list of names lacks in some versions.
constexpr auto offsetOfOriginal = static_cast<ExifTag>(0x9011);

/// A text as it is stored, without what fills it up.
std::string textOf(ExifData& data, ExifIfd part, ExifTag tag) {
    const ExifEntry* const entry = exif_content_get_entry(data.ifd[part], tag);
    if (entry == nullptr || entry->format != EXIF_FORMAT_ASCII) return {};
    std::string text(reinterpret_cast<const char*>(entry->data), entry->size);
    text.erase(std::min(text.find('\0'), text.size()));
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}

/// 2024:05:06 09:08:09 as 2024-05-06T09:08:09; empty when it is no such date.
std::string isoDate(std::string text) {
    constexpr std::string_view form = "0000:00:00 00:00:00";
    if (text.size() != form.size()) return {};
    for (std::size_t i = 0; i < form.size(); ++i)
        if (form[i] == '0' ? std::isdigit(static_cast<unsigned char>(text[i])) == 0 : text[i] != form[i])
            return {};
    if (text.starts_with("0000")) return {};  // a clock that was never set
    text[4] = text[7] = '-';
    text[10] = 'T';
    return text;
}

std::string dateOf(ExifData& data) {
    std::string date = isoDate(textOf(data, EXIF_IFD_EXIF, EXIF_TAG_DATE_TIME_ORIGINAL));
    if (date.empty()) return {};
    const std::string fraction = textOf(data, EXIF_IFD_EXIF, EXIF_TAG_SUB_SEC_TIME_ORIGINAL);
    if (!fraction.empty() && fraction.find_first_not_of("0123456789") == std::string::npos)
        date += '.' + fraction;
    const std::string zone = textOf(data, EXIF_IFD_EXIF, offsetOfOriginal);
    if (zone.size() == 6 && (zone[0] == '+' || zone[0] == '-') && zone[3] == ':') date += zone;
    return date;
}

/// A number of up to three fractions, each a sixtieth of the one before it.
std::optional<double> gpsNumber(ExifData& data, ExifTag tag) {
    const ExifEntry* const entry = exif_content_get_entry(data.ifd[EXIF_IFD_GPS], tag);
    if (entry == nullptr || entry->format != EXIF_FORMAT_RATIONAL || entry->components > 3) return {};
    double number = 0.0;
    double unit = 1.0;
    for (std::size_t i = 0; i < entry->components && 8 * (i + 1) <= entry->size; ++i) {
        const ExifRational part = exif_get_rational(entry->data + 8 * i, exif_data_get_byte_order(&data));
        if (part.denominator != 0) number += unit * part.numerator / part.denominator;
        unit /= 60.0;
    }
    return number;
}

/// As ISO 6709 writes it, to a metre: +48.85837+002.29448/.
std::string placeOf(ExifData& data) {
    const auto degrees = [&](int reference, char negative) {
        std::optional<double> angle = gpsNumber(data, static_cast<ExifTag>(reference + 1));
        const std::string side = textOf(data, EXIF_IFD_GPS, static_cast<ExifTag>(reference));
        if (angle && side.starts_with(negative)) *angle = -*angle;
        return angle && !side.empty() && std::abs(*angle) <= 180.0 ? angle : std::nullopt;
    };
    const std::optional<double> latitude = degrees(1, 'S');
    const std::optional<double> longitude = degrees(3, 'W');
    if (!latitude || !longitude) return {};
    std::array<char, 48> text{};
    std::snprintf(text.data(), text.size(), "%+09.5f%+010.5f/", *latitude, *longitude);
    return text.data();
}

av::Options tagsIn(const Exif& data) {
    av::Options tags;
    if (!data) return tags;
    const auto add = [&](const char* name, const std::string& value) {
        if (!value.empty()) tags[name] = value;
    };
    add("com.apple.quicktime.creationdate", dateOf(*data));
    add("location", placeOf(*data));
    add("make", textOf(*data, EXIF_IFD_0, EXIF_TAG_MAKE));
    add("model", textOf(*data, EXIF_IFD_0, EXIF_TAG_MODEL));
    add("software", textOf(*data, EXIF_IFD_0, EXIF_TAG_SOFTWARE));
    return tags;
}

}  // namespace

av::Options exifOf(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    const bool isJpeg = file.get() == 0xFF && file.get() == 0xD8;
    if (isJpeg) return tagsIn(Exif(exif_data_new_from_file(path.c_str())));
    return isHeif(path) ? exifIn(exifOfHeif(path)) : av::Options{};
}

av::Options exifIn(std::span<const std::uint8_t> block) {
    return tagsIn(Exif(exif_data_new_from_data(block.data(), static_cast<unsigned>(block.size()))));
}

}  // namespace vantle
