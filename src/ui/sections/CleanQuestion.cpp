#include "ui/sections/CleanQuestion.h"

#include <QLocale>
#include <algorithm>

#include "engine/model/FFItem.h"
#include "engine/model/FileSize.h"
#include "ui/sections/SectionRows.h"
#include "ui/services/NoteWarnings.h"

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
    if (const quint64 frees = model.freesOfSelection(ticked); engine::CleanableItem::isWorthTelling(bytes, frees)) {
        facts.sum = QCoreApplication::translate("CleanQuestion", "%1 (frees %2)", "items and their size")
                        .arg(facts.sum, FileSize::formatMemoryStringDot1(frees));
    }
    return facts;
}

// What carries a warning and would go.
engine::ItemArray notedItems(const engine::DataMan& model, const engine::PerSection<bool>& ticked) {
    engine::ItemArray noted;
    for (const auto section : engine::allSections) {
        if (!ticked[section]) {
            continue;
        }
        const auto& items = model.itemsOf(section);
        std::copy_if(items.begin(), items.end(), std::back_inserter(noted),
                     [](const auto& item) { return isWarning(item->note()) && item->ppnSizeSel() != 0; });
    }
    return noted;
}

QString warningSum(qsizetype items) {
    return items == 1 ? QCoreApplication::translate("CleanQuestion", "1 selected item carries a warning:")
                      : QCoreApplication::translate("CleanQuestion", "%1 selected items carry a warning:")
                            .arg(QLocale().toString(items));
}

Alert::Warning cleanWarning(const engine::DataMan& model, const engine::PerSection<bool>& ticked) {
    const auto noted = notedItems(model, ticked);
    return noted.isEmpty() ? Alert::Warning() : Alert::Warning{warningSum(noted.size()), noteLines(noted)};
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
