#include "ui/sections/CleanQuestion.h"

#include <QFontMetrics>
#include <QLocale>
#include <algorithm>

#include "engine/model/FFItem.h"
#include "engine/model/FileSize.h"
#include "ui/look/Look.h"
#include "ui/sections/SectionRows.h"

namespace brimvault::ui {

using engine::FileSize;

namespace {

QString sumText(qsizetype items, quint64 bytes) {
    const QString size = FileSize::formatMemoryStringDot1(bytes);
    return items == 1
               ? QCoreApplication::translate("CleanQuestion", "1 item, %1").arg(size)
               : QCoreApplication::translate("CleanQuestion", "%1 items, %2").arg(QLocale().toString(items), size);
}

// How much goes, in all and of each section.
Alert::Facts cleanFacts(const engine::DataMan& model, const engine::PerSection<bool>& ticked) {
    Alert::Facts facts;
    qsizetype items = 0;
    quint64 bytes = 0;
    for (const auto& row : sectionRows()) {
        const auto sums = ticked[row.section] ? model.sums(row.section) : engine::ItemSums();
        items += sums.ticked;
        bytes += sums.selected;
        if (sums.selected != 0) {
            facts.parts.append(QCoreApplication::translate("CleanQuestion", "%1 %2", "section and size")
                                   .arg(sectionTitle(row), FileSize::formatMemoryStringDot1(sums.selected)));
        }
    }
    facts.sum = sumText(items, bytes);
    return facts;
}

// What carries a note and would go, the largest first.
engine::ItemArray notedItems(const engine::DataMan& model, const engine::PerSection<bool>& ticked) {
    engine::ItemArray noted;
    for (const auto section : engine::allSections) {
        if (!ticked[section]) {
            continue;
        }
        const auto& items = model.itemsOf(section);
        std::copy_if(items.begin(), items.end(), std::back_inserter(noted), [](const auto& item) {
            return item->note() != engine::ItemNote::none && item->ppnSizeSel() != 0;
        });
    }
    std::stable_sort(noted.begin(), noted.end(),
                     [](const auto& left, const auto& right) { return left->pfSize() > right->pfSize(); });
    return noted;
}

QString warningSum(qsizetype items) {
    return items == 1 ? QCoreApplication::translate("CleanQuestion", "1 selected item carries a warning:")
                      : QCoreApplication::translate("CleanQuestion", "%1 selected items carry a warning:")
                            .arg(QLocale().toString(items));
}

QString restText(qsizetype items) {
    return items == 1 ? QCoreApplication::translate("CleanQuestion", "and 1 more")
                      : QCoreApplication::translate("CleanQuestion", "and %1 more").arg(QLocale().toString(items));
}

// The note says what may be lost, so that it must not be pushed out of sight by a long name.
QString warningLine(const engine::FFItem& item) {
    constexpr qreal textSize = 13;
    constexpr int maxNameWidth = 180;
    const QString name = QFontMetrics(look::font(textSize))
                             .elidedText(item.ppdisplayName(), Qt::ElideMiddle, look::scaled(maxNameWidth));
    return QCoreApplication::translate("CleanQuestion", "%1 – %2", "name and warning").arg(name, item.noteText());
}

Alert::Warning cleanWarning(const engine::DataMan& model, const engine::PerSection<bool>& ticked) {
    constexpr qsizetype maxNamed = 3;
    const auto noted = notedItems(model, ticked);
    Alert::Warning warning;
    if (noted.isEmpty()) {
        return warning;
    }
    warning.sum = warningSum(noted.size());
    for (const auto& item : noted.first(std::min(maxNamed, noted.size()))) {
        warning.lines.append(warningLine(*item));
    }
    if (noted.size() > maxNamed) {
        warning.lines.append(restText(noted.size() - maxNamed));
    }
    return warning;
}

}  // namespace

// Both texts have a double space; they are used as they stand.
Alert cleanQuestion(const engine::DataMan& model, const engine::PerSection<bool>& ticked) {
    return {
        QCoreApplication::translate("CleanQuestion", "Are you sure you want to  completely delete the selected items?"),
        QCoreApplication::translate("CleanQuestion", "Files will be  permanently removed from your Hard Drive."),
        Alert::Suppression::offered,
        Alert::Buttons::deleteAndCancel,
        cleanFacts(model, ticked),
        cleanWarning(model, ticked)};
}

}  // namespace brimvault::ui
