/// The contract between a host and the transitions, under the name by which hosts include it.
#pragma once

#include "frame/contract.h"
