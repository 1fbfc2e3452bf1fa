#pragma once

#include <QAbstractButton>
#include <QLatin1String>

namespace brimvault::ui {

/// A small button with a picture and no text; its tooltip and its accessible name say what it does. Main thread.
class IconButton final : public QAbstractButton {
    Q_OBJECT

public:
    IconButton(QLatin1String picture, const QString& name, QWidget* parent = nullptr);

    /// Shows that what the button opens is open, with another picture.
    void setOn(bool on);
    /// The picture for `setOn`; a button without one opens nothing.
    void setPictureOn(QLatin1String picture) { pictureOn_ = picture; }
    [[nodiscard]] bool opensSomething() const { return !pictureOn_.isEmpty(); }
    [[nodiscard]] bool isOn() const { return on_; }
    void setOpensMenu() { opensMenu_ = true; }
    [[nodiscard]] bool opensMenu() const { return opensMenu_; }

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QLatin1String picture_;
    QLatin1String pictureOn_;
    bool on_ = false;
    bool opensMenu_ = false;
};

}  // namespace brimvault::ui
