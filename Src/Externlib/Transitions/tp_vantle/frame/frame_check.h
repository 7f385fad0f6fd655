/// The two transitions that check their frames report what they find to the host's logger. They draw on
/// regardless, as far as the frames allow it.
#pragma once

#include <cwchar>

#include "frame/call.h"

namespace vantle {

/// The last component of a path: what follows its last backslash or, when it has none, its last slash.
inline const wchar_t* fileName(const wchar_t* path) {
    const wchar_t* separator = std::wcsrchr(path, L'\\');
    if (separator == nullptr) separator = std::wcsrchr(path, L'/');
    return separator != nullptr ? separator + 1 : path;
}

/// Reports a missing `imgOut` or `imgFrom`, then widths that differ between these two.
void checkCrossShutterFrames(const Call& call);

/// Reports any missing frame, then widths that differ between `imgOut` and `imgFrom`.
void checkColSplit2Frames(const Call& call);

}  // namespace vantle
