/// Work spread over the machine's cores.
#pragma once

#include <cstddef>
#include <functional>

namespace vantle {

/// Calls `work` once with each number below `jobs`, on all cores, and returns when all is done. The first
/// exception of any call ends the rest and is thrown on.
void inParallel(std::size_t jobs, const std::function<void(std::size_t)>& work);

}  // namespace vantle
