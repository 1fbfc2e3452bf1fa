#include <QApplication>
#include <QLocale>
#include <future>

#include "engine/Remover.h"
#include "platform/UserDefaults.h"
#include "ui/AccessibleItemView.h"
#include "ui/FAppDelegate.h"
#include "ui/Look.h"
#include "ui/SectionOperations.h"
#include "ui/Translations.h"
#include "ui/WindowAlerts.h"

int main(int argc, char* argv[]) {
    using namespace brimvault;

    QApplication application(argc, argv);
    // The user's languages are read from files; meanwhile the window is made.
    const auto reading = std::async(std::launch::async, [] { (void)langres::LanguagesManager::sharedManager(); });
    QApplication::setApplicationName(QStringLiteral("Brimvault"));
    QApplication::setDesktopFileName(QStringLiteral("com.quorvel.brimvault"));
    const ui::Translations translations(QLocale::system().uiLanguages());  // the program's language
    ui::look::apply();                                                     // light, in the window's own type
    ui::AccessibleItemView::install();                                     // the lists, as assistive clients see them

    platform::UserDefaults defaults(platform::UserDefaults::standardFile());  // settings and statistics
    ui::WindowAlerts alerts;                                                  // questions to the user
    auto& remover = engine::Remover::GetInstance();                           // what the user may not remove
    ui::FAppDelegate delegate(ui::scanOperations(),                           // what scans each section
                              ui::cleanOperations(remover),                   // what cleans each section
                              {defaults, alerts, ui::UtilMod::sharedUtil(),   // the file browser
                               langres::LanguagesManager::sharedManager()});  // the user's languages; and the window
    delegate.applicationDidFinishLaunching();
    const int result = QApplication::exec();
    remover.giveUp();  // the rights that the user has granted
    return result;
}
