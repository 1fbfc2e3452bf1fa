#include "ui/list/RowIcons.h"

#include <QTableView>
#include <QtConcurrentRun>

#include "ui/list/ItemListModel.h"

namespace brimvault::ui {

namespace {

constexpr int maxWanted = 200;    // several screens full; older requests are no longer visible
constexpr int pagesKeptNear = 1;  // icons of rows so near the visible ones are still loaded
constexpr std::chrono::milliseconds threadTimeout{200};

}  // namespace

RowIcons::RowIcons(QTableView* view, Load load) : view_(view), load_(std::move(load)), thread_(1, threadTimeout) {
    thread_->setThreadPriority(QThread::LowPriority);
    connect(&loading_, &QFutureWatcherBase::finished, this, &RowIcons::take);
}

QPixmap RowIcons::of(const RowPicture& picture, qreal density) {
    if (picture.better == RowPicture::Better::none) {
        return {};
    }
    const Wanted wanted{picture, density};
    if (const auto* known = known_.object(wanted)) {
        return *known;
    }
    if (busy_ && wanted == current_) {
        return {};
    }
    wanted_.removeOne(wanted);
    wanted_.append(wanted);
    if (wanted_.size() > maxWanted) {
        wanted_.removeFirst();
    }
    if (wanted_.size() == 1) {
        QMetaObject::invokeMethod(this, &RowIcons::loadNext, Qt::QueuedConnection);  // not while painting
    }
    return {};
}

void RowIcons::loadNext() {
    if (busy_ || wanted_.isEmpty()) {
        return;
    }
    connect(view_->model(), &QAbstractItemModel::rowsRemoved, this, &RowIcons::forgetWhenEmpty, Qt::UniqueConnection);
    QSet<RowPicture> near;
    forEachRowNear(pagesKeptNear, [&](int /*row*/, const RowPicture& picture) { near.insert(picture); });
    while (!wanted_.isEmpty()) {
        current_ = wanted_.takeLast();
        if (near.contains(current_.picture)) {
            busy_ = true;
            const int pixels = qCeil(side * current_.density);
            loading_.setFuture(QtConcurrent::run(
                &*thread_, [load = load_, picture = current_.picture, pixels] { return load(picture, pixels); }));
            return;
        }
    }
}

void RowIcons::take() {
    busy_ = false;
    auto* icon = new QPixmap(QPixmap::fromImage(loading_.result()));
    icon->setDevicePixelRatio(current_.density);
    const bool found = !icon->isNull();
    known_.insert(current_, icon);
    if (found) {
        forEachRowNear(0, [this](int row, const RowPicture& picture) {
            if (picture == current_.picture) {
                view_->update(view_->model()->index(row, ItemListModel::iconColumn));
            }
        });
    }
    loadNext();
}

void RowIcons::forEachRowNear(int pages, const std::function<void(int row, const RowPicture&)>& call) const {
    const auto* model = view_->model();
    const int first = view_->rowAt(0);
    if (!view_->isVisible() || first < 0) {
        return;
    }
    const int below = view_->rowAt(view_->viewport()->height() - 1);
    const int last = below < 0 ? model->rowCount() - 1 : below;
    const int around = pages * (last - first + 1);
    for (int row = std::max(0, first - around); row <= std::min(model->rowCount() - 1, last + around); ++row) {
        call(row, model->index(row, ItemListModel::iconColumn).data(ItemListModel::iconRole).value<RowPicture>());
    }
}

// An empty list means that a new scan begins; icons may have changed since the last one.
void RowIcons::forgetWhenEmpty() {
    if (view_->model()->rowCount() == 0) {
        known_.clear();
    }
}

}  // namespace brimvault::ui
