#pragma once

class QObject;

namespace brimvault::ui {

/// Decides when a sheet may come over the window, and hears of its end. Main thread.
class SheetCoordinator {
public:
    virtual ~SheetCoordinator() = default;

    /// The sender has a sheet to show; it is told to, now or once nothing is in the way.
    virtual void willModalSheetBegin(const QObject* sender) = 0;
    /// The sender's sheet was closed a moment ago.
    virtual void didModalSheetEnd(const QObject* sender) = 0;
};

}  // namespace brimvault::ui
