#include "ui/sections/SectionsTableView.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QStyle>

#include "ui/look/Look.h"

namespace brimvault::ui {

SectionsTableView::SectionsTableView(QWidget* parent) : QListView(parent) {
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

QRect SectionsTableView::checkRect(const QModelIndex& index) const {
    constexpr int beforeCard = look::sectionRowGap / 2;
    const QRect row = visualRect(index);
    return QStyle::visualRect(layoutDirection(), row,
                              QRect(row.left(), row.top(), beforeCard + look::scaled(textLeft), row.height()));
}

void SectionsTableView::mousePressEvent(QMouseEvent* event) {
    const QModelIndex index = indexAt(event->position().toPoint());
    if (event->button() == Qt::LeftButton && index.isValid() &&
        checkRect(index).contains(event->position().toPoint())) {
        press_.begin(index);
        return;
    }
    QListView::mousePressEvent(event);
}

void SectionsTableView::mouseReleaseEvent(QMouseEvent* event) {
    if (!press_.end([&](const auto& check) { return checkRect(check).contains(event->position().toPoint()); })) {
        QListView::mouseReleaseEvent(event);
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
