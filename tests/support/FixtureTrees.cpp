#include "support/FixtureTrees.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace brimvault::tests {

namespace fs = std::filesystem;

namespace {

std::uint64_t makeLink(const fs::path& target, const fs::path& link) {
    fs::create_symlink(target, link);
    return target.native().size();
}

[[noreturn]] void fail(const char* what) { throw std::system_error(errno, std::generic_category(), what); }

}  // namespace

std::uint64_t makeLinks(const fs::path& folder, const fs::path& outside) {
    writeFile(outside / "file", "outside");
    writeFile(outside / "folder/file", "outside");
    writeFile(folder / "real", "12345");
    return 5 + makeLink(outside / "file", folder / "to file") + makeLink(outside / "folder", folder / "to folder") +
           makeLink(outside / "nothing", folder / "to nothing");
}

std::uint64_t makeLoops(const fs::path& folder) {
    fs::create_directories(folder / "inner");
    return makeLink(".", folder / "inner/here") + makeLink("..", folder / "inner/above") +
           makeLink("itself", folder / "inner/itself") + makeLink(folder, folder / "inner/absolute");
}

void makePermissions(const fs::path& folder) {
    writeFile(folder / "open/gone", "gone");
    writeFile(folder / "full/kept", "kept");
    writeFile(folder / "closed/kept", "kept");
    fs::create_directory(folder / "empty");
    fs::permissions(folder / "empty", fs::perms::none);
    fs::permissions(folder / "full", fs::perms::none);
    fs::permissions(folder / "closed", static_cast<fs::perms>(0555));
}

std::uint64_t makeOddNames(const fs::path& folder) {
    for (const auto& name : oddNames()) {
        writeFile(folder / "files" / name, "1234567");
        writeFile(folder / "folders" / name / name, "1234567");
    }
    return oddNames().size() * 2 * 7;
}

void makeDeep(const fs::path& folder, int depth) {
    fs::create_directories(folder);
    int current = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    for (int level = 0; level < depth; ++level) {
        if (::mkdirat(current, "inner", S_IRWXU) != 0) {
            fail("mkdirat");
        }
        const int next = ::openat(current, "inner", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        ::close(current);
        current = next;
    }
    const int file = ::openat(current, "file", O_WRONLY | O_CREAT | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (file < 0 || ::write(file, "abc", 3) != 3) {
        fail("write");
    }
    ::close(file);
    ::close(current);
}

void makeWide(const fs::path& folder, int count) {
    fs::create_directories(folder);
    for (int number = 0; number < count; ++number) {
        const auto name = folder / std::to_string(number);
        const int file = ::open(name.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, S_IRUSR | S_IWUSR);
        if (file < 0) {
            fail("open");
        }
        ::close(file);
    }
}

const std::vector<std::string>& oddNames() {
    static const std::vector<std::string> names = {
        "line\nbreak",
        "\xff\xfe not UTF-8 \xc3",
        std::string(255, 'n'),
        " leading space",
        "-rf",
        "*",
        "$HOME",
        "..hidden",
        "back\\slash",
        "\x01\x7f",
        "...",
        "caf\xc3\xa9",
    };
    return names;
}

}  // namespace brimvault::tests
