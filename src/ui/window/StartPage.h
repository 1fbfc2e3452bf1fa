#pragma once

#include <QLabel>
#include <QWidget>

#include "ui/controls/WhiteTitleButton.h"

class QGridLayout;
class QVBoxLayout;

namespace brimvault::ui {

/// What stands on the right before the first scan. Main thread.
class StartPage final : public QWidget {
    Q_OBJECT

public:
    explicit StartPage(QWidget* parent = nullptr);

    [[nodiscard]] WhiteTitleButton* btnStartScanButton2() const { return btnStartScanButton2_; }
    [[nodiscard]] QLabel* ptxtStartDescClean() const { return ptxtStartDescClean_; }
    /// Shows the drawer of the languages at its side, and its button in the corner, until another page takes them.
    void lodgeDrawer(QWidget* drawer, QAbstractButton* pbtnLangs);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QVBoxLayout* makePage();

    QGridLayout* layout_;
    WhiteTitleButton* btnStartScanButton2_;
    QLabel* ptxtStartDescClean_;
};

}  // namespace brimvault::ui
