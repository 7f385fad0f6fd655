/// One call of a transition, as a host makes it.
#pragma once

#include "frame/contract.h"

namespace vantle {

/// What a host hands over.
struct Call {
    DIImage imgOut;
    DIImage imgFrom;
    DIImage imgTo;
    const TransParam* param;
};

}  // namespace vantle
