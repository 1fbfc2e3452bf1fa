#pragma once

#include <QString>

namespace brimvault::platform {

/// The number with at most one or two decimals, no trailing zeros, and a point in every locale. The shortest decimal
/// form of the value is rounded, half to even, not its binary value: 1.015 becomes "1.02" although the nearest double
/// is less than 1.015. Empty where ICU fails. Any thread.
[[nodiscard]] QString withAtMostOneDecimal(double value);
[[nodiscard]] QString withAtMostTwoDecimals(double value);

}  // namespace brimvault::platform
