#pragma once

#include <QLatin1String>
#include <QPushButton>

#include "ui/controls/ProgressIndicator.h"

namespace brimvault::ui {

/// A button with a picture stretched behind its title, which is white unless another colour is set. Main thread.
///
/// The first click of a double click may change what the button does, as "Scan" becomes "Stop". The second click was
/// not meant for the new action and is ignored.
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

    void setPictures(const Pictures& pictures);
    /// A changed accessible name says that the button does something else now.
    void setTitle(const QString& title, const QString& accessibleName);
    void setTitleColor(const QColor& color);
    /// In points.
    void setTitleSize(qreal size);
    /// As low as the buttons of alerts and sheets are, and at least that wide, in points that grow with the text.
    void setSmall(int minWidth);
    /// Adds a progress indicator beside the title; its name says what is in progress.
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
    int action_ = 0;         ///< counts up when the action changes
    int pressedAction_ = 0;  ///< `action_` at the last press
    ProgressIndicator* indicator_ = nullptr;
};

}  // namespace brimvault::ui
