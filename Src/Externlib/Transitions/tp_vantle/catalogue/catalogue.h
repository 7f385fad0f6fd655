/// The catalogue of transitions and the entry points by which a host reads it.
#pragma once

#include <cstddef>
#include <cstdint>

#include "catalogue/contract.h"

/// One transition. The texts are NUL-terminated and their fields zero to the end; the layout is part of the
/// binary interface.
struct TransInfo {
    std::int32_t nType;        ///< 2 in every record
    wchar_t szName[67];        ///< display name
    TransFunc* pfnTransition;  ///< the function that renders it
    wchar_t szGuid[642];       ///< 8-4-4-4-12 hexadecimal digits (the last group has 11 in record 0)
};

static_assert(sizeof(wchar_t) == 4 && sizeof(void*) == 8);
static_assert(offsetof(TransInfo, szName) == 4 && offsetof(TransInfo, pfnTransition) == 272 &&
              offsetof(TransInfo, szGuid) == 280 && sizeof(TransInfo) == 2848);

extern "C" {

/// The catalogue, `GetTransCount()` records. Static data, valid while the library is loaded.
VANTLE_API extern const TransInfo g_arTransInfo[];

/// The library's type, "vantle type".
VANTLE_API const char* GetTransType();

/// The number of records in the catalogue.
VANTLE_API std::int32_t GetTransCount();

/// The record at `index`, or null when there is none.
VANTLE_API const TransInfo* GetTransInfo(std::int32_t index);
}
