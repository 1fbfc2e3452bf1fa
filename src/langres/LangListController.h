#pragma once

#include <QAbstractTableModel>
#include <QHash>
#include <QStringList>
#include <functional>
#include <vector>

#include "langres/LangItem.h"
#include "langres/LanguagesManager.h"
#include "platform/UserDefaults.h"

namespace brimvault::langres {

/// The rows of the languages list: which languages are offered, which of them are kept, and what may be changed of it.
/// English heads the list and always stays, with all its variants. Every change is stored at once, and told. Main
/// thread.
class LangListController final : public QAbstractTableModel {
public:
    enum Column { checkColumn, iconColumn, textColumn };
    static constexpr int columns = 3;
    /// The name of a row's flag, as bytes.
    enum Role { iconRole = Qt::UserRole };

    /// Hears the languages to keep, first in the constructor and then after every change.
    using ChangeListener = std::function<void(const QStringList&)>;

    /// Builds the rows once; they stay the same for the life of the object. The defaults outlive it.
    LangListController(const LanguagesManager& languages, platform::UserDefaults& defaults,
                       ChangeListener changedListOfLangs);

    /// Identifiers of the languages to keep.
    [[nodiscard]] const QStringList& getNeededLangsArray() const { return pneededStrArray_; }

    /// Rows that are not there change nothing and answer NO, or nothing.
    void setLangNeededState(int row, bool bstate);
    [[nodiscard]] bool getLangNeededState(int row) const;
    [[nodiscard]] bool canEditRowCheck(int row) const;
    /// Exactly one row is checked.
    [[nodiscard]] bool isSingleChecked() const;
    /// The row is the one that is checked.
    [[nodiscard]] bool isLatestCheckedItem(int row) const;
    /// The name of the flag's picture: the identifier in capitals. There need not be such a picture.
    [[nodiscard]] QString getIconforRow(int row) const;
    /// The language's name in the user's own, or the item's description where it has none.
    [[nodiscard]] QString text(int row) const;
    /// Nothing can be changed while a clean runs.
    void updateCleaningState(bool cleaning);

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] int columnCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    [[nodiscard]] QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;

private:
    void reinitNeededArray();
    [[nodiscard]] bool isRow(int row) const { return row >= 0 && row < rowCount(); }
    [[nodiscard]] LangItem& item(int row) { return plangArray_[static_cast<std::size_t>(row)]; }
    [[nodiscard]] const LangItem& item(int row) const { return plangArray_[static_cast<std::size_t>(row)]; }

    platform::UserDefaults& defaults_;
    ChangeListener pLangChangeListener_;
    const QStringList offered_;         ///< in the order in which they are kept; English with its variants among them
    std::vector<LangItem> plangArray_;  ///< the rows: English, then the others as offered
    QStringList pneededStrArray_;
    QHash<QString, QString> names_;  ///< identifier to name in the user's own language; empty for none
    bool bEnabled_ = true;
};

}  // namespace brimvault::langres
