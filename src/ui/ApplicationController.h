#pragma once

class QWidget;

namespace brimvault::ui {

/// What the section list and the item lists ask of the controller of the whole window. Main thread.
class ApplicationController {
public:
    virtual ~ApplicationController() = default;

    [[nodiscard]] virtual bool pbScanning() const = 0;
    virtual void setPbScanning(bool scanning) = 0;
    [[nodiscard]] virtual bool pbCleanning() const = 0;
    virtual void setPbCleanning(bool cleaning) = 0;
    /// A single item is being removed.
    [[nodiscard]] virtual bool pbRemoving() const = 0;
    virtual void setPbRemoving(bool removing) = 0;
    /// Something runs beside which nothing else may begin.
    [[nodiscard]] bool sectionControllerIsScanOrRemoveProcessPerforming() const {
        return pbScanning() || pbCleanning() || pbRemoving();
    }
    /// A scan has been started at least once in this run.
    [[nodiscard]] virtual bool bScanStarted() const = 0;

    /// Shows the list of the section in a row of the section list.
    virtual void activatePanel(int row) = 0;
    virtual void updateSelectAllCheck() = 0;
    virtual void UpdateTextsAboutFreeUpSize() = 0;
    [[nodiscard]] virtual QWidget* window() const = 0;
};

}  // namespace brimvault::ui
