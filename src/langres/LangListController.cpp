#include "langres/LangListController.h"

#include <QCoreApplication>
#include <algorithm>

#include "platform/LocaleIdentifiers.h"

namespace brimvault::langres {

namespace {

const QString english = QStringLiteral("en");

// Title case by the rules of the language: Turkish and Azerbaijani capitalize i with its dot.
QString capitalized(const QString& text, const QString& language) {
    const QString family = language.section(QLatin1Char('-'), 0, 0);
    const bool keepsDot = family == QLatin1String("tr") || family == QLatin1String("az");
    QString result = text;
    bool inWord = false;
    for (QChar& character : result) {
        if (!inWord && character.isLetter()) {
            character = keepsDot && character == QLatin1Char('i') ? QChar(u'\u0130') : character.toTitleCase();
        }
        inWord = character.isLetter() || character.isMark() || (inWord && character == QChar(u'\u2019')) ||
                 (inWord && character == QLatin1Char('\''));
    }
    return result;
}

}  // namespace

LangListController::LangListController(const LanguagesManager& languages, platform::UserDefaults& defaults,
                                       ChangeListener changedListOfLangs)
    : defaults_(defaults), pLangChangeListener_(std::move(changedListOfLangs)), offered_(languages.popularLanguages()) {
    const auto isKept = keptByDefault(languages);
    // English and its variants share the first row.
    plangArray_.push_back(LangItem::initWithName(english, true, defaults_));
    for (const QString& language : offered_) {
        if (!isEnglish(language)) {
            plangArray_.push_back(LangItem::initWithName(language, isKept(language), defaults_));
        }
    }
    const auto readers = languages.preferredLanguages();
    for (const auto& row : plangArray_) {
        const QString name = platform::LocaleIdentifiers::displayName(row.pName(), readers);
        names_.insert(row.pName(), capitalized(name, readers.value(0)));
    }
    reinitNeededArray();
}

void LangListController::reinitNeededArray() {
    plangArray_.front().setBNeeded(true);  // whatever is stored or set
    auto row = plangArray_.cbegin() + 1;
    pneededStrArray_ = languagesToKeep(offered_, [&](const QString& /*language*/) { return (row++)->bNeeded(); });
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
    Q_EMIT dataChanged(index(0, checkColumn),
                       index(rowCount() - 1, checkColumn));  // they look different, though their states are the same
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
            return role == iconRole ? QVariant(getIconforRow(row).toLatin1()) : QVariant();
        case textColumn:
            return role == Qt::DisplayRole || role == Qt::ToolTipRole ? text(row) : QVariant();
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
    const bool others = wasSingle || isSingleChecked();  // the only checked row cannot be unchecked
    Q_EMIT dataChanged(others ? this->index(0, checkColumn) : index,
                       others ? this->index(rowCount() - 1, checkColumn) : index, {Qt::CheckStateRole});
    return true;
}

QVariant LangListController::headerData(int section, Qt::Orientation orientation, int role) const {
    if (orientation != Qt::Horizontal || role != Qt::AccessibleTextRole) {
        return {};
    }
    switch (section) {
        case checkColumn:
            return QCoreApplication::translate("Languages", "Kept");
        case iconColumn:
            return QCoreApplication::translate("Languages", "Flag");
        default:
            return QCoreApplication::translate("Languages", "Language");
    }
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
