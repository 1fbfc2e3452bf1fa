// Makes the trees that are measured and removed; the same ones each time.
//
//     brimvault-trees KIND DIR [written]
//
// DIR must not be there yet. It prints how many files and folders were made, and the bytes of the files; of a home also
// the bytes that a scan is to find in its sections of files, how many items and how many applications.
//
//     cache    200,000 files in 20,000 folders below, as a browser leaves them
//     flat     200,000 files in one folder
//     chain    10,000 folders, one in the other
//     tiny     100,000 entries of a few bytes in one folder: 90,000 files, and 10,000 folders with a file in each
//     home     a home folder of 300,000 files with something in every section
//     listed   a home folder whose caches are the 100,000 entries of "tiny"
//     single   a home folder whose downloads are 100,000 files
//
// Files have lengths and no contents: how fast blocks are freed is the disk's affair, and where it is told of each, it
// takes longer than all else. With "written" the first 4 KiB of each file are there.

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <functional>
#include <iostream>
#include <map>
#include <string>
#include <system_error>
#include <utility>

namespace {

struct Made {
    std::uint64_t files = 0;
    std::uint64_t folders = 0;  ///< without the first
    std::uint64_t bytes = 0;
    std::uint64_t listed = 0;  ///< bytes in sections of files
    std::uint64_t items = 0;   ///< entries of these sections
    std::uint64_t applications = 0;
} made;

bool writesContents = false;

int orThrow(int answer, const std::string& name) {
    if (answer < 0) {
        throw std::system_error(errno, std::generic_category(), name);
    }
    return answer;
}

class Folder {
public:
    static Folder make(const std::string& path) {
        orThrow(::mkdir(path.c_str(), S_IRWXU), path);
        return Folder(orThrow(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC), path));
    }
    Folder(Folder&& other) noexcept : descriptor_(std::exchange(other.descriptor_, -1)) {}
    Folder& operator=(Folder&& other) noexcept {
        std::swap(descriptor_, other.descriptor_);
        return *this;
    }
    ~Folder() {
        if (descriptor_ >= 0) {
            ::close(descriptor_);
        }
    }

    [[nodiscard]] Folder child(const std::string& name) const {
        orThrow(::mkdirat(descriptor_, name.c_str(), S_IRWXU), name);
        ++made.folders;
        return Folder(orThrow(::openat(descriptor_, name.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC), name));
    }

    void file(const std::string& name, std::uint64_t size) const {
        static constexpr std::array<char, 4096> contents = [] {
            std::array<char, 4096> text{};
            text.fill('b');
            return text;
        }();
        const int file = orThrow(
            ::openat(descriptor_, name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, S_IRUSR | S_IWUSR), name);
        const auto written = writesContents ? std::min<std::uint64_t>(size, contents.size()) : 0;
        orThrow(written == 0 ? 0 : static_cast<int>(::write(file, contents.data(), written)), name);
        orThrow(size == written ? 0 : ::ftruncate(file, static_cast<off_t>(size)), name);
        ::close(file);
        ++made.files;
        made.bytes += size;
    }

private:
    explicit Folder(int descriptor) : descriptor_(descriptor) {}

    int descriptor_;
};

std::uint64_t random() {
    static std::uint64_t state = 12345;
    state = state * 6364136223846793005ULL + 1442695040888963407ULL;
    return state >> 33U;
}

// Most entries of a cache fit a block, some are pictures, a few are films.
std::uint64_t cachedSize() {
    constexpr std::array<std::uint64_t, 4> limits = {100, 4096, 65'536, 4'194'304};
    const auto kind = random() % 16;
    return random() % limits.at(kind == 0 ? 0 : kind < 12 ? 1 : kind < 15 ? 2 : 3);
}

std::string numbered(const std::string& text, int number) { return text + std::to_string(number); }

std::string hexadecimal(std::uint64_t number, int digits) {
    std::string text;
    for (; digits > 0; --digits, number >>= 4U) {
        text.insert(text.begin(), "0123456789abcdef"[number & 15U]);
    }
    return text;
}

void fill(const Folder& folder, int files, const std::function<std::uint64_t()>& size = cachedSize) {
    for (int file = 0; file < files; ++file) {
        folder.file(hexadecimal(random(), 8) + numbered("_", file), size());
    }
}

// Stores of a browser: in each, files spread over folders of which there are `leaves`.
void makeStores(const Folder& folder, int stores, int leaves, int files) {
    static const std::array<std::string, 4> names = {"Cache_Data", "Code Cache", "Service Worker", "GPUCache"};
    int leaf = 0;
    int file = 0;
    for (int store = 0; store < stores; ++store) {
        const auto inside = folder.child(names.at(static_cast<std::size_t>(store)));
        for (const int last = leaves * (store + 1) / stores; leaf < last; ++leaf) {
            const int share = static_cast<int>(std::int64_t{files} * (leaf + 1) / leaves) - file;
            fill(inside.child(hexadecimal(static_cast<std::uint64_t>(leaf), 3)), share);
            file += share;
        }
    }
}

void makeCache(const Folder& folder) {
    constexpr int profiles = 20;  // each with 3 stores of 332 folders: 20,000 folders in all
    for (int profile = 0; profile < profiles; ++profile) {
        makeStores(folder.child(numbered("Profile ", profile)), 3, 996, 10'000);
    }
}

void makeFlat(const Folder& folder) { fill(folder, 200'000); }

void makeChain(Folder folder) {
    constexpr int depth = 10'000;
    for (int level = 1; level < depth; ++level) {
        folder = folder.child("folder");
    }
    folder.file("file", 100);
}

void makeTiny(const Folder& folder) {
    constexpr int entries = 100'000;
    made.items += entries;
    for (int entry = 0; entry < entries; ++entry) {
        const auto name = "com.vendor." + hexadecimal(random(), 4) + numbered(".item ", entry);
        const auto size = 1 + random() % 16;
        if (entry % 10 == 0) {
            folder.child(name).file("state", size);
        } else {
            folder.file(name, size);
        }
    }
}

void makeApplications(const Folder& folder) {
    static const std::array<std::string, 30> languages = {
        "en", "German", "French", "zh_CN", "zh_TW", "ja", "es", "it", "nl", "ko", "pt_BR", "pt_PT", "da", "fi", "nb",
        "sv", "ru",     "pl",     "tr",    "ar",    "th", "cs", "hu", "ca", "hr", "el",    "he",    "ro", "sk", "uk"};
    for (int application = 0; application < 60; ++application) {
        ++made.applications;
        const auto contents = folder.child(numbered("Application ", application) + ".app").child("Contents");
        const auto resources = contents.child("Resources");
        fill(resources, 51);
        for (const auto& language : languages) {
            fill(resources.child(language + ".lproj"), 10);
        }
    }
}

void makeCaches(const Folder& library) {
    const auto caches = library.child("Caches");
    fill(caches, 600);
    made.items += 600 + 40;
    for (int application = 0; application < 40; ++application) {
        makeStores(caches.child(numbered("com.vendor.application", application)), 2, 480, 5'000);
    }
    const auto containers = library.child("Containers");
    for (int container = 0; container < 40; ++container) {
        made.items += 2;  // its caches, and its logs, of which there are none
        fill(containers.child(numbered("com.vendor.contained", container))
                 .child("Data")
                 .child("Library")
                 .child("Caches"),
             1);
    }
}

void makeLogs(const Folder& logs) {
    fill(logs, 1'000);
    made.items += 1'000 + 50;
    for (int application = 0; application < 50; ++application) {
        fill(logs.child(numbered("com.vendor.application", application)), 200);
    }
}

void makeDownloads(const Folder& downloads) {
    fill(downloads, 200);
    made.items += 200 + 20;
    for (int archive = 0; archive < 20; ++archive) {
        makeStores(downloads.child(numbered("unpacked ", archive)), 4, 200, 1'990);
    }
}

void makeTrash(const Folder& trash) {
    fill(trash, 300);
    made.items += 300 + 30;
    for (int project = 0; project < 30; ++project) {
        makeStores(trash.child(numbered("old project ", project)), 1, 60, 900);
    }
}

void makeHome(const Folder& home) {
    const auto library = home.child("Library");
    makeCaches(library);
    makeLogs(library.child("Logs"));
    makeDownloads(home.child("Downloads"));
    makeTrash(home.child(".Trash"));
    made.listed = made.bytes;
    makeApplications(home.child("Applications"));
}

void makeListedHome(const Folder& home) {
    makeTiny(home.child("Library").child("Caches"));
    made.listed = made.bytes;
}

void makeSingleFiles(const Folder& home) {
    constexpr int count = 100'000;
    fill(home.child("Downloads"), count);
    made.listed = made.bytes;
    made.items = count;
}

const std::map<std::string, std::function<void(Folder)>>& kinds() {
    static const std::map<std::string, std::function<void(Folder)>> all = {
        {"cache", makeCache}, {"flat", makeFlat},         {"chain", makeChain},       {"tiny", makeTiny},
        {"home", makeHome},   {"listed", makeListedHome}, {"single", makeSingleFiles}};
    return all;
}

}  // namespace

int main(int argc, char* argv[]) {
    const bool isAsked = argc == 3 || (argc == 4 && argv[3] == std::string("written"));
    if (!isAsked || !kinds().contains(argv[1])) {
        std::cerr << "usage: brimvault-trees cache|flat|chain|tiny|home|listed|single DIR [written]\n";
        return 2;
    }
    writesContents = argc == 4;
    try {
        kinds().at(argv[1])(Folder::make(argv[2]));
    } catch (const std::exception& problem) {
        std::cerr << "brimvault-trees: " << problem.what() << '\n';
        return 1;
    }
    std::cout << "files " << made.files << "\nfolders " << made.folders << "\nbytes " << made.bytes << "\nlisted "
              << made.listed << "\nitems " << made.items << "\napplications " << made.applications << '\n';
    return 0;
}
