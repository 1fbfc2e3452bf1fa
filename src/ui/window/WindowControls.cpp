#include "ui/window/WindowControls.h"

#include "ui/look/Look.h"

namespace brimvault::ui {

namespace {

using Name = QLatin1String;

constexpr WhiteTitleButton::Pictures scanPictures{Name("btnScanDes"), Name("btnScan")};
constexpr WhiteTitleButton::Pictures quietPictures{Name("btnQuietDes"), Name("btnQuiet")};
constexpr WhiteTitleButton::Pictures cleanPictures{Name("btnCleanDes"), Name("btnClean")};
constexpr WhiteTitleButton::Pictures stopPictures{Name("btnStopDes"), Name("btnStop")};

void setLook(WhiteTitleButton& button, const WhiteTitleButton::Pictures& pictures, QRgb color) {
    button.setPictures(pictures);
    button.setTitleColor(QColor(color));
}

}  // namespace

void WindowControls::enableControlsScan(bool idle) {
    setImgs4Scan(idle);
    window_.lists()->pbtnClean()->setEnabled(idle && application_.bScanStarted());
    enableListControls(idle);
}

void WindowControls::enableControlsClean(bool idle) {
    setImgs4Clean(idle);
    window_.sidebar()->pbtnScan()->setEnabled(idle);
    enableListControls(idle);
}

void WindowControls::enableListControls(bool idle) {
    auto* lists = window_.lists();
    for (QWidget* control : {static_cast<QWidget*>(lists->pbtnInf()), static_cast<QWidget*>(lists->pbtnFinder()),
                             static_cast<QWidget*>(lists->pbtnSelectAll())}) {
        control->setEnabled(idle && application_.bScanStarted());
    }
}

// Once there is something to clean, that is the main thing to do, and scanning steps back.
void WindowControls::setImgs4Scan(bool idle) {
    auto& button = *window_.sidebar()->pbtnScan();
    if (!idle) {
        setLook(button, stopPictures, look::textOnAccent);
        button.setTitle(tr("Stop"), tr("Stop Scanning"));
        return;
    }
    if (application_.bScanStarted()) {
        setLook(button, quietPictures, look::accentDark);
    } else {
        setLook(button, scanPictures, look::textOnAccent);
    }
    button.setTitle(tr("Scan"), tr("Scan"));
}

void WindowControls::setImgs4Clean(bool idle) {
    auto& button = *window_.lists()->pbtnClean();
    setLook(button, idle ? cleanPictures : stopPictures, look::textOnAccent);
    button.setTitle(idle ? tr("Clean") : tr("Stop"), idle ? tr("Clean") : tr("Stop Cleaning"));
}

}  // namespace brimvault::ui
