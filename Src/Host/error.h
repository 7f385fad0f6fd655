/// What goes wrong in vantle, in words for its user.
#pragma once

#include <stdexcept>

namespace vantle {

/// An input, output or plug-in that cannot be used: one line for standard error, exit status 1.
struct Error : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// A command line that makes no sense: one line for standard error, exit status 2.
struct UsageError : Error {
    using Error::Error;
};

}  // namespace vantle
