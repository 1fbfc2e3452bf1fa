#pragma once

#include <QAbstractButton>

#include "ui/controls/Announcer.h"

namespace brimvault::ui {

/// The status area under the lists: a large text over a small one, or the small one alone in the middle. A press posts
/// "PlashkaPressed". Main thread.
class PlashkaView final : public QAbstractButton {
    Q_OBJECT

public:
    explicit PlashkaView(QWidget* parent = nullptr);

    void setTexts(const QString& large, const QString& small);
    /// Both texts, as an assistive client reads them.
    [[nodiscard]] QString spokenText() const;

    /// Whether it is highlighted: the pointer is on it, and a press would reach it.
    [[nodiscard]] bool isHovered() const { return hovered_; }

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void updateHover();
    [[nodiscard]] bool isUnderPointer() const;

    bool hovered_ = false;
    QString large_;
    QString small_;
    Announcer textNews_;  ///< a scan changes the texts many times a second
};

}  // namespace brimvault::ui
