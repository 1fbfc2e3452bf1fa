#pragma once

#include <QScopedValueRollback>

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
    /// Operations of a scan have not returned yet, be it one that was stopped: they still bring results. Those that
    /// hang are given up, and bring none.
    [[nodiscard]] virtual bool isScanReturning() const = 0;
    /// A question to the user is open; nothing begins meanwhile, however it is asked for.
    [[nodiscard]] bool isQuestionOpen() const { return questionOpen_; }
    /// Keeps a question open for as long as it lives.
    class OpenQuestion {
    public:
        explicit OpenQuestion(ApplicationController& controller) : rollback_(controller.questionOpen_, true) {}

    private:
        QScopedValueRollback<bool> rollback_;
    };
    /// A scan has been started at least once in this run.
    [[nodiscard]] virtual bool bScanStarted() const = 0;

    /// Shows the list of the section in a row of the section list.
    virtual void activatePanel(int row) = 0;
    virtual void updateSelectAllCheck() = 0;
    virtual void UpdateTextsAboutFreeUpSize() = 0;
    [[nodiscard]] virtual QWidget* window() const = 0;

private:
    bool questionOpen_ = false;
};

}  // namespace brimvault::ui
