#pragma once

#include <QObject>
#include <functional>
#include <vector>

#include "engine/model/DataMan.h"
#include "engine/notification/NotificationCenter.h"
#include "ui/controls/ProgressIndicator.h"

namespace brimvault::ui {

/// How far a scan or a clean has come, in per cent, on an indicator: each of its sections counts as much as the others.
/// A section that reports no per cent to the model counts as 0 until it has ended. Progress begins anew when the
/// indicator starts to turn. Main thread.
class SectionProgress final : public QObject {
    Q_OBJECT

public:
    using Sections = engine::PerSection<bool>;

    /// The sections that a scan or a clean starting now would take; the model and the indicator outlive it.
    SectionProgress(const engine::DataMan& model, ProgressIndicator& indicator, std::function<Sections()> sections);

    /// Forgets the progress of the scan before.
    void begin();
    /// Shows 100 per cent, even if a section has reported less; nothing if the indicator was stopped before.
    void complete();

private:
    void take(engine::Section section, int percent);
    void takeReported(engine::Section section);
    void show();

    const engine::DataMan& model_;
    ProgressIndicator& indicator_;
    const std::function<Sections()> sections_;
    Sections included_{};
    engine::PerSection<int> percent_{};
    std::vector<engine::NotificationCenter::Observation> observations_;
};

}  // namespace brimvault::ui
