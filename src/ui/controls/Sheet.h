#pragma once

#include <QPointer>
#include <QVariantAnimation>
#include <QWidget>

namespace brimvault::ui {

/// A modal panel that hangs from the top edge of a window. It dims the window, and the mouse and the keyboard reach
/// nothing behind it; only the window's action of the role `QuitRole` keeps its shortcut. It is a child widget and no
/// window, since not every desktop lets a program place its windows. Main thread.
class Sheet : public QWidget {
    Q_OBJECT

public:
    /// The size of the panel in points; a small window makes it smaller.
    Sheet(const QSize& defaultSize, QWidget* window);
    ~Sheet() override;

    /// Slides out; the widget, a child of the panel, gets the focus.
    void beginSheet(QWidget* first);
    /// Hides, and gives the focus back.
    void endSheet();
    [[nodiscard]] QWidget* panel() const { return panel_; }
    /// Whether a sheet covers the widget, which then cannot be used.
    [[nodiscard]] static bool covers(const QWidget* widget);

Q_SIGNALS:
    /// The user wants to close it.
    void closeRequested();

protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    bool focusNextPrevChild(bool next) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void placePanel();
    void keepFocus(QWidget* now);
    void announceCovering() const;
    [[nodiscard]] QRect panelWithShadow() const;

    const QSize defaultSize_;
    QWidget* panel_;
    QVariantAnimation slide_;
    qreal out_ = 1;                  ///< how far it is out: 0 to 1
    QPointer<QWidget> focusBefore_;  ///< had the focus when the sheet began
    QPointer<QWidget> lastInside_;   ///< has the focus now
};

}  // namespace brimvault::ui
