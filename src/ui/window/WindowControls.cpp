#include "ui/window/WindowControls.h"

#include "ui/look/Look.h"

namespace brimvault::ui {

namespace {

using Name = QLatin1String;

constexpr WhiteTitleButton::Pictures cleanPictures{Name("btnCleanDes"), Name("btnClean")};

void setLook(WhiteTitleButton& button, const WhiteTitleButton::Pictures& pictures, QRgb color) {
    button.setPictures(pictures);
    button.setTitleColor(QColor(color));
}

void setTurning(ProgressIndicator& indicator, bool turns) {
    if (turns && !indicator.isAnimated()) {
        indicator.startAnimation();
    } else if (!turns && indicator.isAnimated()) {
        indicator.stopAnimation();
    }
}

}  // namespace

ControlStates controlStates(Activity activity, const ControlFacts& facts) {
    const Activity work = workOf(activity);
    const bool free = work == Activity::idle;
    const bool scanning = work == Activity::scanning;
    const bool cleaning = work == Activity::cleaning;
    return {
        .scan = free || scanning,
        .clean = cleaning || (free && facts.scanStarted && facts.anythingSelected),
        .itemButtons = facts.scanStarted && !scanning && !cleaning,
        .selectAll = free && facts.listHasItems,
        .sectionChecks = free,
        .itemChecks = free || scanning,
        .undoMove = free,
        .languageChecks = !cleaning,
    };
}

void WindowControls::render() {
    enableControlsScan(!application_.pbScanning());
    enableControlsClean(!application_.pbCleanning());
}

void WindowControls::enable() {
    const ControlStates states = controlStates(application_.activity(), facts_());
    auto* lists = window_.lists();
    window_.sidebar()->pbtnScan()->setEnabled(states.scan);
    lists->pbtnClean()->setEnabled(states.clean);
    lists->pbtnInf()->setEnabled(states.itemButtons);
    lists->pbtnFinder()->setEnabled(states.itemButtons);
    lists->pbtnSelectAll()->setEnabled(states.selectAll);
    lists->movedLine()->undoButton()->setEnabled(states.undoMove);
}

void WindowControls::enableControlsScan(bool idle) {
    setImgs4Scan(idle);
    setTurning(*window_.sidebar()->pProgressScan(), !idle);
    enable();
}

void WindowControls::enableControlsClean(bool idle) {
    setImgs4Clean(idle);
    setTurning(*window_.lists()->pProgressClean(), !idle);
    enable();
}

// Once there is something to clean, cleaning is the main action and the scan button turns quiet.
void WindowControls::setImgs4Scan(bool idle) {
    auto& button = *window_.sidebar()->pbtnScan();
    if (!idle) {
        setLook(button, WhiteTitleButton::danger, look::textOnAccent);
        button.setTitle(tr("Stop"), tr("Stop Scanning"));
        return;
    }
    if (application_.bScanStarted()) {
        setLook(button, WhiteTitleButton::quiet, look::accentDark);
    } else {
        setLook(button, WhiteTitleButton::accent, look::textOnAccent);
    }
    button.setTitle(tr("Scan"), tr("Scan"));
}

void WindowControls::setImgs4Clean(bool idle) {
    auto& button = *window_.lists()->pbtnClean();
    setLook(button, idle ? cleanPictures : WhiteTitleButton::danger, look::textOnAccent);
    button.setTitle(idle ? tr("Clean") : tr("Stop"), idle ? tr("Clean") : tr("Stop Cleaning"));
}

}  // namespace brimvault::ui
