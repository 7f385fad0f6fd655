/// How far a rendering is, for whoever waits for it.
#pragma once

#include <chrono>
#include <cstdint>

namespace vantle {

/// Shows frames, speed and time left on standard error: a bar in place on a terminal, a line every few
/// seconds elsewhere.
class ProgressBar {
   public:
    /// `total` is the number of frames, or of what else `unit` says; a quiet bar shows nothing.
    ProgressBar(std::int64_t total, bool quiet, const char* unit = "frame");
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;

    ~ProgressBar() { finish(); }

    /// Says that `done` of them are done.
    void update(std::int64_t done);

    /// Leaves the terminal's line clean.
    void finish();

   private:
    using Clock = std::chrono::steady_clock;

    std::int64_t total_;
    bool quiet_;
    const char* unit_;
    bool terminal_;
    bool shown_ = false;
    Clock::time_point start_ = Clock::now();
    Clock::time_point last_ = start_;
};

}  // namespace vantle
