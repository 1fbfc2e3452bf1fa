#pragma once

#include <QStyledItemDelegate>

#include "ui/look/TextData.h"
#include "ui/table/CheckTableView.h"

namespace brimvault::ui {

/// A cell of a table with one line of text, as it is drawn. Main thread.
struct TextCellSmall {
    static constexpr qreal textSize = 13;

    /// A name stands on the leading side, a number on the trailing one. A text that does not fit is elided in the
    /// middle, since names differ at either end.
    static void draw(QPainter& painter, const QRect& cell, Qt::Alignment side, const TextData& value);
};

/// Draws the cells of a CheckTableView: the check box, the text, and the focus frame around the current row. Subclasses
/// draw the background and the picture. Main thread.
class RowDelegate : public QStyledItemDelegate {
    Q_OBJECT

public:
    explicit RowDelegate(CheckTableView* view) : QStyledItemDelegate(view), view_(view) {}

    void paint(QPainter* painter, const QStyleOptionViewItem& option, const QModelIndex& index) const override;
    /// Shows the whole text of a cell in which it is elided, unless the model has a tooltip for it.
    bool helpEvent(QHelpEvent* event, QAbstractItemView* view, const QStyleOptionViewItem& option,
                   const QModelIndex& index) override;
    /// The view ticks check boxes; the base class would tick them a second time.
    bool editorEvent(QEvent* /*event*/, QAbstractItemModel* /*model*/, const QStyleOptionViewItem& /*option*/,
                     const QModelIndex& /*index*/) override {
        return false;
    }

protected:
    /// The background of a cell of an unselected row.
    virtual void drawGround(QPainter& painter, const QRect& cell, int row) const = 0;
    virtual void drawText(QPainter& painter, const QStyleOptionViewItem& option, const QModelIndex& index) const;
    virtual void drawIcon(QPainter& painter, const QStyleOptionViewItem& option, const QModelIndex& index) const = 0;
    /// Between the edge of a column and its content.
    [[nodiscard]] virtual int margin(int /*column*/) const { return defaultMargin; }
    /// Whether the row's text is drawn as something that nothing can be done with.
    [[nodiscard]] virtual bool isMuted(const QModelIndex& /*index*/) const { return false; }
    /// Numbers are aligned to the trailing side of their column.
    [[nodiscard]] virtual bool isNumber(int /*column*/) const { return false; }

    [[nodiscard]] static bool isSelected(const QStyleOptionViewItem& option) {
        return (option.state & QStyle::State_Selected) != 0;
    }
    /// The place of the text in its cell.
    [[nodiscard]] QRect textRoom(const QStyleOptionViewItem& option, const QModelIndex& index) const;
    /// The place of a picture of that size in its cell.
    [[nodiscard]] QRect placed(const QStyleOptionViewItem& option, const QModelIndex& index, const QSize& size) const;

private:
    void drawCheck(QPainter& painter, const QStyleOptionViewItem& option, const QModelIndex& index) const;
    void drawFocus(QPainter& painter, const QStyleOptionViewItem& option, const QModelIndex& index) const;

    static constexpr int defaultMargin = 10;

    const CheckTableView* view_;
};

}  // namespace brimvault::ui
