#include <gmock/gmock.h>

#include <algorithm>
#include <fstream>
#include <sstream>

#include "support/FileSections.h"
#include "support/FixtureTrees.h"
#include "support/SubstituteHome.h"
#include "trial/LinuxDesktop.h"

// What the rules of resources/places make of a whole desktop, and that a clean leaves all else as it was.

namespace brimvault::tests {

using engine::ItemArray;
using engine::Section;

namespace {

class CachePlaces : public testing::Test {
protected:
    CachePlaces() {
        fs::create_directories(home_);
        fs::create_directories(runtime_);
    }

    [[nodiscard]] std::string relative(const fs::path& path) const { return path.lexically_relative(home_).native(); }
    // "rule path bytes ticked admin note", as one line for each item.
    [[nodiscard]] std::vector<std::string> lines(const ItemArray& items) const {
        std::vector<std::string> all;
        for (const auto& item : items) {
            std::ostringstream line;
            const auto& details = item->details();
            line << (*details.rule == '\0' ? "caches" : details.rule) << ' ' << relative(item->pfpath()) << ' '
                 << item->pfSize() << (item->ppbChecked() ? " ticked" : " unticked")
                 << (details.needsAdministrator ? " admin" : "") << ' '
                 << (item->note() == engine::ItemNote::none ? "-" : keyOf(item->note()));
            all.push_back(line.str());
        }
        std::sort(all.begin(), all.end());
        return all;
    }

    const TemporaryFolder folder_;
    const fs::path home_ = folder_ / "home";
    const fs::path runtime_ = folder_ / "runtime";
    const SubstituteHome system_{home_, {{"BRIMVAULT_TRIAL_ROOT", folder_ / "root"}, {"XDG_RUNTIME_DIR", runtime_}}};
    const LinuxDesktop desktop_{home_};
};

std::vector<std::string> goldenLines() {
    std::ifstream file(BRIMVAULT_TEST_DATA "/scanners/linux-desktop.golden");
    std::vector<std::string> all;
    for (std::string line; std::getline(file, line);) {
        if (!line.empty() && line.front() != '#') {
            all.push_back(line);
        }
    }
    std::sort(all.begin(), all.end());
    return all;
}

}  // namespace

TEST_F(CachePlaces, OfAWholeDesktopAreListedAsTheGoldenListHasThem) {
    desktop_.makeAll();
    LinuxDesktop::runFlatpak(runtime_, "org.example.Running", 1);
    const auto found = lines(scanSection(Section::caches).items);
    const auto expected = goldenLines();
    std::string difference;
    const auto tell = [&](const auto& from, const auto& without, const char* sign) {
        std::vector<std::string> rest;
        std::set_difference(from.begin(), from.end(), without.begin(), without.end(), std::back_inserter(rest));
        for (const auto& line : rest) {
            difference += sign + line + "\n";
        }
    };
    tell(expected, found, "missing: ");
    tell(found, expected, "unexpected: ");
    EXPECT_EQ(difference, "");
}

}  // namespace brimvault::tests
