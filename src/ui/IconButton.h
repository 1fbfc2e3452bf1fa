#pragma once

#include <QAbstractButton>
#include <QLatin1String>

namespace brimvault::ui {

/// A small button that shows a picture alone; its name is in the tooltip and for those who cannot see it. Main thread.
class IconButton final : public QAbstractButton {
    Q_OBJECT

public:
    IconButton(QLatin1String picture, const QString& name, QWidget* parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QLatin1String picture_;
};

}  // namespace brimvault::ui
