#pragma once

#include <QVariantAnimation>
#include <QWidget>

#include "ui/languages/LanguagesTableView.h"

namespace brimvault::ui {

/// The drawer with the languages to keep. It slides out of the window's edge, and what stands beside it makes room.
/// While it is closed it is hidden. Main thread.
class LanguagesDrawer final : public QWidget {
    Q_OBJECT

public:
    explicit LanguagesDrawer(QWidget* parent = nullptr);

    [[nodiscard]] LanguagesTableView* ptableView() const { return ptableView_; }
    /// It is out, or on its way.
    [[nodiscard]] bool isOpen() const { return open_; }
    void setOpen(bool open);
    /// Takes in that the window has another width: in a narrow one the drawer leaves the list its room.
    void fitWindow();

Q_SIGNALS:
    void drawerDidClose();
    /// The user pressed the escape key in it.
    void closeRequested();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    [[nodiscard]] int fullWidth() const;
    void slideTo(int width);
    void arrived();

    QWidget* content_;  ///< as wide as the open drawer, however far that is out
    LanguagesTableView* ptableView_;
    QVariantAnimation slide_;
    bool open_ = false;
};

}  // namespace brimvault::ui
