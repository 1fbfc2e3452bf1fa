#include "ui/sections/SectionListModel.h"

#include <utility>

namespace brimvault::ui {

SectionListModel::SectionListModel(QObject* parent) : QAbstractListModel(parent) {
    for (std::size_t row = 0; row < rows_.size(); ++row) {
        rows_[row].text = {sectionTitle(sectionRows()[row]), tr("Not scanned"), false};
    }
}

void SectionListModel::setSubtitle(int row, const QString& subtitle) {
    auto& text = rows_[static_cast<std::size_t>(row)].text;
    if (text.subtitle != subtitle) {
        text.subtitle = subtitle;
        Q_EMIT dataChanged(index(row), index(row), {subtitleRole, Qt::AccessibleDescriptionRole});
    }
}

void SectionListModel::setNote(int row, const QString& note) {
    if (std::exchange(rows_[static_cast<std::size_t>(row)].note, note) != note) {
        Q_EMIT dataChanged(index(row), index(row), {noteRole, Qt::AccessibleDescriptionRole});
    }
}

void SectionListModel::setPlaces(int row, const QString& all, const QString& unusual) {
    auto& shown = rows_[static_cast<std::size_t>(row)];
    if (shown.places != all || shown.unusualPlaces != unusual) {
        shown.places = all;
        shown.unusualPlaces = unusual;
        Q_EMIT dataChanged(index(row), index(row), {Qt::ToolTipRole, Qt::AccessibleDescriptionRole});
    }
}

void SectionListModel::setChecked(int row, bool checked) {
    if (std::exchange(rows_[static_cast<std::size_t>(row)].checked, checked) == checked) {
        return;
    }
    Q_EMIT dataChanged(index(row), index(row), {Qt::CheckStateRole});
}

void SectionListModel::setChecksEnabled(bool enabled) {
    checksEnabled_ = enabled;
    Q_EMIT dataChanged(index(0), index(sectionRowCount - 1));  // drawn differently, the same states
}

int SectionListModel::rowCount(const QModelIndex& parent) const { return parent.isValid() ? 0 : sectionRowCount; }

// What a screen reader reads after the title.
QString SectionListModel::description(const Row& row) {
    QStringList sentences = {row.text.subtitle, row.note, row.unusualPlaces};
    sentences.removeAll(QString());
    return sentences.join(QStringLiteral(". "));
}

QVariant SectionListModel::data(const QModelIndex& index, int role) const {
    if (!index.isValid()) {
        return {};
    }
    const auto& row = rows_[static_cast<std::size_t>(index.row())];
    switch (role) {
        case Qt::DisplayRole:
            return row.text.title;
        case subtitleRole:
            return row.text.subtitle;
        case noteRole:
            return row.note;
        case Qt::AccessibleDescriptionRole:
            return description(row);
        case Qt::ToolTipRole:
            return row.places;
        case Qt::CheckStateRole:
            return row.checked ? Qt::Checked : Qt::Unchecked;
        default:
            return {};
    }
}

bool SectionListModel::setData(const QModelIndex& index, const QVariant& value, int role) {
    if (!index.isValid() || role != Qt::CheckStateRole || !checksEnabled_) {
        return false;
    }
    Q_EMIT checkRequested(index.row(), value.toInt() == Qt::Checked);
    return true;
}

Qt::ItemFlags SectionListModel::flags(const QModelIndex& index) const {
    if (!index.isValid()) {
        return Qt::NoItemFlags;
    }
    const Qt::ItemFlags shown = Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemNeverHasChildren;
    return checksEnabled_ ? shown | Qt::ItemIsUserCheckable : shown;
}

}  // namespace brimvault::ui
