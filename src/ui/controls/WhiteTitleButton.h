#pragma once

#include <QLatin1String>
#include <QPushButton>

#include "ui/controls/ProgressIndicator.h"

namespace brimvault::ui {

/// A borderless button: a picture stretched behind its title, which is white unless another colour is set. Main thread.
///
/// The first press of a double click may turn it into a button that does something else, as starting a scan does. The
/// second press is not meant for that one, and does nothing.
class WhiteTitleButton final : public QPushButton {
    Q_OBJECT

public:
    /// The pictures of a button at rest and pressed.
    struct Pictures {
        QLatin1String atRest;
        QLatin1String pressed;
    };

    static constexpr Pictures accent{QLatin1String("btnScanDes"), QLatin1String("btnScan")};
    static constexpr Pictures danger{QLatin1String("btnStopDes"), QLatin1String("btnStop")};
    static constexpr Pictures quiet{QLatin1String("btnQuietDes"), QLatin1String("btnQuiet")};

    explicit WhiteTitleButton(QWidget* parent = nullptr);
    /// A button without an owner, whose title is its accessible name as well. The size is that of the title in points.
    [[nodiscard]] static WhiteTitleButton* make(const QString& title, const Pictures& pictures, qreal titleSize);
    /// "Close".
    [[nodiscard]] static WhiteTitleButton* makeClose(qreal titleSize);

    /// Loaded by name when they are drawn first.
    void setPictures(const Pictures& pictures);
    /// The title, and the name that an assistive client reads.
    void setTitle(const QString& title, const QString& accessibleName);
    void setTitleColor(const QColor& color);
    /// In points.
    void setTitleSize(qreal size);
    /// As low as the buttons of alerts and sheets are, and at least that wide, in points that grow with the text.
    void setSmall(int minWidth);
    /// Gives the button an indicator beside its title; the name says what it shows to be going on.
    ProgressIndicator* addIndicator(const QString& accessibleName);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    void changeEvent(QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    [[nodiscard]] QColor textColor() const;
    [[nodiscard]] QRectF titlePlace() const;
    void placeIndicator();

    Pictures pictures_;
    QColor titleColor_;
    int meaning_ = 0;         ///< another one whenever the button stands for something else
    int pressedMeaning_ = 0;  ///< the one at the last press
    ProgressIndicator* indicator_ = nullptr;
};

}  // namespace brimvault::ui
