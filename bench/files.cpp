// Brimvault's own file work as a program, to be timed beside others.
//
//     brimvault-files measure DIR      prints the bytes found, and the seconds without the start of the process
//     brimvault-files remove PATH...   removes for good; what is kept is told on standard error, with the reason

#include <chrono>
#include <filesystem>
#include <iomanip>
#include <iostream>
#include <string>
#include <vector>

#include "files/removal/Remove.h"
#include "files/trees/Measure.h"

namespace {

using namespace brimvault;

double secondsSince(std::chrono::steady_clock::time_point start) {
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void measure(const std::filesystem::path& path) {
    const auto start = std::chrono::steady_clock::now();
    const auto bytes = files::measureItem(path);
    const double seconds = secondsSince(start);
    std::cout << "bytes " << bytes << "\ninside " << seconds << " s\n";
}

/// Whether nothing is left under the name.
bool remove(const std::filesystem::path& path) {
    const auto start = std::chrono::steady_clock::now();
    const auto outcome = files::remove(path);
    const double seconds = secondsSince(start);
    if (outcome.end == files::RemovalEnd::gone) {
        std::cout << "inside " << seconds << " s\n";
        return true;
    }
    std::cerr << "kept " << path.native();
    if (outcome.failure) {
        std::cerr << ": " << outcome.failure->text() << " (" << outcome.failure->path.native() << ')';
    }
    std::cerr << '\n';
    return false;
}

}  // namespace

int main(int argc, char* argv[]) {
    const std::vector<std::string> words(argv + 1, argv + argc);
    std::cout << std::fixed << std::setprecision(6);
    if (words.size() == 2 && words[0] == "measure") {
        measure(words[1]);
        return 0;
    }
    if (words.size() < 2 || words[0] != "remove") {
        std::cerr << "usage: brimvault-files measure DIR | remove PATH...\n";
        return 2;
    }
    bool gone = true;
    for (std::size_t at = 1; at < words.size(); ++at) {
        gone = remove(words[at]) && gone;
    }
    return gone ? 0 : 1;
}
