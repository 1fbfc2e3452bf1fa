#include "trial/SampleHome.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <fstream>
#include <iterator>
#include <stdexcept>

#include "trial/SampleIcon.h"

namespace brimvault::trial {

namespace fs = std::filesystem;

namespace {

const char* const linkText = "../../Precious";
constexpr std::uint64_t containerCachesSize = 2'048'000;
constexpr std::uint64_t comparedBytes = 65'536;  // a longer file is compared by its length alone

const std::vector<SampleHome::Entry>& namedCaches() {
    static const std::vector<SampleHome::Entry> entries = {
        {"com.vendor.browser", 124'000'000}, {"com.vendor.mail", 61'230'000},
        {"com.vendor.music", 38'800'000},    {"com.vendor.photos", 31'890'000},
        {"mesa_shader_cache", 9'620'000},    {"com.vendor.editor", 7'186'000},
        {"thumbnails", 6'400'000},           {"fontconfig", 2'140'000},
        {"com.vendor.notes", 1'820'000},     {"org.project.desktop", 1'270'000},
        {"com.vendor.store", 804'000},       {"pip", 590'000},
        {"com.vendor.weather", 330'000},     {SampleHome::plainFileName, 120'000},
    };
    return entries;
}

// What applications are translated into, by how common it is; some by names of older days.
constexpr std::array languages = {"en",    "German", "French", "zh_CN", "zh_TW", "ja", "es", "it", "nl", "ko", "pt_BR",
                                  "pt_PT", "da",     "fi",     "nb",    "sv",    "ru", "pl", "tr", "ar", "th", "cs",
                                  "hu",    "ca",     "hr",     "el",    "he",    "ro", "sk", "uk", "id", "ms", "vi"};
constexpr std::size_t keptLanguages = 2;  // by someone who reads English and German

struct Application {
    std::string name;
    std::size_t localizations;
    std::uint64_t size;  ///< bytes in languages that are not kept
    SampleIcon::Colour colour;
};

const std::vector<Application>& sampleApplications() {
    static const std::vector<Application> applications = {
        {"Office Writer", 33, 48'600'000, {0x5B, 0x8D, 0xEF}}, {"Photo Studio", 24, 39'170'000, {0x2B, 0xA5, 0xC9}},
        {"Mail Reader", 16, 21'240'000, {0x8A, 0x6F, 0xE8}},   {"Music", 30, 12'060'000, {0xE2, 0x96, 0x3A}},
        {"Video Player", 33, 8'810'000, {0xE5, 0x60, 0x4F}},   {"Map Viewer", 19, 6'430'000, {0x0E, 0xA3, 0x90}},
        {"Notes", 27, 2'290'000, {0xF2, 0xB9, 0x3B}},          {"Chess", 14, 940'000, {0x7A, 0x87, 0x98}},
    };
    return applications;
}

std::string informationOf(const std::string& application) {
    std::string identifier = "com.vendor." + application;
    std::replace(identifier.begin(), identifier.end(), ' ', '-');
    return R"(<?xml version="1.0" encoding="UTF-8"?>
<plist version="1.0"><dict><key>CFBundleIdentifier</key><string>)" +
           identifier + "</string><key>CFBundleIconFile</key><string>AppIcon</string></dict></plist>\n";
}

// The size in a few files at several depths.
void spread(const fs::path& folder, std::uint64_t size) {
    const std::uint64_t half = size / 2;
    const std::uint64_t quarter = size / 4;
    writeAllocatedFile(folder / "Cache.db", half);
    writeAllocatedFile(folder / "fsCachedData" / "0A1B" / "data_1", quarter);
    writeAllocatedFile(folder / "fsCachedData" / "0A1B" / "2C3D" / "data_2", size - half - quarter - 5);
    writeFile(folder / ".version", "12.4\n");
}

std::string describe(const fs::path& path, const fs::file_status& status) {
    if (fs::is_symlink(status)) {
        return "link to " + fs::read_symlink(path).native();
    }
    const std::string rights = " " + std::to_string(static_cast<unsigned>(status.permissions()));
    if (fs::is_directory(status)) {
        return "folder" + rights;
    }
    if (!fs::is_regular_file(status)) {
        return "other";
    }
    const auto size = fs::file_size(path);
    std::string text = "file of " + std::to_string(size) + " bytes" + rights;
    if (size <= comparedBytes) {
        std::ifstream file(path, std::ios::binary);
        text.append(": ").append(std::istreambuf_iterator<char>(file), {});
    }
    return text;
}

}  // namespace

void writeFile(const fs::path& file, const std::string& text) {
    fs::create_directories(file.parent_path());
    std::ofstream stream(file, std::ios::binary);
    stream << text;
    stream.close();
    if (!stream) {
        throw std::runtime_error("cannot write " + file.native());
    }
}

void writeSparseFile(const fs::path& file, std::uint64_t size) {
    writeFile(file, {});
    fs::resize_file(file, size);
}

void writeAllocatedFile(const fs::path& file, std::uint64_t size) {
    writeFile(file, {});
    const int opened = ::open(file.c_str(), O_WRONLY | O_CLOEXEC);
    const int code = opened < 0 ? errno : size == 0 ? 0 : ::posix_fallocate(opened, 0, static_cast<off_t>(size));
    ::close(opened);
    if (code != 0) {
        throw std::runtime_error("cannot allocate " + file.native());
    }
}

SampleHome::Fingerprint fingerprint(const fs::path& folder, const std::vector<fs::path>& without) {
    SampleHome::Fingerprint found;
    for (auto entry = fs::recursive_directory_iterator(folder); entry != fs::recursive_directory_iterator(); ++entry) {
        const auto name = entry->path().lexically_relative(folder);
        if (std::find(without.begin(), without.end(), name) != without.end()) {
            entry.disable_recursion_pending();
            continue;
        }
        found[name] = describe(entry->path(), entry->symlink_status());
    }
    return found;
}

SampleHome::SampleHome(const fs::path& folder) {
    if (fs::exists(fs::symlink_status(folder)) && (!fs::is_directory(folder) || !fs::is_empty(folder))) {
        throw std::runtime_error(folder.native() + " is not an empty folder");
    }
    fs::create_directories(folder);
    path_ = fs::canonical(folder);
    writeFile(path_ / marker, "A made-up home folder: everything in it may be removed.\n");
    makeCaches();
    makeContainers();
    makeOtherSections();
    makeUntouchables();
}

std::vector<SampleHome::Entry> SampleHome::cachesSection() const {
    auto entries = namedCaches();
    entries.push_back({linkName, std::char_traits<char>::length(linkText)});
    entries.push_back({fullContainer, containerCachesSize});
    entries.push_back(
        {linkedContainer, fs::read_symlink(containers() / linkedContainer / "Data/Library/Caches").native().size()});
    entries.push_back({emptyContainer, 0});
    std::stable_sort(entries.begin(), entries.end(), [](const auto& a, const auto& b) { return a.size > b.size; });
    return entries;
}

SampleHome::Fingerprint SampleHome::everythingOutside(const std::vector<fs::path>& folders) const {
    return fingerprint(path_, folders);
}

void SampleHome::makeCaches() const {
    for (const auto& entry : namedCaches()) {
        if (entry.name == plainFileName) {
            writeAllocatedFile(caches() / entry.name, entry.size);
        } else {
            spread(caches() / entry.name, entry.size);
        }
    }
    writeFile(caches() / hiddenName / "state", "not listed\n");
    fs::create_directory_symlink(linkText, caches() / linkName);
}

void SampleHome::makeContainers() const {
    writeFile(containers() / emptyContainer / "Data/Library/Preferences/settings", "1\n");
    spread(containers() / fullContainer / "Data/Library/Caches", containerCachesSize);
    writeFile(containers() / fullContainer / "Data/Library/Logs/reader.log", "opened\nclosed\n");
    writeFile(containers() / fullContainer / "Data/Documents/book.txt", "A book that is being read.\n");
    fs::create_directories(containers() / linkedContainer / "Data/Library");
    fs::create_directory_symlink(precious(), containers() / linkedContainer / "Data/Library/Caches");
}

void SampleHome::makeOtherSections() const {
    writeAllocatedFile(library() / "Logs/com.vendor.browser/session.log", 31'000'000);
    writeAllocatedFile(library() / "Logs/system.log", 9'100'000);
    writeFile(library() / "Logs/CrashReporter/editor.crash", "kept for the crash reporter\n");
    writeFile(library() / "Logs/talagent.log.1", "kept\n");
    writeAllocatedFile(library() / "Logs/backup 2.log", 40'000);
    writeAllocatedFile(library() / "Logs/backup 10.log", 60'000);
    writeAllocatedFile(library() / "Application Support/CrashReporter/editor_2024.crash", 1'000'000);
    writeAllocatedFile(downloads() / "installer.iso", 580'000'000);
    writeAllocatedFile(downloads() / "photos.zip", 41'000'000);
    writeFile(downloads() / "invoice.txt", "An invoice.\n");
    writeAllocatedFile(trash() / "draft.doc", 2'000'000);
    writeAllocatedFile(desktopTrash() / "files/old project/recording.mov", 100'000'000);
    writeAllocatedFile(desktopTrash() / "files/holiday.jpg", 420'000);
    for (const char* name : {"old project", "holiday.jpg"}) {
        writeFile(desktopTrash() / "info" / (std::string(name) + ".trashinfo"),
                  "[Trash Info]\nPath=" + (path_ / "Desktop" / name).native() + "\nDeletionDate=2024-05-01T12:00:00\n");
    }
}

void SampleHome::makeApplications() const {
    for (const auto& application : sampleApplications()) {
        const auto contents = applications() / (application.name + ".app") / "Contents";
        writeFile(contents / "Info.plist", informationOf(application.name));
        writeFile(contents / "Resources" / SampleHome::iconName, SampleIcon::inColour(application.colour));
        writeAllocatedFile(contents / "Resources/Assets.car", 300'000);
        writeAllocatedFile(contents / "Resources/Base.lproj/Main.nib", 90'000);
        const std::uint64_t each = application.size / (application.localizations - keptLanguages);
        for (std::size_t index = 0; index < application.localizations; ++index) {
            const auto localization = contents / "Resources" / (std::string(languages[index]) + ".lproj");
            writeAllocatedFile(localization / "Localizable.strings", each - each / 4);
            writeAllocatedFile(localization / "Help/index.html", each / 4);
        }
    }
}

void SampleHome::makeUntouchables() const {
    writeFile(documents() / "letter.txt", "Dear reader,\n");
    writeFile(documents() / "accounts/2024.csv", "month,sum\nJanuary,12\n");
    writeFile(precious() / "diary.txt", "Nobody reads this.\n");
    writeFile(precious() / "albums/wedding/first.jpg", "not really a picture\n");
}

}  // namespace brimvault::trial
