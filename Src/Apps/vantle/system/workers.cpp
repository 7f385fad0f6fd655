#include "system/workers.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

namespace vantle {

void inParallel(std::size_t jobs, const std::function<void(std::size_t)>& work) {
    std::atomic<std::size_t> next = 0;
    std::mutex guard;
    std::exception_ptr failure;
    const auto takeJobs = [&] {
        for (std::size_t job = next++; job < jobs; job = next++) {
            try {
                work(job);
            } catch (...) {
                const std::scoped_lock lock(guard);
                if (!failure) failure = std::current_exception();
                next = jobs;
            }
        }
    };
    {
        const std::size_t cores = std::max(std::thread::hardware_concurrency(), 1U);
        std::vector<std::jthread> threads;
        for (std::size_t i = 1; i < std::min(cores, jobs); ++i) threads.emplace_back(takeJobs);
        takeJobs();
    }
    if (failure) std::rethrow_exception(failure);
}

}  // namespace vantle
