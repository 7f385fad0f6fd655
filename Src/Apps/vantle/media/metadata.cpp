#include "media/metadata.h"

extern "C" {
#include <libavutil/parseutils.h>
}

#include <algorithm>
#include <array>
#include <cctype>
#include <cstdint>
#include <ctime>
#include <string>
#include <string_view>

namespace vantle {

namespace {

constexpr std::size_t longestValue = 255;  // bytes of a value: the moov box has little room to spare

/// A tag of a recording, and what cameras call it, the most telling first; null ends the list.
struct Tag {
    const char* name;
    std::array<const char*, 4> sources;
};

// Names are compared without regard to case, as Matroska's are capitals.
constexpr Tag known[] = {
    {"creation_time", {"creation_time"}},
    {"creation_date", {"com.apple.quicktime.creationdate"}},
    {"location", {"com.apple.quicktime.location.ISO6709", "location", "location-eng"}},
    {"make", {"com.apple.quicktime.make", "make", "com.android.manufacturer"}},
    {"model", {"com.apple.quicktime.model", "model", "com.android.model"}},
    {"software", {"com.apple.quicktime.software", "software"}},
};

bool isLine(std::string_view value) {
    return !value.empty() && value.size() <= longestValue &&
           std::ranges::none_of(value, [](unsigned char c) { return std::iscntrl(c) != 0; });
}

/// Whether a date, 2024-05-06T09:08:09 or longer, is told from those of other time zones.
bool saysZone(std::string_view date) { return date.find_first_of("+-Z", 19) != std::string_view::npos; }

/// Microseconds since 1970 as ISO 8601 writes them, to a second.
std::string utcText(std::int64_t time) {
    const std::time_t seconds = time / 1'000'000;
    std::tm parts{};
    gmtime_r(&seconds, &parts);
    std::array<char, 32> text{};
    std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%SZ", &parts);
    return text.data();
}

}  // namespace

std::map<std::string, std::string> recordingTags(const AVFormatContext& container) {
    std::map<std::string, std::string> found;
    for (const Tag& tag : known)
        for (const char* const source : tag.sources) {
            if (source == nullptr) break;
            const AVDictionaryEntry* const entry = av_dict_get(container.metadata, source, nullptr, 0);
            if (entry != nullptr && isLine(entry->value)) found.try_emplace(tag.name, entry->value);
        }
    // Of photos it follows from the local date, where that says its time zone.
    if (const auto date = found.find("creation_date"); date != found.end() && saysZone(date->second)) {
        std::int64_t time = 0;
        if (av_parse_time(&time, date->second.c_str(), 0) >= 0)
            found.try_emplace("creation_time", utcText(time));
    }
    return found;
}

av::Options tagsFor(const std::string& format, const std::map<std::string, std::string>& tags) {
    av::Options named = tags;
    // The local date has but one name that is known.
    if (const auto date = named.extract("creation_date"))
        named["com.apple.quicktime.creationdate"] = date.mapped();
    if (format != "mp4" && format != "mov") return named;
    // Beside the plain names, the keys that cameras write and libraries of photos and videos look for.
    for (const char* const name : {"make", "model", "software"})
        if (const auto tag = tags.find(name); tag != tags.end())
            named[std::string("com.apple.quicktime.") + name] = tag->second;
    if (const auto place = tags.find("location"); place != tags.end())
        named["com.apple.quicktime.location.ISO6709"] = place->second;
    return named;
}

}  // namespace vantle
