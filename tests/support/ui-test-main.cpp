#include <gmock/gmock.h>

#include <QApplication>

#include "trial/EnglishEnvironment.h"
#include "ui/accessibility/AccessibleItemView.h"
#include "ui/look/FocusRing.h"
#include "ui/look/Look.h"

int main(int argc, char** argv) {
    brimvault::trial::speakEnglish();
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");  // windows without a display
    }
    QApplication application(argc, argv);
    testing::InitGoogleMock(&argc, argv);
    if (const int pixels = qEnvironmentVariableIntValue("BRIMVAULT_TEST_FONT"); pixels > 0) {
        QFont font = QApplication::font();  // as a user has made it who sees little
        font.setPixelSize(pixels);
        QApplication::setFont(font);
    }
    brimvault::ui::look::apply();
    brimvault::ui::watchFocus();
    brimvault::ui::AccessibleItemView::install();
    return RUN_ALL_TESTS();
}
