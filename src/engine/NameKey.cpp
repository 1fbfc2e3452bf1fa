#include "engine/NameKey.h"

#include <QCollator>
#include <QLocale>

namespace brimvault::engine {

namespace {

// The plain "C" locale has no order of names and compares bytes.
QCollator naturalOrder() {
    const QLocale system = QLocale::system();
    QCollator collator(system.language() == QLocale::C ? QLocale(QLocale::English) : system);
    collator.setNumericMode(true);
    collator.setCaseSensitivity(Qt::CaseInsensitive);
    return collator;
}

// One for each thread, as a collator serves one at a time.
QCollatorSortKey sortKey(const QString& name) {
    thread_local const QCollator collator = naturalOrder();
    return collator.sortKey(name);
}

}  // namespace

NameKey::NameKey(const QString& keyName, const QString& wholeName)
    : keyName_(sortKey(keyName)), wholeName_(keyName == wholeName ? keyName_ : sortKey(wholeName)) {}

}  // namespace brimvault::engine
