#include "engine/model/SectionItems.h"

#include <QSet>
#include <algorithm>
#include <utility>

#include "engine/DeleteInBackground.h"

namespace brimvault::engine {

namespace {

QSet<const FFItem*> pointers(const ItemArray& items) {
    QSet<const FFItem*> set;
    set.reserve(items.size());
    for (const auto& item : items) {
        set.insert(item.get());
    }
    return set;
}

}  // namespace

// The end of a scan repeats what its batches brought; then only the rest is new.
void SectionItems::replace(const ItemArray& items) {
    if (items_.size() <= items.size() && std::equal(items_.begin(), items_.end(), items.begin())) {
        append(items.mid(items_.size()));
        return;
    }
    beginGeneration();
    deleteInBackground(std::exchange(items_, ItemArray()));
    append(items);
}

void SectionItems::append(const ItemArray& items) {
    for (const auto& item : items) {
        item->watchMarks();
    }
    if (items_.isEmpty()) {
        items_ = items;  // shared, not copied
    } else {
        items_ += items;
    }
    nested_.addNew();
}

bool SectionItems::setChecked(FFItem& item, bool checked) {
    if (checked && !item.ppbDeletable()) {
        return false;
    }
    nested_.addNew();  // a clean may have changed the list
    const auto before = CleanableItem::marksRevision();
    const bool changes = item.ppbChecked() != checked;
    const auto untick = [](FFItem& holder) { holder.setPpbChecked(false); };
    item.setPpbChecked(checked);
    QList<const FFItem*> spared;  // one for each folder, as siblings have the same holders
    nested_.forEachInside(item, [&](FFItem& inner) {
        if (!checked || inner.mayBeTickedAlong()) {
            inner.setPpbChecked(checked);
        } else if (!inner.ppbChecked() && (spared.isEmpty() || !inner.isBeside(*spared.last()))) {
            spared.append(&inner);
        }
    });
    if (!checked) {
        nested_.forEachHolder(item, untick);
    }
    for (const auto* inner : std::as_const(spared)) {
        nested_.forEachHolder(*inner, untick);
    }
    if (nested_.holdsTargets()) {
        nested_.untickHoldersOfUnticked();
    }
    return CleanableItem::marksRevision() != before + (changes ? 1 : 0);
}

void SectionItems::settleMarks() {
    nested_.addNew();
    nested_.untickHoldersOfUnticked();
}

void SectionItems::remove(const ItemArray& gone) {
    if (gone.isEmpty()) {
        return;
    }
    const bool isNested = nested_.holdsAny();
    beginGeneration();
    removed_ = gone;
    if (gone.size() < items_.size() / 2) {
        const auto wanted = pointers(gone);
        items_.removeIf([&](const auto& item) { return wanted.contains(item.get()); });
    } else {
        removeMajority(gone);
    }
    if (isNested) {
        nested_.addNew();  // the sums leave out what lies in other items
    }
}

// A clean removes items in the order of the list, so one parallel pass finds nearly all. The remaining items go into a
// new array: the clean may still share the old one, and changing that would copy it first.
void SectionItems::removeMajority(const ItemArray& gone) {
    const ItemArray before = std::exchange(items_, ItemArray());
    auto next = gone.begin();
    for (const auto& item : before) {
        if (next != gone.end() && *next == item) {
            ++next;
        } else {
            items_.append(item);
        }
    }
    QSet<const FFItem*> unwanted;
    const auto left = pointers(items_);
    for (const auto& item : gone) {
        if (left.contains(item.get())) {
            unwanted.insert(item.get());
        }
    }
    items_.removeIf([&](const auto& item) { return unwanted.contains(item.get()); });
    deleteInBackground(before);
}

void SectionItems::forgetRemoved() { deleteInBackground(std::exchange(removed_, ItemArray())); }

void SectionItems::beginGeneration() {
    ++generation_;
    nested_.clear();
    forgetRemoved();
    summed_ = 0;
}

const ItemSums& SectionItems::sums() const {
    const quint64 revision = CleanableItem::marksRevision();
    if (std::exchange(marksRevision_, revision) != revision) {
        summed_ = 0;
    }
    if (summed_ == 0) {
        sums_ = {};
    }
    if (summed_ < items_.size()) {
        for (; summed_ < items_.size(); ++summed_) {
            sums_.add(*items_[summed_]);
        }
        sums_.repeated = nested_.freesRepeated();
    }
    return sums_;
}

}  // namespace brimvault::engine
