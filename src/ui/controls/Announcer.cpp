#include "ui/controls/Announcer.h"

#include <utility>

namespace brimvault::ui {

namespace {

constexpr int minInterval = 250;  // milliseconds; a screen reader cannot keep up with more

}  // namespace

Announcer::Announcer(std::function<void()> announce) : announce_(std::move(announce)) {
    interval_.setInterval(minInterval);
    interval_.setSingleShot(true);
    QObject::connect(&interval_, &QTimer::timeout, &interval_, [this] { flush(); });
}

void Announcer::flush() {
    if (std::exchange(pending_, false)) {
        announceNow();
    }
}

void Announcer::changed() {
    if (interval_.isActive()) {
        pending_ = true;
    } else {
        announceNow();
    }
}

void Announcer::announceNow() {
    interval_.start();
    announce_();
}

}  // namespace brimvault::ui
