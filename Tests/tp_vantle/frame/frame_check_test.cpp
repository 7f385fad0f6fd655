// What the two transitions that check their frames tell the host's logger, and when. The logger is this
// file's, and the accessors of sizes pass through it.
#include "frame/frame_check.h"

#include <dlfcn.h>

#include <cstdarg>
#include <regex>

#include "frames.h"

using namespace tests;

/// The host's logger as hosts have it, not as the library declares it.
class QeltLogger {
   public:
    virtual bool IsLevelEnabled(std::int32_t level);
    virtual void LogFormat(std::int32_t level, const wchar_t* format, ...);
};

namespace {

QeltLogger logger;

enum { away, missing, disabled, enabled } state = away;  // of the logger; away while no test listens
std::wstring heard;
bool asked = false;
const Scene* scene = nullptr;

void note(const wchar_t* what, std::int32_t value) {
    if (asked) heard += what + std::to_wstring(value) + L" ";
}

/// What the image library's own accessor says.
std::int32_t ask(const char* accessor, const wchar_t* what, DIImage image) {
    const auto result = reinterpret_cast<decltype(&DIGetWidth)>(dlsym(RTLD_NEXT, accessor))(image);
    return note(what, result), result;
}

/// What is heard when 5 x 4 pixels are drawn under such claims of imgOut, imgFrom and imgTo.
std::wstring told(const char* function, const Claim (&claims)[3], decltype(state) stateThen = enabled) {
    Scene drawn({5, 4, 20});
    scene = &drawn;
    state = stateThen;
    drawn.drawUnder(claims, transition(function));
    state = away;
    asked = false;
    return std::exchange(heard, {});
}

constexpr Claim none{.handle = false};

}  // namespace

// Notes what it is asked and what the accessors are asked from then on, and every message.
bool QeltLogger::IsLevelEnabled(std::int32_t level) { return note(L"level ", level), state == enabled; }
void QeltLogger::LogFormat(std::int32_t level, const wchar_t* format, ...) {
    note(L"log ", level);
    wchar_t text[200] = L"";
    va_list arguments;
    va_start(arguments, format);
    std::vswprintf(text, std::size(text), format, arguments);
    va_end(arguments);
    heard += std::regex_replace(text, std::wregex(L", [1-9][0-9]{0,2}]$"), L", line]\n");
    EXPECT_TRUE(std::equal(scene->before.begin(), scene->before.end(), scene->buffers[0].get()));
    asked = false;
}

extern "C" VANTLE_API QeltLogger* QeltGetDefaultLogger() {
    if (state != away) asked = true;
    return state > missing ? &logger : nullptr;
}
VANTLE_API std::int32_t DIGetWidth(DIImage image) { return ask("DIGetWidth", L"width ", image); }
VANTLE_API std::int32_t DIGetHeight(DIImage image) { return ask("DIGetHeight", L"height ", image); }

TEST(FrameCheck, TellsOfMissingFramesThenOfDifferentWidths) {
    EXPECT_EQ(told("TrCrossShutter1", {none, {}, {}}),
              L"level 80 width 5 width 0 log 80 Frame data is NULL! wanted:(imgFrom,imgOut)(5,0)   "
              L"[frame_check.cpp, line]\nlevel 80 width 5 height 4 width 0 height 0 log 80 "
              L"Frame data is Different! wanted:imgFrom(5,4) --- imgOut(0:0)  [frame_check.cpp, line]\n");
    EXPECT_NE(told("TrCrossShutter1", {{}, none, {}}), L"");
    EXPECT_NE(told("TrCrossShutter1", {{}, {.width = 4}, {}}), L"");
    const std::wstring effect = L"level 80 log 80 TrColSplit2 Effect Frame data is ";
    const std::wstring null = effect + L"NULL!   [frame_check.cpp, line]\n";
    const std::wstring different = effect + L"Different!   [frame_check.cpp, line]\n";
    EXPECT_EQ(told("TrColSplit2", {none, {}, {}}), null + different);
    EXPECT_EQ(told("TrColSplit2", {{}, none, {}}), null + different);
    EXPECT_EQ(told("TrColSplit2", {{}, {}, none}), null);
    EXPECT_EQ(told("TrColSplit2", {{}, {.width = 4}, {}}), different);
}

TEST(FrameCheck, IsSilentWithoutAReasonOrAListener) {
    EXPECT_EQ(told("TrCrossShutter1", {{}, {}, none}), L"");
    for (const char* const function : {"TrCrossShutter1", "TrColSplit2"}) {
        EXPECT_EQ(told(function, {{}, {.height = 9}, {.width = 9, .bits = false}}), L"");
        EXPECT_EQ(told(function, {none, {}, {}}, disabled), L"level 80 width 0 width 5 level 80 ");
        EXPECT_EQ(told(function, {none, {}, {}}, missing), L"width 0 width 5 ");
    }
}

TEST(FrameCheck, NamesAFileByWhatFollowsTheLastBackslashOrElseSlash) {
    EXPECT_STREQ(vantle::fileName(L"C:\\src\\fx/trans"), L"fx/trans");
    EXPECT_STREQ(vantle::fileName(L"/src/fx/trans.cpp"), L"trans.cpp");
    EXPECT_STREQ(vantle::fileName(L"trans.cpp"), L"trans.cpp");
    EXPECT_STREQ(vantle::fileName(L"src/"), L"");
}
