#include "langres/LangListController.h"

#include <QCoreApplication>
#include <algorithm>

#include "platform/LocaleIdentifiers.h"

namespace brimvault::langres {

namespace {

const QString english = QStringLiteral("en");

QString translated(const char* text) { return QCoreApplication::translate("Languages", text); }

// The first letter of each word in capitals.
QString capitalized(const QString& text) {
    QString result = text;
    bool inWord = false;
    for (QChar& character : result) {
        if (!inWord && character.isLetter()) {
            character = character.toUpper();
        }
        inWord = character.isLetter() || character.isMark() || (inWord && character == QChar(u'\u2019')) ||
                 (inWord && character == QLatin1Char('\''));
    }
    return result;
}

}  // namespace

LangListController::LangListController(const LanguagesManager& languages, platform::UserDefaults& defaults,
                                       ChangeListener changedListOfLangs)
    : defaults_(defaults), pLangChangeListener_(std::move(changedListOfLangs)) {
    const auto used = languages.safeUserLanguages();
    for (const QString& language : languages.popularLanguages()) {
        const bool needed = plangArray_.empty() || used.contains(language.toLower());
        plangArray_.push_back(LangItem::initWithName(language, needed, defaults_));
        names_.insert(language, capitalized(platform::LocaleIdentifiers::displayName(language)));
    }
    names_.insert(english, capitalized(platform::LocaleIdentifiers::displayName(english)));
    reinitNeededArray();
}

// English and its variants are kept, and stand as one row at the top.
void LangListController::reinitNeededArray() {
    pneededStrArray_ = {english};
    std::vector<LangItem> rows;
    rows.push_back(LangItem::initWithName(english, true, defaults_));
    rows.front().setBNeeded(true);  // whatever is stored
    for (const auto& item : plangArray_) {
        const bool variant = item.pName().startsWith(english);
        if ((variant || item.bNeeded()) && !pneededStrArray_.contains(item.pName())) {
            pneededStrArray_.append(item.pName());
        }
        if (!variant) {
            rows.push_back(item);
        }
    }
    plangArray_ = std::move(rows);
    pLangChangeListener_(pneededStrArray_);
}

void LangListController::setLangNeededState(int row, bool bstate) {
    if (isRow(row)) {
        item(row).setNEED(bstate);
        reinitNeededArray();
    }
}

bool LangListController::getLangNeededState(int row) const { return isRow(row) && item(row).bNeeded(); }

bool LangListController::canEditRowCheck(int row) const {
    return bEnabled_ && row >= 1 && isRow(row) && item(row).pName().compare(english, Qt::CaseInsensitive) != 0;
}

bool LangListController::isSingleChecked() const {
    return std::count_if(plangArray_.begin(), plangArray_.end(), [](const LangItem& row) { return row.bNeeded(); }) ==
           1;
}

bool LangListController::isLatestCheckedItem(int row) const {
    return isRow(row) && item(row).bNeeded() && isSingleChecked();
}

QString LangListController::getIconforRow(int row) const {
    return isRow(row) ? item(row).pName().toUpper() : QString();
}

QString LangListController::text(int row) const {
    if (!isRow(row)) {
        return QStringLiteral("Undefined");
    }
    const QString name = names_.value(item(row).pName());
    return name.isEmpty() ? item(row).description() : name;
}

void LangListController::updateCleaningState(bool cleaning) {
    bEnabled_ = !cleaning;
    Q_EMIT dataChanged(index(0, checkColumn), index(rowCount() - 1, checkColumn));  // another look, the same states
}

int LangListController::rowCount(const QModelIndex& parent) const {
    return parent.isValid() ? 0 : static_cast<int>(plangArray_.size());
}

int LangListController::columnCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : columns; }

QVariant LangListController::data(const QModelIndex& index, int role) const {
    const int row = index.row();
    switch (index.column()) {
        case checkColumn:
            if (role == Qt::CheckStateRole) {
                return getLangNeededState(row) ? Qt::Checked : Qt::Unchecked;
            }
            return role == Qt::AccessibleTextRole ? text(row) : QVariant();
        case iconColumn:
            return role == iconRole ? getIconforRow(row) : QVariant();
        case textColumn:
            return role == Qt::DisplayRole ? text(row) : QVariant();
        default:
            return {};
    }
}

bool LangListController::setData(const QModelIndex& index, const QVariant& value, int role) {
    if (!index.isValid() || role != Qt::CheckStateRole || !flags(index).testFlag(Qt::ItemIsUserCheckable)) {
        return false;
    }
    const bool wasSingle = isSingleChecked();
    setLangNeededState(index.row(), value.toInt() == Qt::Checked);
    const bool others = wasSingle || isSingleChecked();  // whether a last one may be unchecked follows
    Q_EMIT dataChanged(others ? this->index(0, checkColumn) : index,
                       others ? this->index(rowCount() - 1, checkColumn) : index, {Qt::CheckStateRole});
    return true;
}

QVariant LangListController::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::AccessibleTextRole) {
        return {};
    }
    return translated(section == checkColumn ? "Kept" : section == iconColumn ? "Flag" : "Language");
}

Qt::ItemFlags LangListController::flags(const QModelIndex& index) const {
    if (!index.isValid()) {
        return Qt::NoItemFlags;
    }
    const Qt::ItemFlags shown = Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren;
    const bool editable =
        index.column() == checkColumn && canEditRowCheck(index.row()) && !isLatestCheckedItem(index.row());
    return editable ? shown | Qt::ItemIsUserCheckable : shown;
}

}  // namespace brimvault::langres
