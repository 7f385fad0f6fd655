/// How audio rises and falls.
#pragma once

#include <optional>
#include <string>

namespace vantle {

/// By FFmpeg's names. Two that cross keep the power of unlike audio in `qsin`, the sum of like audio in
/// `tri`.
enum class FadeCurve { qsin, tri, hsin, squ, exp, log };

/// Reads one of these names; none when the text is no other.
std::optional<FadeCurve> parseFadeCurve(const std::string& text);

/// The gain at `position` of a rise, 0 (silent) to 1 (full). A fall is a rise seen from its end.
double gainAt(FadeCurve curve, double position);

}  // namespace vantle
