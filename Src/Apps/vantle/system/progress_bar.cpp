#include "system/progress_bar.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <string>

namespace vantle {

namespace {

constexpr const char* clearLine = "\r\033[K";

int columns() {
    winsize size{};
    return ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 80;
}

std::string clockTime(double seconds) {
    const long whole = std::lround(seconds);
    char text[32] = "";
    std::snprintf(text, sizeof text, "%ld:%02ld", whole / 60, whole % 60);
    return text;
}

}  // namespace

ProgressBar::ProgressBar(std::int64_t total, bool quiet, const char* unit)
    : total_(std::max<std::int64_t>(total, 1)),
      quiet_(quiet),
      unit_(unit),
      terminal_(isatty(STDERR_FILENO) == 1) {}

void ProgressBar::finish() {
    if (shown_ && terminal_) std::fputs(clearLine, stderr);
    shown_ = false;
}

void ProgressBar::update(std::int64_t done) {
    using namespace std::chrono_literals;
    const Clock::time_point now = Clock::now();
    if (quiet_ || now - last_ < (terminal_ ? 100ms : 5s)) return;
    last_ = now;
    shown_ = true;

    const double seconds = std::chrono::duration<double>(now - start_).count();
    const double speed = static_cast<double>(done) / std::max(seconds, 1e-3);
    const double part = static_cast<double>(done) / static_cast<double>(total_);
    const std::string left = clockTime(static_cast<double>(total_ - done) / std::max(speed, 1e-3));
    char numbers[160] = "";
    std::snprintf(numbers, sizeof numbers, "%3.0f %%  %s %lld of %lld  %.1f %ss/s  %s left", 100.0 * part,
                  unit_, static_cast<long long>(done), static_cast<long long>(total_), speed, unit_,
                  left.c_str());
    if (!terminal_) {
        std::fprintf(stderr, "%s\n", numbers);
        return;
    }
    const int room =
        std::clamp(columns() - static_cast<int>(std::char_traits<char>::length(numbers)) - 4, 0, 40);
    std::string bar;
    if (room >= 10) {
        bar.assign(static_cast<std::size_t>(room), '.');
        std::fill_n(bar.begin(), static_cast<int>(part * room), '#');
        bar += ' ';
    }
    std::fprintf(stderr, "%s%s%s", clearLine, bar.c_str(), numbers);
}

}  // namespace vantle
