/// The host's logger, as far as the library uses it.
#pragma once

#include <cstdint>

/// The logger object. The order of its virtual operations is the host's binary interface, so it has no
/// virtual destructor and nothing may be added before or between them.
class QeltLogger {
   public:
    /// True when messages of `level` are written.
    virtual bool IsLevelEnabled(std::int32_t level) = 0;

    /// Writes a message: `format` is a wide printf format for the arguments that follow it.
    virtual void LogFormat(std::int32_t level, const wchar_t* format, ...) = 0;

   protected:
    ~QeltLogger() = default;
};

/// The process's default logger, or null when there is none.
extern "C" QeltLogger* QeltGetDefaultLogger();
