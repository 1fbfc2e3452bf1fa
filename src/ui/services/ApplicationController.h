#pragma once

#include <QtGlobal>

#include "engine/Section.h"
#include "ui/services/Activity.h"

class QWidget;

namespace brimvault::ui {

/// What the section list and the item lists ask of the controller of the whole window. Main thread.
class ApplicationController {
public:
    virtual ~ApplicationController() = default;

    [[nodiscard]] virtual Activity activity() const = 0;
    /// Has the whole window follow.
    virtual void setActivity(Activity next) = 0;

    // Questions asked of the activity, and calls that begin or end one.
    [[nodiscard]] bool pbScanning() const { return isScan(activity()); }
    void setPbScanning(bool scanning) { scanning ? setActivity(Activity::scanning) : endIf(pbScanning()); }
    [[nodiscard]] bool pbCleanning() const { return isClean(activity()); }
    void setPbCleanning(bool cleaning) { cleaning ? setActivity(Activity::cleaning) : endIf(pbCleanning()); }
    /// A single item is being removed.
    [[nodiscard]] bool pbRemoving() const { return activity() == Activity::removing; }
    void setPbRemoving(bool removing) { removing ? setActivity(Activity::removing) : endIf(pbRemoving()); }
    /// Something runs beside which nothing else may begin.
    [[nodiscard]] bool sectionControllerIsScanOrRemoveProcessPerforming() const {
        return workOf(activity()) != Activity::idle;
    }
    /// A question to the user is open; nothing begins meanwhile, however it is asked for.
    [[nodiscard]] bool isQuestionOpen() const { return activity() == Activity::asking; }
    /// Keeps a question open for as long as it lives; to be made while the window is idle.
    class OpenQuestion {
    public:
        explicit OpenQuestion(ApplicationController& controller) : controller_(controller) {
            Q_ASSERT(controller.activity() == Activity::idle);
            controller_.setActivity(Activity::asking);
        }
        ~OpenQuestion() { controller_.endIf(controller_.isQuestionOpen()); }
        OpenQuestion(const OpenQuestion&) = delete;
        OpenQuestion& operator=(const OpenQuestion&) = delete;

    private:
        ApplicationController& controller_;
    };

    /// Operations of a scan, even of one that was stopped, have not returned yet and still bring results. Those that
    /// hang are given up, and bring none.
    [[nodiscard]] virtual bool isScanReturning() const = 0;
    /// A scan has been started at least once in this run.
    [[nodiscard]] virtual bool bScanStarted() const = 0;

    /// Shows the list of the section in a row of the section list.
    virtual void activatePanel(int row) = 0;
    virtual void updateSelectAllCheck() = 0;
    /// Shows the sizes of what is selected and of everything, and enables the controls that depend on them.
    virtual void UpdateTextsAboutFreeUpSize() = 0;
    [[nodiscard]] virtual QWidget* window() const = 0;

private:
    void endIf(bool running) {
        if (running) {
            setActivity(Activity::idle);
        }
    }
};

/// What an item list tells the section list. Main thread.
class CheckListener {
public:
    virtual ~CheckListener() = default;

    /// An item of the section was ticked or unticked. Ticking one ticks its section; unticking never unticks it.
    virtual void setSectionChecked(engine::Section section, bool checked) = 0;
};

}  // namespace brimvault::ui
