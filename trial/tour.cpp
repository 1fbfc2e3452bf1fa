// The tour: the real window over a sample home, from the start page to a clean, with a picture of each scene. It is
// started with the sample home as the user's home folder and answers 0 only when the folders ended up as they should.

#include <QApplication>
#include <QDir>
#include <filesystem>
#include <iostream>
#include <semaphore>
#include <set>
#include <string>

#include "app/CleanOperations.h"
#include "app/scan/ScanOperations.h"
#include "engine/notification/NotificationCenter.h"
#include "engine/notification/Notifications.h"
#include "engine/removal/Remover.h"
#include "platform/LibraryURLs.h"
#include "platform/System.h"
#include "trial/EnglishEnvironment.h"
#include "trial/Guide.h"
#include "trial/LinuxDesktop.h"
#include "trial/SampleHome.h"
#include "ui/controls/AlertWindow.h"
#include "ui/look/FocusRing.h"
#include "ui/look/Look.h"
#include "ui/window/FAppDelegate.h"

namespace {

using namespace brimvault;
namespace fs = std::filesystem;

constexpr int cachesRow = 0;
constexpr int languagesRow = 1;
constexpr int downloadsRow = 3;
constexpr int settling = 100;  // milliseconds; what was handed over to the main thread is on show by then
constexpr int sliding = 400;   // milliseconds; a drawer is out by then
constexpr const char* spared = "com.vendor.photos";

// The folders that may change: those with items, and the program's settings.
std::vector<fs::path> changingFolders() {
    auto folders = trial::LinuxDesktop::changingFolders();
    folders.insert(folders.end(), {"Library/Caches", "Library/Containers", "Library/Logs",
                                   "Library/Application Support/CrashReporter", ".Trash", "Applications"});
    return folders;
}

int failures = 0;

void expect(bool holds, const std::string& what) {
    if (!holds) {
        std::cerr << "tour: not as it should be: " << what << '\n';
        ++failures;
    }
}

std::set<std::string> names(const fs::path& folder) {
    std::set<std::string> found;
    for (const auto& entry : fs::directory_iterator(folder)) {
        found.insert(entry.path().filename());
    }
    return found;
}

class Camera {
public:
    explicit Camera(QString folder) : folder_(std::move(folder)) { QDir().mkpath(folder_); }

    // On a 2x screen the picture's name ends in "@2x".
    void take(QWidget* window, const QString& scene) const {
        const QString density = window->devicePixelRatio() > 1 ? QStringLiteral("@2x") : QString();
        const QString file = QDir(folder_).filePath(scene + density + QStringLiteral(".png"));
        expect(window->grab().save(file), "the picture " + file.toStdString() + " can be written");
        std::cout << file.toStdString() << '\n';
    }

private:
    QString folder_;
};

// Holds the scan at its eighth batch of results, so that a picture shows it under way.
class Pause {
public:
    Pause()
        : observation_(engine::NotificationCenter::defaultCenter().addObserver(
              engine::vocabulary(engine::Section::caches).scanProgress, [this](const auto&) {
                  constexpr int batches = 8;
                  if (++seen_ == batches) {
                      reached_.release();
                      goOn_.acquire();
                  }
              })) {}

    bool waitUntilReached() {
        return trial::Guide::waitFor([this] { return reached_.try_acquire(); });
    }
    void end() { goOn_.release(); }

private:
    int seen_ = 0;
    std::binary_semaphore reached_{0};
    std::binary_semaphore goOn_{0};
    engine::NotificationCenter::Observation observation_;
};

void scanScenes(ui::FAppDelegate& application, trial::Guide& guide, const Camera& camera) {
    auto* window = application.window();
    camera.take(window, QStringLiteral("start"));
    guide.clickSectionCheck(downloadsRow);
    Pause pause;
    trial::Guide::click(window->startPage()->btnStartScanButton2());
    expect(pause.waitUntilReached(), "the scan reports progress");
    expect(trial::Guide::waitFor([&] { return guide.list() != nullptr; }), "the list shows what was found so far");
    guide.clickHeader(ui::ItemListModel::sizeColumn);
    QTest::mouseMove(window);
    QTest::qWait(2 * settling);
    camera.take(window, QStringLiteral("scanning"));
    pause.end();
    expect(trial::Guide::waitFor([&] { return !application.pbScanning(); }), "the scan ends");
}

// The program's menu, and its about window.
void menuScenes(ui::FAppDelegate& application, const Camera& camera) {
    auto* window = application.window();
    trial::Guide::click(window->sidebar()->pbtnMenu());
    auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    expect(menu != nullptr, "the menu opens");
    if (menu == nullptr) {
        return;
    }
    QTest::qWait(settling);
    camera.take(menu, QStringLiteral("menu"));
    menu->close();
    application.menu().perform(ui::MenuAction::showAboutScreen);
    auto* about = window->findChild<ui::AboutWC*>();
    expect(about != nullptr, "the about window opens");
    if (about != nullptr) {
        QTest::qWait(settling);
        camera.take(about, QStringLiteral("about"));
        about->close();
    }
}

// The drawer of languages to keep, of a user who reads German, beside the list of applications.
void languagesScene(ui::FAppDelegate& application, trial::Guide& guide, const Camera& camera) {
    guide.clickSection(languagesRow);
    guide.clickHeader(ui::ItemListModel::sizeColumn);
    trial::Guide::click(application.window()->pbtnLangs());
    guide.clickCell(1, ui::ItemListModel::nameColumn);
    QTest::mouseMove(application.window());
    QTest::qWait(sliding);
    camera.take(application.window(), QStringLiteral("languages"));
}

void reviewAndClean(ui::FAppDelegate& application, trial::Guide& guide, const Camera& camera) {
    guide.clickSectionCheck(downloadsRow);
    languagesScene(application, guide, camera);
    guide.clickSection(cachesRow);
    QTest::qWait(settling);
    menuScenes(application, camera);
    const int row = guide.row(QString::fromLatin1(spared));
    expect(row >= 0, std::string("the list shows ") + spared);
    guide.clickCell(row, ui::ItemListModel::checkColumn);
    QTest::qWait(settling);
    camera.take(application.window(), QStringLiteral("after-scan"));
    const bool ended = guide.clean([&](ui::AlertWindow& alert) {
        QTest::qWait(settling);
        camera.take(&alert, QStringLiteral("confirm"));
    });
    expect(ended, "the clean ends");
    QTest::mouseMove(application.window());
    QTest::qWait(settling);
    camera.take(application.window(), QStringLiteral("cleaned"));
}

// The report of items that were not removed.
void notCleanedScene(ui::FAppDelegate& application, const Camera& camera) {
    application.pNotCleanedController().updateNotCleanedRusultsApps(
        engine::NotCleanedApplications{{QStringLiteral("Chess"), 1}, {QStringLiteral("Office Writer"), 3}}, {}, {},
        engine::NotRemovedDictionary{{QStringLiteral("old-disk-image"), QStringLiteral("Permission denied")}},
        engine::NotRemovedDictionary{{QStringLiteral("install.log"), QStringLiteral("Read-only file system")}},
        &application);
    auto* sheet = application.pNotCleanedController().pNotCleanedInfoPanel();
    expect(sheet != nullptr, "what could not be removed is shown");
    if (sheet != nullptr) {
        QTest::qWait(sliding);
        camera.take(application.window(), QStringLiteral("not-cleaned"));
        trial::Guide::click(trial::Guide::button(sheet, QStringLiteral("Close")));
        expect(!sheet->isVisible(), "the sheet closes");
    }
}

}  // namespace

int main(int argc, char* argv[]) {
    trial::speakEnglish();
    QApplication qt(argc, argv);
    if (argc != 2) {
        std::cerr << "usage: brimvault-tour PICTURES\n";
        return 2;
    }
    const fs::path home = platform::homeFolder();
    const fs::path caches = platform::LibraryURLs::getCachesFolderURL().value();
    if (!fs::exists(home / trial::SampleHome::marker)) {
        std::cerr << "brimvault-tour removes files and runs only over a sample home; " << home << " is none.\n";
        return 2;
    }
    ui::look::apply();
    ui::watchFocus();
    const auto before = trial::fingerprint(home, changingFolders());

    platform::UserDefaults defaults(platform::UserDefaults::standardFile());
    ui::WindowAlerts alerts;
    const auto fileBrowser = platform::FileBrowser::ofSession();
    const auto workspace = platform::Workspace::ofSession();
    ui::UtilMod util(alerts, *fileBrowser, *workspace, platform::FinderPreferences::shared(),
                     engine::Remover::GetInstance());
    const langres::LanguagesManager languages({{QStringLiteral("en-US"), QStringLiteral("de")}, {}});
    auto cleans = app::cleanOperations(engine::PrivilegedRemover::none());
    cleans.volumes = nullptr;  // what they say differs from one picture to the next
    ui::FAppDelegate application(app::scanOperations(), std::move(cleans), {defaults, alerts, util, languages});
    application.applicationDidFinishLaunching();
    application.window()->resize(1000, 660);  // the designed size, whatever that of the screen
    trial::Guide guide(application);
    const Camera camera(QString::fromLocal8Bit(argv[1]));
    scanScenes(application, guide, camera);
    reviewAndClean(application, guide, camera);
    notCleanedScene(application, camera);

    expect(names(caches) == std::set<std::string>{spared, trial::SampleHome::hiddenName},
           "only what was unticked, and what is hidden, is left in the caches folder");
    for (const auto& file : trial::LinuxDesktop::precious()) {
        expect(fs::exists(home / file), file.native() + " is left");
    }
    expect(names(home / "Library/Logs") == std::set<std::string>{"CrashReporter", "talagent.log.1"},
           "what is not listed is left in the logs folder");
    expect(names(home / ".Trash").empty() && names(home / ".local/share/Trash/files").empty() &&
               names(home / ".local/share/Trash/info").empty(),
           "the trash is empty, its records included");
    for (const auto& bundle : fs::directory_iterator(home / "Applications")) {
        expect(names(bundle.path() / "Contents/Resources") == std::set<std::string>{trial::SampleHome::iconName,
                                                                                    "Assets.car", "Base.lproj",
                                                                                    "German.lproj", "en.lproj"},
               "of the languages of " + bundle.path().native() + " those to keep are left");
    }
    expect(trial::fingerprint(home, changingFolders()) == before, "nothing outside was touched");
    std::cout << (failures == 0 ? "The folders are as they should be.\n" : "The tour failed.\n");
    return failures == 0 ? 0 : 1;
}
