/// Looks whether a film that was copied together is what it should be.
#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "copying/copy_plan.h"
#include "copying/picture_likeness.h"

namespace vantle {

/// What is wrong with the file of a film that was written as planned, in a few words; empty when nothing is.
/// Inputs that are shown to their ends must show all that they hold. All packets are counted and their times
/// are looked at. Each seam is decoded, from the last keyframe before it to the second after it, or with
/// `everything` the whole film, and compared: copied pictures must be those of their inputs, and encoded
/// ones, where the plan compares them, like what was `drawn`.
std::string faultOf(const std::string& file, const CopyPlan& plan,
                    const std::map<std::int64_t, Brightness>& drawn, bool everything);

}  // namespace vantle
