#pragma once

#include <QListView>

namespace brimvault::ui {

/// The list of the not-cleaned report: shaded titles, which cannot be selected, and below each its messages, of which
/// any number can be selected and copied. A long message takes several lines, unless the list itself is long: then
/// every row has one line, so that it opens at once. Main thread.
class NotCleanedListView final : public QListView {
    Q_OBJECT

public:
    explicit NotCleanedListView(QWidget* parent = nullptr);

    void reset() override;
    void scrollTo(const QModelIndex& index, ScrollHint hint = EnsureVisible) override;
    /// Rows of titles cannot be selected, and the keyboard passes over them.
    [[nodiscard]] static bool isTitle(const QModelIndex& index) {
        return index.isValid() && !index.flags().testFlag(Qt::ItemIsSelectable);
    }

Q_SIGNALS:
    /// The user wants the text of these rows, which ascend.
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
