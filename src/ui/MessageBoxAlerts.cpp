#include "ui/MessageBoxAlerts.h"

#include <QAbstractButton>
#include <QCheckBox>
#include <QCoreApplication>
#include <QLabel>
#include <QMessageBox>

#include "ui/ImageLoad.h"

namespace brimvault::ui {

AlertAnswer MessageBoxAlerts::runModal(const Alert& alert, QWidget* window) {
    QMessageBox box(window);
    box.setWindowTitle(QStringLiteral("Brimvault"));
    constexpr int iconSize = 64;
    box.setIconPixmap(ImageLoad::LoadPNGImage(QLatin1String("AppIcon"), window->devicePixelRatioF())
                          .scaled(QSize(iconSize, iconSize) * window->devicePixelRatioF(), Qt::KeepAspectRatio,
                                  Qt::SmoothTransformation));
    // Names of files may look like markup, and are shown as they are.
    box.setTextFormat(Qt::PlainText);
    box.setText(alert.message);
    box.setInformativeText(alert.informativeText);
    if (auto* informative = box.findChild<QLabel*>(QStringLiteral("qt_msgbox_informativelabel"))) {
        informative->setTextFormat(Qt::PlainText);
    }
    box.setStandardButtons(QMessageBox::Ok);
    if (alert.buttons == Alert::Buttons::confirmAndCancel) {
        box.addButton(QMessageBox::Cancel);
    }
    box.setDefaultButton(QMessageBox::Ok);
    for (auto* button : box.buttons()) {
        button->setIcon({});
    }
    if (alert.suppression == Alert::Suppression::offered) {
        box.setCheckBox(new QCheckBox(QCoreApplication::translate("Alert", "Do not show this message again"), &box));
    }
    AlertAnswer answer;
    answer.returnCode = box.exec() == QMessageBox::Ok ? AlertAnswer::firstButton : AlertAnswer::secondButton;
    answer.suppressed = box.checkBox() != nullptr && box.checkBox()->isChecked();
    return answer;
}

}  // namespace brimvault::ui
