// Stand-in for the host's logger: messages go to standard error when the environment variable QELT_LOG is
// set to anything but 0; otherwise there is no logger at all.
#include "frame/logger.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <string_view>

namespace {

class StandardErrorLogger final : public QeltLogger {
   public:
    bool IsLevelEnabled(std::int32_t /*level*/) override { return true; }

    void LogFormat(std::int32_t level, const wchar_t* format, ...) override {
        wchar_t message[1024] = L"";
        va_list arguments;
        va_start(arguments, format);
        std::vswprintf(message, std::size(message), format, arguments);
        va_end(arguments);
        // Not fwprintf: that would turn the whole stream wide for the rest of the program.
        std::fprintf(stderr, "[%d] %ls\n", level, message);
    }
};

}  // namespace

[[gnu::visibility("default")]] QeltLogger* QeltGetDefaultLogger() {
    static StandardErrorLogger logger;
    const char* const wanted = std::getenv("QELT_LOG");
    return wanted != nullptr && std::string_view(wanted) != "0" ? &logger : nullptr;
}
