#pragma once

#include <QVariantAnimation>
#include <QWidget>

#include "ui/languages/LanguagesTableView.h"

namespace brimvault::ui {

/// The drawer with the languages to keep. It slides out of the window's edge and takes its room from the widgets beside
/// it. A closed drawer is hidden. Main thread.
class LanguagesDrawer final : public QWidget {
    Q_OBJECT

public:
    explicit LanguagesDrawer(QWidget* parent = nullptr);

    [[nodiscard]] LanguagesTableView* ptableView() const { return ptableView_; }
    /// True while it is open or sliding out.
    [[nodiscard]] bool isOpen() const { return open_; }
    void setOpen(bool open);
    /// Adapts to a new width of the window: in a narrow one the drawer is narrower.
    void fitWindow();

Q_SIGNALS:
    void drawerDidClose();
    /// The user pressed the escape key in the drawer.
    void closeRequested();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    [[nodiscard]] int fullWidth() const;
    void slideTo(int width);
    void arrived();

    QWidget* content_;  ///< as wide as the open drawer, even while it slides
    LanguagesTableView* ptableView_;
    QVariantAnimation slide_;
    bool open_ = false;
};

}  // namespace brimvault::ui
