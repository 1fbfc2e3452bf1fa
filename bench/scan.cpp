// The whole program over a home folder: what two scans of all five sections take, one after the other, from the click
// on "Scan" to "scanFinished", with the window open; how often they wake a thread; and what memory they take above that
// of the idle window. With "idle" also how often the idle window wakes a thread in five seconds, before the scans and
// after them. The home folder stays as it is.
//
//     brimvault-scan-time HOME [idle]    prints a name and a value on each line
//     brimvault-scan-time HOME cold      one scan alone, before which the system forgets what it has read of the disk;
//                                        and when the first rows came. Needs an administrator's rights.

#include <unistd.h>

#include <QEventLoop>
#include <QTimer>
#include <atomic>
#include <chrono>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <string>

#include "MainThreadClock.h"
#include "TrialWindow.h"
#include "engine/notification/NotificationCenter.h"
#include "engine/notification/Notifications.h"
#include "trial/TemporaryFolder.h"
#include "trial/WakeUps.h"
#include "ui/accessibility/AccessibleItemView.h"
#include "ui/look/FocusRing.h"
#include "ui/look/Look.h"

namespace {

using namespace brimvault;
using bench::MainThreadClock;
using bench::TrialWindow;
using Clock = std::chrono::steady_clock;
namespace fs = std::filesystem;

// A line of /proc/self/status, in bytes.
std::uint64_t memory(const std::string& name) {
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;) {
        if (word == name + ":") {
            std::uint64_t kibibytes = 0;
            status >> kibibytes;
            return kibibytes * 1024;
        }
    }
    return 0;
}

void forgetPeak() { std::ofstream("/proc/self/clear_refs") << 5; }

// Runs the event loop for that time.
void runFor(int milliseconds) {
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

struct Scan {
    std::atomic<double> seconds = -1;  ///< to "scanFinished", as it is posted; below 0 when it does not come
    double firstRows = -1;             ///< until the model has the first items
    std::atomic<long> wakeUps = 0;     ///< of all threads of the process, until then
};

qint64 countOfFiles(engine::DataMan& model) {
    return model.getCachesCount() + model.getLogsCount() + model.getDownloadsCount() + model.getTrashCount();
}

void scan(TrialWindow& window, Scan& figures) {
    constexpr int timeout = 120'000;
    QEventLoop loop;
    QTimer::singleShot(timeout, &loop, &QEventLoop::quit);
    auto& center = engine::NotificationCenter::defaultCenter();
    const auto start = Clock::now();
    const long before = trial::wakeUps();
    const auto posted = center.addObserver(engine::notification::scanFinished, [&](const auto&) {
        figures.seconds = std::chrono::duration<double>(Clock::now() - start).count();
        figures.wakeUps = trial::wakeUps() - before;
    });
    const auto heard =
        center.addMainThreadObserver(engine::notification::scanFinished, &loop, [&](const auto&) { loop.quit(); });
    auto& model = window.application().psectController().getAppResDS();
    const auto grown =
        center.addObserver(engine::vocabulary(engine::Section::downloads).interfaceProgress, [&](const auto&) {
            if (figures.firstRows < 0 && countOfFiles(model) > 0) {
                figures.firstRows = std::chrono::duration<double>(Clock::now() - start).count();
            }
        });
    window.startScan();
    loop.exec();
}

// False where the system refuses to forget.
bool reportCold(TrialWindow& window) {
    ::sync();
    std::ofstream caches("/proc/sys/vm/drop_caches");
    caches << 3 << std::flush;
    if (!caches) {
        std::cerr << "The system's caches can be dropped by an administrator only.\n";
        return false;
    }
    Scan figures;
    scan(window, figures);
    std::cout << "first-rows-seconds " << figures.firstRows << "\nseconds " << figures.seconds << '\n';
    return true;
}

void report(MainThreadClock& clock, TrialWindow& window, const std::string& name) {
    constexpr int enoughToShow = 500;
    clock.takeFigures();
    Scan figuresOfScan;
    scan(window, figuresOfScan);
    runFor(enoughToShow);
    const auto figures = clock.takeFigures();
    const double seconds = figuresOfScan.seconds;
    const auto wakeUps = figuresOfScan.wakeUps.load();
    std::cout << name << "-seconds " << seconds << '\n'
              << name << "-wake-ups " << wakeUps << '\n'
              << name << "-wake-ups-per-second " << static_cast<double>(wakeUps) / seconds << '\n'
              << name << "-longest " << figures.elapsed.longest << '\n'
              << name << "-longest-of-a-processor " << figures.worked.longest << '\n'
              << name << "-longest-event " << figures.worked.longestEvent.toStdString() << std::endl;
}

// The window is open and nothing runs.
void reportIdle(const std::string& name) {
    constexpr int enoughToSettle = 3000;
    constexpr int measured = 5000;
    constexpr long ourOwn = 1;  // by the timer that ends the measurement
    runFor(enoughToSettle);
    const long before = trial::wakeUps();
    runFor(measured);
    std::cout << name << "-wake-ups " << trial::wakeUps() - before - ourOwn << std::endl;
}

void reportFound(engine::DataMan& model) {
    const auto files = model.getSize2CleanCaches() + model.getSize2CleanLogs() + model.getSize2CleanDwns() +
                       model.getSize2CleanTrash();
    std::cout << "applications " << model.getAppsCount() << "\nitems " << countOfFiles(model) << "\nlisted " << files
              << '\n';
}

}  // namespace

int main(int argc, char* argv[]) {
    const std::string more = argc == 3 ? argv[2] : "";
    const bool withIdle = more == "idle";
    if (argc != 2 && !withIdle && more != "cold") {
        std::cerr << "usage: brimvault-scan-time HOME [idle|cold]\n";
        return 2;
    }
    MainThreadClock clock(argc, argv);
    const trial::TemporaryFolder folder;
    const fs::path home = fs::canonical(argv[1]);
    const platform::SubstituteSystem system(bench::trialSystem(home, folder / "root"));
    ui::look::apply();
    ui::watchFocus();
    ui::AccessibleItemView::install();
    TrialWindow window(folder / "settings.ini");
    window.application().psectController().setAllChecked();
    constexpr int enoughToIdle = 500;
    runFor(enoughToIdle);
    if (more == "cold") {
        const bool isCold = reportCold(window);
        reportFound(window.application().psectController().getAppResDS());
        return isCold ? 0 : 1;
    }
    if (withIdle) {
        reportIdle("idle-before");
    }
    const auto idle = memory("VmRSS");
    forgetPeak();
    report(clock, window, "first");
    std::cout << "idle-bytes " << idle << "\nfirst-peak-bytes " << memory("VmHWM") << '\n';
    report(clock, window, "second");
    std::cout << "second-peak-bytes " << memory("VmHWM") << '\n';
    if (withIdle) {
        reportIdle("idle-after");
    }
    reportFound(window.application().psectController().getAppResDS());
    return 0;
}
