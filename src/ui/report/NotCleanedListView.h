#pragma once

#include <QListView>

namespace brimvault::ui {

/// The list of the not-cleaned report: titles, which cannot be selected, and below each its messages, which can be
/// selected and copied. Long messages wrap. In a long list each has one line instead, since laying out many wrapped
/// rows would delay its opening. Main thread.
class NotCleanedListView final : public QListView {
    Q_OBJECT

public:
    explicit NotCleanedListView(QWidget* parent = nullptr);

    void reset() override;
    void scrollTo(const QModelIndex& index, ScrollHint hint = EnsureVisible) override;
    /// Titles cannot be selected, and the keyboard skips them.
    [[nodiscard]] static bool isTitle(const QModelIndex& index) {
        return index.isValid() && !index.flags().testFlag(Qt::ItemIsSelectable);
    }

Q_SIGNALS:
    /// The user copies the text of these rows, in ascending order.
    void copyRequested(const QList<int>& rows);

protected:
    void contextMenuEvent(QContextMenuEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    QModelIndex moveCursor(CursorAction action, Qt::KeyboardModifiers modifiers) override;

private:
    [[nodiscard]] QList<int> selectedRows() const;
    [[nodiscard]] QList<int> allRows() const;
    void showMenu(const QPoint& globalPosition);
    void showMenuOfCurrentRow();
};

}  // namespace brimvault::ui
