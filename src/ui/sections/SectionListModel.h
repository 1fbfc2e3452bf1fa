#pragma once

#include <QAbstractListModel>
#include <array>

#include "ui/look/TextData.h"
#include "ui/sections/SectionRows.h"

namespace brimvault::ui {

/// The rows of the section list. A row's check state can be changed while its owner allows it. Main thread.
class SectionListModel final : public QAbstractListModel {
    Q_OBJECT

public:
    enum Role {
        subtitleRole = Qt::UserRole,
        noteRole,  ///< a line below the subtitle; mostly empty
    };

    explicit SectionListModel(QObject* parent = nullptr);

    void setSubtitle(int row, const QString& subtitle);
    void setNote(int row, const QString& note);
    /// The section's folders: all, for the tooltip, and those that the user would not expect.
    void setPlaces(int row, const QString& all, const QString& unusual);
    void setChecked(int row, bool checked);
    void setChecksEnabled(bool enabled);

    [[nodiscard]] int rowCount(const QModelIndex& parent = {}) const override;
    [[nodiscard]] QVariant data(const QModelIndex& index, int role) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    [[nodiscard]] Qt::ItemFlags flags(const QModelIndex& index) const override;

Q_SIGNALS:
    /// The user ticked or unticked a row; the model shows it only after `setChecked`.
    void checkRequested(int row, bool checked);

private:
    struct Row {
        TextData text;
        QString note;
        QString places;
        QString unusualPlaces;
        bool checked = false;
    };
    [[nodiscard]] static QString description(const Row& row);

    std::array<Row, sectionRowCount> rows_;
    bool checksEnabled_ = true;
};

}  // namespace brimvault::ui
