#pragma once

#include <QCoreApplication>

#include "ui/services/ApplicationController.h"
#include "ui/window/MainWindow.h"

namespace brimvault::ui {

/// The controls of the window by what goes on: which can be used, and whether the two main buttons start or stop. The
/// window and its controller outlive it. Main thread.
class WindowControls {
    Q_DECLARE_TR_FUNCTIONS(WindowControls)

public:
    WindowControls(MainWindow& window, const ApplicationController& application)
        : window_(window), application_(application) {}

    /// The scan button stays enabled: while a scan runs it stops it.
    void enableControlsScan(bool idle);
    /// The clean button stays enabled: while a clean runs it stops it.
    void enableControlsClean(bool idle);
    void setImgs4Scan(bool idle);
    void setImgs4Clean(bool idle);

private:
    void enableListControls(bool idle);

    MainWindow& window_;
    const ApplicationController& application_;
};

}  // namespace brimvault::ui
