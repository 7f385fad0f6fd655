#include "frame/frame_check.h"

#include "frame/logger.h"

namespace vantle {

namespace {

constexpr std::int32_t level = 80;

/// The host's logger when it writes messages of our level, else null.
QeltLogger* enabledLogger() {
    QeltLogger* const logger = QeltGetDefaultLogger();
    return logger != nullptr && logger->IsLevelEnabled(level) ? logger : nullptr;
}

const wchar_t* thisFile() { return fileName(L"" __FILE__); }

}  // namespace

// The accessors run in the order of the arguments, and for a message's arguments only when it is written.

void checkCrossShutterFrames(const Call& call) {
    const auto [imgOut, imgFrom, imgTo, param] = call;
    if (imgOut == nullptr || imgFrom == nullptr) {
        if (QeltLogger* const logger = enabledLogger()) {
            const std::int32_t fromWidth = DIGetWidth(imgFrom);
            const std::int32_t outWidth = DIGetWidth(imgOut);
            logger->LogFormat(level, L"Frame data is NULL! wanted:(imgFrom,imgOut)(%d,%d)   [%ls, %d]",
                              fromWidth, outWidth, thisFile(), __LINE__);
        }
    }
    const std::int32_t width = DIGetWidth(imgOut);
    if (width != DIGetWidth(imgFrom)) {
        if (QeltLogger* const logger = enabledLogger()) {
            const std::int32_t fromWidth = DIGetWidth(imgFrom);
            const std::int32_t fromHeight = DIGetHeight(imgFrom);
            const std::int32_t outWidth = DIGetWidth(imgOut);
            const std::int32_t outHeight = DIGetHeight(imgOut);
            logger->LogFormat(level,
                              L"Frame data is Different! wanted:imgFrom(%d,%d) --- imgOut(%d:%d)  [%ls, %d]",
                              fromWidth, fromHeight, outWidth, outHeight, thisFile(), __LINE__);
        }
    }
}

void checkColSplit2Frames(const Call& call) {
    const auto [imgOut, imgFrom, imgTo, param] = call;
    if (imgOut == nullptr || imgFrom == nullptr || imgTo == nullptr) {
        if (QeltLogger* const logger = enabledLogger())
            logger->LogFormat(level, L"TrColSplit2 Effect Frame data is NULL!   [%ls, %d]", thisFile(),
                              __LINE__);
    }
    const std::int32_t width = DIGetWidth(imgOut);
    if (width != DIGetWidth(imgFrom)) {
        if (QeltLogger* const logger = enabledLogger())
            logger->LogFormat(level, L"TrColSplit2 Effect Frame data is Different!   [%ls, %d]", thisFile(),
                              __LINE__);
    }
}

}  // namespace vantle
