#include "catalogue/catalogue.h"

#include <algorithm>
#include <iterator>
#include <string_view>

#include "catalogue/door.h"
#include "frame/frame_check.h"

using namespace vantle;

// A macro, because the name of a function can come from nothing else.
#define DOOR(function, throwing, ...)                                                                 \
    VANTLE_API void function(DIImage imgOut, DIImage imgFrom, DIImage imgTo, const TransParam* param) \
        throwing {                                                                                    \
        draw({imgOut, imgFrom, imgTo, param}, __VA_ARGS__);                                           \
    }
#define TRANSITION(function, effect, ...) DOOR(function, noexcept, effect)
#define CHECKED(check, function, effect, ...) DOOR(function, noexcept, effect, {check})
#define STATEFUL(function, effect, ...) DOOR(function, , immortal<effect>())
#include "catalogue/transitions.inc"
#undef DOOR

namespace {

constexpr char TRANS_TYPE[] = "vantle type";

/// A record with its texts, which are ASCII, in place. A text too long for its field does not compile.
consteval TransInfo record(TransFunc* transition, std::string_view name, std::string_view guid) {
    TransInfo info{};
    info.nType = 2;
    info.pfnTransition = transition;
    std::ranges::copy(name, info.szName);
    std::ranges::copy(guid, info.szGuid);
    return info;
}

}  // namespace

constinit const TransInfo g_arTransInfo[] = {
#define TRANSITION(function, effect, family, name, guid, sentence) record(function, name, guid),
#define UNCATALOGUED(...)
#include "catalogue/transitions.inc"
};

const char* GetTransType() { return TRANS_TYPE; }

std::int32_t GetTransCount() { return static_cast<std::int32_t>(std::size(g_arTransInfo)); }

const TransInfo* GetTransInfo(std::int32_t index) {
    return index >= 0 && index < GetTransCount() ? &g_arTransInfo[index] : nullptr;
}
