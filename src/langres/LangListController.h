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

/// The model of the languages list: which languages are offered, which are kept, and which may be changed. English is
/// the first row and always stays, with all its variants. Every change is stored and reported at once. Main thread.
class LangListController final : public QAbstractTableModel {
public:
    enum Column { checkColumn, iconColumn, textColumn };
    static constexpr int columns = 3;
    /// The name of a row's flag picture, as bytes.
    enum Role { iconRole = Qt::UserRole };

    /// Called with the languages to keep, first in the constructor and then after every change.
    using ChangeListener = std::function<void(const QStringList&)>;

    /// Builds the rows, which do not change afterwards. The defaults outlive the model.
    LangListController(const LanguagesManager& languages, platform::UserDefaults& defaults,
                       ChangeListener changedListOfLangs);

    /// Identifiers of the languages to keep.
    [[nodiscard]] const QStringList& getNeededLangsArray() const { return pneededStrArray_; }

    /// A row out of range changes nothing and answers false, or an empty text.
    void setLangNeededState(int row, bool bstate);
    [[nodiscard]] bool getLangNeededState(int row) const;
    [[nodiscard]] bool canEditRowCheck(int row) const;
    /// Exactly one row is checked.
    [[nodiscard]] bool isSingleChecked() const;
    /// The row is the one that is checked.
    [[nodiscard]] bool isLatestCheckedItem(int row) const;
    /// The name of the flag's picture: the identifier in upper case. The picture may not exist.
    [[nodiscard]] QString getIconforRow(int row) const;
    /// The language's name in the user's own language, or the item's description if it has none.
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
    const QStringList offered_;         ///< including English and its variants; the order of the languages to keep
    std::vector<LangItem> plangArray_;  ///< the rows: English, then the others as offered
    QStringList pneededStrArray_;
    QHash<QString, QString> names_;  ///< identifier to name in the user's own language; may be empty
    bool bEnabled_ = true;
};

}  // namespace brimvault::langres
