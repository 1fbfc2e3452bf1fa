#include "platform/text/DecimalText.h"

#include <unicode/numberformatter.h>

namespace brimvault::platform {

namespace {

using Formatter = icu::number::LocalizedNumberFormatter;

Formatter withAtMost(int decimals) {
    return icu::number::NumberFormatter::withLocale(icu::Locale::getEnglish())
        .precision(icu::number::Precision::maxFraction(decimals))
        .roundingMode(UNUM_ROUND_HALFEVEN)
        .grouping(UNUM_GROUPING_OFF);
}

QString format(const Formatter& formatter, double value) {
    UErrorCode status = U_ZERO_ERROR;
    const auto formatted = formatter.formatDouble(value, status);
    const icu::UnicodeString text = formatted.toTempString(status);
    return U_FAILURE(status) ? QString() : QString(reinterpret_cast<const QChar*>(text.getBuffer()), text.length());
}

}  // namespace

QString withAtMostOneDecimal(double value) {
    static const Formatter formatter = withAtMost(1);
    return format(formatter, value);
}

QString withAtMostTwoDecimals(double value) {
    static const Formatter formatter = withAtMost(2);
    return format(formatter, value);
}

}  // namespace brimvault::platform
