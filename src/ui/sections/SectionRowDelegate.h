#pragma once

#include <QStyledItemDelegate>

#include "ui/look/TextData.h"
#include "ui/sections/SectionsTableView.h"

namespace brimvault::ui {

/// Draws the rows of the section list: cards, each with a check box and an ImageTextCell. Main thread.
class SectionRowDelegate final : public QStyledItemDelegate {
    Q_OBJECT

public:
    explicit SectionRowDelegate(SectionsTableView* view) : QStyledItemDelegate(view), view_(view) {}

    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    /// The whole text of a row in which it is cut.
    bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                   const QModelIndex& index) override;
    /// Only the view ticks: the base class would tick a second time, where it would draw a check box of its own.
    bool editorEvent(QEvent* /*event*/, QAbstractItemModel* /*model*/, const QStyleOptionViewItem& /*option*/,
                     const QModelIndex& /*index*/) override {
        return false;
    }

private:
    void drawCheck(QPainter& painter, const QStyleOptionViewItem& option, const QModelIndex& index) const;
    [[nodiscard]] static TextImgData valueOf(const QModelIndex& index, bool selected);

    const SectionsTableView* view_;
};

}  // namespace brimvault::ui
