#pragma once

#include <QCoreApplication>
#include <QLabel>

#include "platform/UserDefaults.h"
#include "ui/controls/PlashkaView.h"
#include "ui/services/Activity.h"

namespace brimvault::ui {

/// What the status panel says, and the hint on the start page: how much is selected, or how much was cleaned. The
/// widgets and the defaults outlive it. Main thread.
class StatusTexts {
    Q_DECLARE_TR_FUNCTIONS(StatusTexts)

public:
    StatusTexts(PlashkaView& plashka, QLabel& hint, const platform::UserDefaults& defaults)
        : plashka_(plashka), ptxtStartDescClean_(hint), defaults_(defaults) {}

    /// Bytes of what is selected, and of everything; or what is being done to them, and that the window then closes.
    void showSizes(quint64 selected, quint64 total, Activity activity, bool closes);
    /// What removing the selected bytes would free: said by the tooltip, where that is far from what is selected.
    void showFrees(quint64 selected, quint64 frees);
    /// The hint of the start page.
    void showHint();
    /// What the last clean of this run and all cleans have freed.
    void showCleanedSummary();

private:
    PlashkaView& plashka_;
    QLabel& ptxtStartDescClean_;
    const platform::UserDefaults& defaults_;
};

}  // namespace brimvault::ui
