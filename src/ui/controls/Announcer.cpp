#include "ui/controls/Announcer.h"

#include <utility>

namespace brimvault::ui {

namespace {

constexpr int pauseTime = 250;  // milliseconds; more often nobody can listen

}  // namespace

Announcer::Announcer(std::function<void()> announce) : announce_(std::move(announce)) {
    pause_.setInterval(pauseTime);
    pause_.setSingleShot(true);
    QObject::connect(&pause_, &QTimer::timeout, &pause_, [this] { tellPending(); });
}

void Announcer::tellPending() {
    if (std::exchange(changedMeanwhile_, false)) {
        announceNow();
    }
}

void Announcer::changed() {
    if (pause_.isActive()) {
        changedMeanwhile_ = true;
    } else {
        announceNow();
    }
}

void Announcer::announceNow() {
    pause_.start();
    announce_();
}

}  // namespace brimvault::ui
