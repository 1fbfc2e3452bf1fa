// The whole program over a home folder: what two scans of all five sections take, one after the other, from the click
// on "Scan" to "scanFinished", with the window open; and what memory they take above that of the idle window. The home
// folder stays as it is.
//
//     brimvault-scan HOME    prints a name and a value on each line

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
#include "ui/accessibility/AccessibleItemView.h"
#include "ui/look/FocusRing.h"
#include "ui/look/Look.h"

namespace {

using namespace brimvault;
using bench::MainThreadClock;
using bench::TrialWindow;
using Clock = std::chrono::steady_clock;
namespace fs = std::filesystem;

// Bytes, of a line of the kernel's account of this process.
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

// The program runs, without being asked in between.
void runFor(int milliseconds) {
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec();
}

// The seconds to "scanFinished", as it is posted; below 0 when it does not come.
double scan(TrialWindow& window) {
    constexpr int patience = 120'000;
    QEventLoop loop;
    QTimer::singleShot(patience, &loop, &QEventLoop::quit);
    auto& center = engine::NotificationCenter::defaultCenter();
    std::atomic<double> seconds = -1;
    const auto start = Clock::now();
    const auto posted = center.addObserver(engine::notification::scanFinished, [&](const auto&) {
        seconds = std::chrono::duration<double>(Clock::now() - start).count();
    });
    const auto heard =
        center.addMainThreadObserver(engine::notification::scanFinished, &loop, [&](const auto&) { loop.quit(); });
    window.startScan();
    loop.exec();
    return seconds;
}

void report(MainThreadClock& clock, TrialWindow& window, const std::string& name) {
    constexpr int enoughToShow = 500;
    clock.takeFigures();
    const double seconds = scan(window);
    runFor(enoughToShow);
    const auto figures = clock.takeFigures();
    std::cout << name << "-seconds " << seconds << '\n'
              << name << "-longest " << figures.elapsed.longest << '\n'
              << name << "-longest-of-a-processor " << figures.worked.longest << '\n'
              << name << "-longest-event " << figures.worked.longestEvent.toStdString() << std::endl;
}

void reportFound(engine::DataMan& model) {
    const auto files = model.getSize2CleanCaches() + model.getSize2CleanLogs() + model.getSize2CleanDwns() +
                       model.getSize2CleanTrash();
    const auto items =
        model.getCachesCount() + model.getLogsCount() + model.getDownloadsCount() + model.getTrashCount();
    std::cout << "applications " << model.getAppsCount() << "\nitems " << items << "\nlisted " << files << '\n';
}

}  // namespace

int main(int argc, char* argv[]) {
    if (argc != 2) {
        std::cerr << "usage: brimvault-scan HOME\n";
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
    const auto idle = memory("VmRSS");
    forgetPeak();
    report(clock, window, "first");
    std::cout << "idle-bytes " << idle << "\nfirst-peak-bytes " << memory("VmHWM") << '\n';
    report(clock, window, "second");
    std::cout << "second-peak-bytes " << memory("VmHWM") << '\n';
    reportFound(window.application().psectController().getAppResDS());
    return 0;
}
