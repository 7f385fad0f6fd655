#include "reading/date_order.h"

extern "C" {
#include <libavutil/parseutils.h>
}

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <system_error>
#include <utility>

#include "Host/error.h"
#include "media/demuxer.h"
#include "media/exif.h"
#include "media/metadata.h"
#include "reading/operands.h"
#include "system/workers.h"

namespace vantle {

namespace {

namespace fs = std::filesystem;

/// Microseconds since 1970. A local date without a time zone is one of this machine's.
std::optional<std::int64_t> readDate(const std::string& text) {
    // Clocks that were never set begin in 1904 or 1970.
    constexpr std::int64_t earliest = 86400LL * 366 * 1'000'000;
    std::int64_t time = 0;
    const bool read = av_parse_time(&time, text.c_str(), 0) >= 0;
    return read && time >= earliest ? std::optional(time) : std::nullopt;
}

std::optional<std::int64_t> dateSaidBy(const std::string& file) {
    // A photo need not be decoded for it.
    const av::Options photo = exifOf(file);
    if (const auto date = photo.find("com.apple.quicktime.creationdate"); date != photo.end())
        return readDate(date->second);
    const auto tags = recordingTags(Demuxer(file).container());
    // The local one is of the recording; the other may be of a copy.
    for (const char* const name : {"creation_date", "creation_time"})
        if (const auto date = tags.find(name); date != tags.end())
            if (const std::optional<std::int64_t> time = readDate(date->second)) return time;
    return {};
}

std::int64_t lastChanged(const std::string& file) {
    using std::chrono::file_clock;
    std::error_code failed;
    const fs::file_time_type time = fs::last_write_time(file, failed);
    if (failed) throw UsageError(file + ": is no file, as --sort date needs");
    return std::chrono::duration_cast<std::chrono::microseconds>(file_clock::to_sys(time).time_since_epoch())
        .count();
}

}  // namespace

std::vector<std::string> sortByDate(FilmRequest& film, const std::vector<std::string>& operands) {
    refuseMeetings(operands);
    std::vector<std::optional<std::int64_t>> dates(film.shots.size());
    inParallel(dates.size(), [&](std::size_t i) {
        if (fs::exists(film.shots[i].file)) dates[i] = dateSaidBy(film.shots[i].file);
    });
    std::vector<std::string> notes;
    std::vector<std::pair<std::int64_t, std::size_t>> order;
    for (std::size_t i = 0; i < dates.size(); ++i) {
        const std::string& file = film.shots[i].file;
        order.emplace_back(dates[i] ? *dates[i] : lastChanged(file), i);
        if (!dates[i]) notes.push_back(file + ": says no date; it is sorted by when it was last changed");
    }
    std::ranges::sort(order);
    std::vector<Shot> sorted;
    for (const auto& [date, i] : order) sorted.push_back(std::move(film.shots[i]));
    film.shots = std::move(sorted);
    return notes;
}

}  // namespace vantle
