#pragma once

class QObject;

namespace brimvault::ui {

/// Decides when a sheet may be shown over the window. Main thread.
class SheetCoordinator {
public:
    virtual ~SheetCoordinator() = default;

    /// The sender has a sheet to show; the coordinator calls it back at once or when nothing is in the way.
    virtual void willModalSheetBegin(const QObject* sender) = 0;
    /// The sender's sheet has been closed.
    virtual void didModalSheetEnd(const QObject* sender) = 0;
};

}  // namespace brimvault::ui
