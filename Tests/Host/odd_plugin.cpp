// A plug-in that counts two transitions and has the records that a test lends it.
#include "catalogue/catalogue.h"

extern "C" {
VANTLE_API const TransInfo* lent[2] = {};
}

std::int32_t GetTransCount() { return 2; }
const TransInfo* GetTransInfo(std::int32_t index) { return lent[index]; }
