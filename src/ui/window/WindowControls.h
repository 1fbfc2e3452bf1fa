#pragma once

#include <QCoreApplication>
#include <functional>

#include "ui/services/ApplicationController.h"
#include "ui/window/MainWindow.h"

namespace brimvault::ui {

/// What the enabling rules depend on beside the activity.
struct ControlFacts {
    bool scanStarted = false;       ///< at least once in this run
    bool anythingSelected = false;  ///< at least one byte, in the sections that are ticked
    bool listHasItems = false;      ///< the list on show
};

/// Which controls the user may use.
struct ControlStates {
    bool scan;            ///< the scan button, which stops a scan while one runs
    bool clean;           ///< the clean button, which stops a clean while one runs
    bool itemButtons;     ///< information, and show in the file manager
    bool selectAll;       ///< the check box of a whole list
    bool sectionChecks;   ///< the check boxes of the sections
    bool itemChecks;      ///< the check boxes of the items
    bool undoMove;        ///< the button beside the title of Downloads
    bool languageChecks;  ///< the check boxes of the languages to keep
    bool operator==(const ControlStates&) const = default;
};

/// All enabling rules of the window.
[[nodiscard]] ControlStates controlStates(Activity activity, const ControlFacts& facts);

/// The buttons of the window by its activity: which can be used, and whether the two main ones start or stop. The
/// window and its controller outlive it. Main thread.
class WindowControls {
    Q_DECLARE_TR_FUNCTIONS(WindowControls)

public:
    WindowControls(MainWindow& window, const ApplicationController& application, std::function<ControlFacts()> facts)
        : window_(window), application_(application), facts_(std::move(facts)) {}

    /// Shows another activity.
    void render();
    /// The facts have changed.
    void enable();

    void setImgs4Scan(bool idle);
    void setImgs4Clean(bool idle);

private:
    void enableControlsScan(bool idle);
    void enableControlsClean(bool idle);

    MainWindow& window_;
    const ApplicationController& application_;
    const std::function<ControlFacts()> facts_;
};

}  // namespace brimvault::ui
