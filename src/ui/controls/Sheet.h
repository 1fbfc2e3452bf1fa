#pragma once

#include <QPointer>
#include <QVariantAnimation>
#include <QWidget>

namespace brimvault::ui {

/// A panel that hangs from the top edge of a window until it is closed. It covers what the window shows and dims it,
/// and the mouse and the keyboard reach nothing behind it. It is a part of the window and no window of its own, as not
/// every desktop lets a program place one. Main thread.
class Sheet : public QWidget {
    Q_OBJECT

public:
    /// The size of the panel in points, where the window has room for it.
    Sheet(const QSize& usualSize, QWidget* window);

    /// Comes out of the edge; the keyboard goes to the widget, one of the panel's.
    void beginSheet(QWidget* first);
    /// Goes, and the keyboard is again where it was.
    void endSheet();
    [[nodiscard]] QWidget* panel() const { return panel_; }
    /// Whether a sheet lies over the widget, of which nothing can be used then.
    [[nodiscard]] static bool covers(const QWidget* widget);

Q_SIGNALS:
    /// The user wants it closed.
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
    void tellCoveringChanged() const;
    [[nodiscard]] QRect panelWithShadow() const;

    const QSize usualSize_;
    QWidget* panel_;
    QVariantAnimation slide_;
    qreal out_ = 1;                 ///< how far it has come out: 0 to 1
    QPointer<QWidget> before_;      ///< had the keyboard when the sheet came
    QPointer<QWidget> lastInside_;  ///< has it now
};

}  // namespace brimvault::ui
