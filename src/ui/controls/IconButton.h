#pragma once

#include <QAbstractButton>
#include <QLatin1String>

namespace brimvault::ui {

/// A small button that shows a picture alone; its name is in the tooltip and for those who cannot see it. Main thread.
class IconButton final : public QAbstractButton {
    Q_OBJECT

public:
    IconButton(QLatin1String picture, const QString& name, QWidget* parent = nullptr);

    /// Shows the button as that of something that is on, with another picture.
    void setOn(bool on);
    /// None for a button that is never on.
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
