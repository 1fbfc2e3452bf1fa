#include "ui/list/MovedLine.h"

#include <QEvent>
#include <QHBoxLayout>
#include <utility>

#include "engine/model/FileSize.h"
#include "ui/look/Look.h"

namespace brimvault::ui {

namespace {

constexpr qreal textSize = 12;
constexpr int minButtonWidth = 72;

}  // namespace

MovedLine::MovedLine(QWidget* parent)
    : QWidget(parent),
      text_(new ElidedLabel(look::font(textSize), look::textSecondary)),
      undo_(WhiteTitleButton::make(tr("Undo"), WhiteTitleButton::quiet, textSize)) {
    undo_->setTitleColor(QColor(look::accentDark));
    undo_->setSmall(minButtonWidth);
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins({});
    layout->addWidget(text_);
    layout->addWidget(undo_);
    undo_->installEventFilter(this);
    connect(undo_, &QAbstractButton::clicked, this, &MovedLine::undoRequested);
    hide();
}

// Space that is taken until the Trash is emptied was not freed, and is not called so.
void MovedLine::setMoved(quint64 bytes, const QString& lastName) {
    setVisible(bytes > 0 || !lastName.isEmpty());
    if (isHidden()) {
        return;  // nobody is told of texts that nobody sees
    }
    text_->setText(tr("Moved %1 to the Trash").arg(engine::FileSize::formatMemoryStringDot1(bytes)));
    text_->setToolTip(tr("The space is freed when the Trash is emptied"));
    undo_->setTitle(tr("Undo"), tr("Undo: put “%1” back").arg(lastName));
    undo_->setVisible(!lastName.isEmpty());
}

bool MovedLine::eventFilter(QObject* watched, QEvent* event) {
    if (watched == undo_ && event->type() == QEvent::EnabledChange && undo_->isEnabled()) {
        const auto holder = std::exchange(holder_, nullptr);
        if (holder != nullptr && holder->hasFocus() && undo_->isVisible()) {
            undo_->setFocus();
        }
    }
    return QWidget::eventFilter(watched, event);
}

}  // namespace brimvault::ui
