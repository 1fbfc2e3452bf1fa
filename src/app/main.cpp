#include <QApplication>
#include <QLocale>
#include <chrono>
#include <cstdlib>
#include <future>
#include <thread>

#include "app/CleanOperations.h"
#include "app/Translations.h"
#include "app/scan/ScanOperations.h"
#include "engine/removal/Remover.h"
#include "platform/LibraryURLs.h"
#include "platform/UserDefaults.h"
#include "ui/accessibility/AccessibleItemView.h"
#include "ui/controls/AlertWindow.h"
#include "ui/look/FocusRing.h"
#include "ui/look/Look.h"
#include "ui/window/FAppDelegate.h"

namespace {

// Ends the process even if a thread hangs on a dead volume. All files are written by the time the window has closed.
void endWithinASecond(int result) {
    std::thread([result] {
        std::this_thread::sleep_for(std::chrono::seconds(1));
        std::_Exit(result);
    }).detach();
}

}  // namespace

int main(int argc, char* argv[]) {
    using namespace brimvault;

    QApplication application(argc, argv);
    // Reads the user's languages from files while the window is made.
    const auto reading = std::async(std::launch::async, [] { (void)langres::LanguagesManager::sharedManager(); });
    QApplication::setApplicationName(QStringLiteral("Brimvault"));
    QApplication::setDesktopFileName(QStringLiteral("com.quorvel.brimvault"));
    const app::Translations translations(QLocale::system().uiLanguages());  // the program's language
    ui::look::apply();                                                      // light colours, the window's own font
    ui::watchFocus();                                                       // the focus ring, for the keyboard alone
    ui::AccessibleItemView::install();                                      // the lists, as assistive clients see them

    platform::UserDefaults defaults(platform::UserDefaults::standardFile());  // settings and statistics
    ui::WindowAlerts alerts;                                                  // questions to the user
    auto& remover = engine::Remover::GetInstance();                           // what the user may not remove
    engine::RemovalHistory history(platform::LibraryURLs::getHistoryFolderURL().value_or(std::filesystem::path()));
    const auto fileBrowser = platform::FileBrowser::ofSession();  // shows files
    const auto workspace = platform::Workspace::ofSession();      // mails; the maker's other applications
    ui::UtilMod util(alerts, *fileBrowser, *workspace,            // acts outside the window: files, mails
                     platform::FinderPreferences::shared(), remover, history);
    ui::FAppDelegate delegate(app::scanOperations(),                          // what scans each section
                              app::cleanOperations(remover, history),         // what cleans each section
                              {defaults, alerts, util,                        // settings, questions, the outside
                               langres::LanguagesManager::sharedManager()});  // the user's languages; and the window
    delegate.applicationDidFinishLaunching();
    const int result = QApplication::exec();
    (void)history.waitUntilWritten();
    if (delegate.isAnythingLeftBehind()) {
        std::_Exit(result);  // destroy nothing under a thread that may still return
    }
    endWithinASecond(result);
    remover.giveUp();  // the rights that the user has granted
    return result;
}
