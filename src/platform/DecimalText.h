#pragma once

#include <QString>

namespace brimvault::platform {

/// The number with at most one or two decimals, none of them a trailing zero, and a point in every locale. It is
/// rounded to the nearest, halves to the even digit, as the decimal number that it is read as, not as the binary one
/// that the machine holds: 1.015 becomes "1.02" though what is held lies below it. Empty where the system cannot tell.
/// Any thread.
[[nodiscard]] QString withAtMostOneDecimal(double value);
[[nodiscard]] QString withAtMostTwoDecimals(double value);

}  // namespace brimvault::platform
