#include "ui/SectionsTableView.h"

#include <QAccessible>
#include <QKeyEvent>
#include <QMouseEvent>
#include <utility>

#include "ui/AccessibleItemView.h"
#include "ui/CheckToggle.h"
#include "ui/SectionRowDelegate.h"

namespace brimvault::ui {

SectionsTableView::SectionsTableView(QWidget* parent)
    : QListView(parent), subtitleNews_([this] { announceSubtitles(); }) {
    setItemDelegate(new SectionRowDelegate(this));
    viewport()->setAttribute(Qt::WA_Hover);
    setAccessibleName(tr("Sections"));
    setFrameShape(QFrame::NoFrame);
    setSelectionMode(QAbstractItemView::SingleSelection);
    setEditTriggers(QAbstractItemView::NoEditTriggers);
    setVerticalScrollMode(QAbstractItemView::ScrollPerPixel);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setSpacing(0);
    viewport()->setAutoFillBackground(false);
    QPalette clear = palette();
    clear.setColor(QPalette::Base, Qt::transparent);
    setPalette(clear);
}

void SectionsTableView::setModel(QAbstractItemModel* model) {
    QListView::setModel(model);
    announceCheckChanges(this, 0);
    connect(model, &QAbstractItemModel::dataChanged, this,
            [this](const QModelIndex& first, const QModelIndex& last, const QList<int>& roles) {
                if (QAccessible::isActive() && roles.contains(Qt::AccessibleDescriptionRole)) {
                    for (int row = first.row(); row <= last.row(); ++row) {
                        changedSubtitles_.insert(row);
                    }
                    subtitleNews_.changed();
                }
            });
}

void SectionsTableView::announceSubtitles() {
    for (const int row : std::exchange(changedSubtitles_, {})) {
        announceDescription(this, row);
    }
}

QRect SectionsTableView::checkRect(const QModelIndex& index) const {
    return SectionRowDelegate::checkRect(visualRect(index), layoutDirection());
}

void SectionsTableView::mousePressEvent(QMouseEvent* event) {
    const QModelIndex index = indexAt(event->position().toPoint());
    if (event->button() == Qt::LeftButton && index.isValid() &&
        checkRect(index).contains(event->position().toPoint())) {
        pressedCheck_ = index;
        viewport()->update();
        return;
    }
    QListView::mousePressEvent(event);
}

void SectionsTableView::mouseReleaseEvent(QMouseEvent* event) {
    const QModelIndex pressed = std::exchange(pressedCheck_, QPersistentModelIndex());
    if (!pressed.isValid()) {
        QListView::mouseReleaseEvent(event);
        return;
    }
    viewport()->update();
    if (checkRect(pressed).contains(event->position().toPoint())) {
        toggleCheck(this, pressed);
    }
}

void SectionsTableView::keyPressEvent(QKeyEvent* event) {
    if (event->key() == Qt::Key_Space && currentIndex().isValid()) {
        toggleCheck(this, currentIndex());
        return;
    }
    QListView::keyPressEvent(event);
}

}  // namespace brimvault::ui
