#include "ui/sections/SectionProgress.h"

#include <algorithm>

#include "engine/notification/Notifications.h"

namespace brimvault::ui {

using engine::Section;

namespace {

constexpr int whole = 100;

}  // namespace

SectionProgress::SectionProgress(const engine::DataMan& model, ProgressIndicator& indicator,
                                 std::function<Sections()> sections)
    : model_(model), indicator_(indicator), sections_(std::move(sections)) {
    auto& center = engine::NotificationCenter::defaultCenter();
    for (const Section section : engine::allSections) {
        const auto words = engine::vocabulary(section);
        observations_.push_back(
            center.addObserver(words.interfaceProgress, [this, section](const auto&) { takeReported(section); }));
        observations_.push_back(
            center.addObserver(words.interfaceFinished, [this, section](const auto&) { take(section, whole); }));
    }
    connect(&indicator_, &ProgressIndicator::animationChanged, this, [this] {
        if (indicator_.isAnimated()) {
            begin();
        }
    });
}

void SectionProgress::begin() {
    included_ = sections_();
    percent_ = {};
    show();
}

void SectionProgress::complete() {
    if (indicator_.isAnimated()) {
        indicator_.setPercent(whole);
    }
}

// A scan may find more than it expected: its per cent is capped.
void SectionProgress::takeReported(Section section) {
    if (const auto percent = model_.progressPercent(section)) {
        take(section, static_cast<int>(std::clamp<engine::Number>(*percent, 0, whole)));
    }
}

void SectionProgress::take(Section section, int percent) {
    if (indicator_.isAnimated()) {
        percent_[section] = percent;
        show();
    }
}

void SectionProgress::show() {
    int sum = 0;
    int count = 0;
    for (const Section section : engine::allSections) {
        sum += included_[section] ? percent_[section] : 0;
        count += included_[section] ? 1 : 0;
    }
    indicator_.setPercent(count == 0 ? 0 : sum / count);
}

}  // namespace brimvault::ui
