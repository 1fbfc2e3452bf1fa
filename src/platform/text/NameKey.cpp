#include "platform/text/NameKey.h"

#include <unicode/ucol.h>

#include <QLocale>
#include <memory>
#include <string>

namespace brimvault::platform {

namespace {

using Collator = std::unique_ptr<UCollator, decltype(&ucol_close)>;

// Null where the system has no collation at all.
Collator naturalOrder() {
    const QLocale system = QLocale::system();
    // The plain "C" locale has no order of names and compares bytes.
    const QLocale locale = system.language() == QLocale::C ? QLocale(QLocale::English) : system;
    UErrorCode status = U_ZERO_ERROR;
    Collator collator(ucol_open(locale.bcp47Name().toLatin1().constData(), &status), ucol_close);
    ucol_setAttribute(collator.get(), UCOL_NORMALIZATION_MODE, UCOL_ON, &status);
    ucol_setAttribute(collator.get(), UCOL_NUMERIC_COLLATION, UCOL_ON, &status);
    ucol_setAttribute(collator.get(), UCOL_STRENGTH, UCOL_SECONDARY, &status);  // case differs at the third level only
    ucol_setAttribute(collator.get(), UCOL_ALTERNATE_HANDLING, UCOL_NON_IGNORABLE, &status);
    return U_SUCCESS(status) != 0 ? std::move(collator) : Collator(nullptr, ucol_close);
}

// A collation key in bytes, none of which is zero: compared by `strcmp`.
std::string nameSortKey(const QString& name) {
    thread_local const Collator collator = naturalOrder();  // a collator must not be shared among threads
    if (collator == nullptr) {
        return name.toUtf8().toStdString();
    }
    static_assert(sizeof(UChar) == sizeof(QChar));
    const auto* text = reinterpret_cast<const UChar*>(name.utf16());
    const auto length = static_cast<int32_t>(name.size());
    std::string key(static_cast<std::size_t>(length) * 2 + 16, '\0');  // enough for most
    for (;;) {
        const auto needed = ucol_getSortKey(collator.get(), text, length, reinterpret_cast<uint8_t*>(key.data()),
                                            static_cast<int32_t>(key.size()));
        const bool fits = static_cast<std::size_t>(needed) <= key.size();
        key.resize(static_cast<std::size_t>(needed));
        if (fits) {
            key.resize(needed > 0 ? key.size() - 1 : 0);  // it ends with a zero byte
            return key;
        }
    }
}

}  // namespace

NameKey::NameKey(const QString& keyName, const QString& wholeName) {
    const auto first = nameSortKey(keyName);
    const auto second = keyName == wholeName ? std::string() : nameSortKey(wholeName);
    keys_ = std::make_unique<char[]>(first.size() + second.size() + 2);
    std::memcpy(keys_.get(), first.c_str(), first.size() + 1);
    std::memcpy(keys_.get() + first.size() + 1, second.c_str(), second.size() + 1);
}

}  // namespace brimvault::platform
