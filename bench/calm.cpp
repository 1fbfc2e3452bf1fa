// How long the main thread is blocked, in milliseconds, while the real window is driven over a section with very many
// entries in a temporary home folder.

#include <QAccessible>
#include <QScrollBar>
#include <QWheelEvent>
#include <cstdlib>
#include <filesystem>
#include <iomanip>
#include <iostream>
#include <memory>
#include <string>

#include "MainThreadClock.h"
#include "TrialWindow.h"
#include "platform/LibraryURLs.h"
#include "trial/SampleHome.h"
#include "trial/TemporaryFolder.h"
#include "ui/accessibility/AccessibleItemView.h"
#include "ui/look/FocusRing.h"
#include "ui/look/Look.h"

namespace {

using namespace brimvault;
using bench::MainThreadClock;
using bench::TrialWindow;
using trial::Guide;
using ui::ItemListModel;
namespace fs = std::filesystem;

constexpr int cachesRow = 0;
constexpr int logsRow = 2;
constexpr int trashRow = 4;
constexpr int logCount = 1000;
constexpr int trashCount = 200;

// Names as caches have them, in no order; sizes of every magnitude. The files are sparse: nothing is written but their
// folder.
void makeEntries(const fs::path& folder, int count, const std::string& suffix) {
    const std::vector<std::string> vendors = {"com.vendor", "org.example", "Äpfel", "io.sample", "Browser Data"};
    std::uint64_t state = 12345;
    for (int number = 0; number < count; ++number) {
        state = state * 6364136223846793005ULL + 1442695040888963407ULL;
        const auto random = state >> 33U;
        trial::writeSparseFile(folder / (vendors[random % vendors.size()] + "." + std::to_string(random % 1000) +
                                         ".item " + std::to_string(number) + suffix),
                               1 + (random >> (random % 20)));
    }
}

void makeHome(const fs::path& home, int entries) {
    makeEntries(home / "Library/Caches", entries, "");
    makeEntries(home / "Library/Logs", logCount, ".log");
    makeEntries(home / ".Trash", trashCount, ".txt");
}

class Table {
public:
    explicit Table(MainThreadClock& clock) : clock_(clock) {
        std::cout << std::left << std::setw(nameWidth) << "Main thread, in milliseconds" << std::right
                  << std::setw(3 * figureWidth) << "elapsed" << std::setw(3 * figureWidth) << "of a processor" << '\n'
                  << std::setw(nameWidth) << "";
        for (int kind = 0; kind < 2; ++kind) {
            for (const char* title : {"longest", "> 16", "total"}) {
                std::cout << std::setw(figureWidth) << title;
            }
        }
        std::cout << "   events  the longest by processor\n";
    }

    template <typename Phase>
    void measure(const std::string& name, Phase phase) {
        settle();
        clock_.takeFigures();
        phase();
        settle();
        const auto figures = clock_.takeFigures();
        std::cout << std::left << std::setw(nameWidth) << name << std::right << std::fixed << std::setprecision(1);
        for (const auto& kind : {figures.elapsed, figures.worked}) {
            std::cout << std::setw(figureWidth) << kind.longest << std::setw(figureWidth) << kind.overFrame
                      << std::setw(figureWidth) << kind.total;
        }
        std::cout << std::setw(figureWidth) << figures.events << "  " << figures.worked.longestEvent.toStdString()
                  << std::endl;
    }

private:
    static constexpr int nameWidth = 40;
    static constexpr int figureWidth = 9;

    // Waits until what was asked for is done and drawn.
    static void settle() {
        constexpr int enough = 300;
        QTest::qWait(enough);
    }

    MainThreadClock& clock_;
};

int failures = 0;

void expect(bool holds, const char* what) {
    if (!holds) {
        std::cerr << "calm: not as it should be: " << what << '\n';
        ++failures;
    }
}

const engine::CleanableItem* itemAt(const ui::TTableView& list, int row) {
    return static_cast<ItemListModel*>(list.model())->item(row).get();
}

const engine::CleanableItem* selectedItem(const ui::TTableView& list) {
    const auto rows = list.selectionModel()->selectedRows();
    return rows.isEmpty() ? nullptr : itemAt(list, rows.first().row());
}

// A row is selected and scrolled to during the scan; selection and position must stay, whatever rows are inserted.
void scanWithASelection(TrialWindow& window) {
    window.startScan();
    Guide::waitFor([&] { return window.list() != nullptr && window.list()->model()->rowCount() > 3000; });
    auto* list = window.list();
    list->setCurrentIndex(list->model()->index(2000, ItemListModel::nameColumn));
    const auto* chosen = selectedItem(*list);
    const int scrolled = list->verticalScrollBar()->value();
    while (window.isScanning()) {
        QTest::qWait(5);
        expect(selectedItem(*list) == chosen, "the selected item stays selected");
        expect(list->verticalScrollBar()->value() == scrolled, "the list stays where it was scrolled to");
    }
}

void scrollThrough(ui::TTableView& list) {
    constexpr int steps = 300;
    auto* bar = list.verticalScrollBar();
    for (int step = 0; step <= steps; ++step) {
        bar->setValue(static_cast<int>(static_cast<qint64>(bar->maximum()) * step / steps));
        QApplication::processEvents();
    }
    const QPointF middle = list.viewport()->rect().center();
    for (int step = 0; step < steps; ++step) {
        QWheelEvent wheel(middle, list.viewport()->mapToGlobal(middle), {}, QPoint(0, 120), Qt::NoButton,
                          Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(list.viewport(), &wheel);
        QApplication::processEvents();
    }
    for (int step = 0; step < steps; ++step) {
        QTest::keyClick(&list, Qt::Key_PageUp);
        QApplication::processEvents();
    }
}

void switchSections(TrialWindow& window) {
    for (const int row : {logsRow, cachesRow, trashRow, cachesRow}) {
        window.guide().clickSection(row);
        QTest::qWait(20);
    }
}

void sortAndTick(TrialWindow& window, Table& table) {
    const auto& guide = window.guide();
    const auto sortBy = [&](const std::string& name, int column) {
        table.measure("sort by " + name, [&] { guide.clickHeader(column); });
        const auto* first = itemAt(*window.list(), 0);
        table.measure("sort by " + name + ", other way round", [&] { guide.clickHeader(column); });
        expect(itemAt(*window.list(), 0) != first || column == ItemListModel::checkColumn,
               "another item stands first when the order is turned round");
    };
    sortBy("size", ItemListModel::sizeColumn);
    sortBy("check", ItemListModel::checkColumn);
    auto* selectAll = window.window()->lists()->pbtnSelectAll();
    table.measure("tick one row, sorted by check", [&] { guide.clickCell(3, ItemListModel::checkColumn); });
    table.measure("select all, sorted by check", [&] { Guide::click(selectAll); });
    sortBy("name", ItemListModel::nameColumn);
    table.measure("select none", [&] { Guide::click(selectAll); });
    table.measure("select all", [&] { Guide::click(selectAll); });
    table.measure("tick one row", [&] { guide.clickCell(3, ItemListModel::checkColumn); });
}

void shownDuringTheScan(const fs::path& settings, int entries, Table& table) {
    TrialWindow window(settings);
    table.measure("first scan, its list on show", [&] {
        window.startScan();
        window.awaitScan();
    });
    expect(window.list()->model()->rowCount() == entries, "everything is listed");
    sortAndTick(window, table);
    table.measure("scroll through", [&] { scrollThrough(*window.list()); });
    table.measure("switch sections", [&] { switchSections(window); });
    table.measure("second scan, with a selected row", [&] { scanWithASelection(window); });
    table.measure("third scan, sorted by size", [&] {
        window.guide().clickHeader(ItemListModel::sizeColumn);
        window.startScan();
        window.awaitScan();
    });
    table.measure("fourth scan, switching sections", [&] {
        window.startScan();
        while (window.isScanning()) {
            switchSections(window);
        }
    });
    window.guide().clickSection(cachesRow);
    expect(window.list()->model()->rowCount() == entries, "everything is listed after the scans");
}

void shownAfterTheScan(const fs::path& settings, int entries, Table& table) {
    TrialWindow window(settings);
    window.guide().clickSection(logsRow);
    table.measure("first scan, another list on show", [&] {
        window.startScan();
        window.awaitScan();
    });
    table.measure("its list is shown first", [&] { window.guide().clickSection(cachesRow); });
    expect(window.list()->model()->rowCount() == entries, "everything is listed when it is shown after the scan");
    window.guide().clickCell(3, ItemListModel::checkColumn);
    table.measure("clean of all but one", [&] {
        Guide::click(window.window()->lists()->pbtnClean());
        Guide::waitFor([&] { return !window.application().pbCleanning(); });
    });
    expect(window.list() != nullptr && window.list()->model()->rowCount() == 1, "what was not ticked is left");
    expect(std::distance(fs::directory_iterator(platform::LibraryURLs::getCachesFolderURL().value()), {}) == 1,
           "one file is left in the folder");
}

// An assistive client that asks the object of each event for its name and its state.
void askAsAClient(QAccessibleEvent* event) {
    if (auto* about = event->accessibleInterface()) {
        (void)about->text(QAccessible::Name);
        (void)about->state();
    }
}

}  // namespace

int main(int argc, char* argv[]) {
    if (argc < 2) {
        std::cerr << "usage: brimvault-calm ENTRIES [assistive]\n";
        return 2;
    }
    MainThreadClock clock(argc, argv);
    const int entries = std::atoi(argv[1]);
    const trial::TemporaryFolder folder;
    const fs::path home = folder / "home";
    const platform::SubstituteSystem system(bench::trialSystem(home, folder / "root"));
    makeHome(home, entries);
    ui::look::apply();
    ui::watchFocus();
    ui::AccessibleItemView::install();
    if (argc > 2) {
        QAccessible::setActive(true);
        QAccessible::installUpdateHandler(askAsAClient);
    }
    std::cout << entries << " entries in a section" << (argc > 2 ? ", with an assistive client" : "") << '\n';
    Table table(clock);
    shownDuringTheScan(folder / "first.ini", entries, table);
    shownAfterTheScan(folder / "second.ini", entries, table);
    return failures == 0 ? 0 : 1;
}
