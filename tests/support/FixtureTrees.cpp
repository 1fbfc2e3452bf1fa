#include "support/FixtureTrees.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <fstream>
#include <map>
#include <system_error>

namespace brimvault::tests {

namespace {

std::uint64_t makeLink(const fs::path& target, const fs::path& link) {
    fs::create_symlink(target, link);
    return target.native().size();
}

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
        (void)!::mkdirat(current, "inner", S_IRWXU);  // where it fails, so does the last
        const int next = ::openat(current, "inner", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        ::close(current);
        current = next;
    }
    const int file = ::openat(current, "file", O_WRONLY | O_CREAT | O_CLOEXEC, S_IRUSR | S_IWUSR);
    if (::write(file, "abc", 3) != 3) {
        throw std::system_error(errno, std::generic_category(), folder);
    }
    ::close(file);
    ::close(current);
}

void makeWide(const fs::path& folder, int count) {
    fs::create_directories(folder);
    for (int number = 0; number < count; ++number) {
        std::ofstream(folder / std::to_string(number));
    }
}

void growRandomly(std::mt19937& random, const fs::path& folder, int levels) {
    const auto number = [&](int most) { return std::uniform_int_distribution(0, most)(random); };
    fs::create_directories(folder);
    for (int count = number(6); count > 0; --count) {
        const auto odd = oddNames()[static_cast<std::size_t>(number(static_cast<int>(oddNames().size()) - 1))];
        const auto path = folder / (number(3) == 0 ? odd : (number(4) == 0 ? "." : "n") + std::to_string(number(50)));
        if (fs::exists(fs::symlink_status(path))) {
            continue;
        }
        switch (number(5)) {
            case 0:
                fs::create_symlink(number(1) == 0 ? "/" : "../..", path);
                break;
            case 1:
                writeSparseFile(path, static_cast<std::uint64_t>(number(1'000'000'000)));
                fs::create_hard_link(path, path.parent_path() / ("again" + std::to_string(number(1'000'000))));
                break;
            case 2:
                writeFile(path, std::string(static_cast<std::size_t>(number(500)), 'x'));
                break;
            default:
                if (levels > 0) {
                    growRandomly(random, path, levels - 1);
                }
        }
    }
}

void writeMountTable(const fs::path& root, const std::vector<fs::path>& mountPoints) {
    const std::map<char, std::string> escapes = {{' ', "\\040"}, {'\t', "\\011"}, {'\n', "\\012"}, {'\\', "\\134"}};
    std::string table = "21 27 0:19 / /proc rw,nosuid shared:12 - proc proc rw\n";
    for (const auto& mountPoint : mountPoints) {
        table += "36 27 98:0 / ";
        for (const char letter : mountPoint.native()) {
            const auto escape = escapes.find(letter);
            table += escape == escapes.end() ? std::string(1, letter) : escape->second;
        }
        table += " rw,noatime shared:1 master:2 - ext4 /dev/disk rw,errors=continue\n";
    }
    writeFile(root / "proc/self/mountinfo", table);
}

std::uint64_t sizeOf(const fs::path& path) {
    const auto status = fs::symlink_status(path);
    if (fs::is_symlink(status)) {
        return fs::read_symlink(path).native().size();
    }
    if (fs::is_regular_file(status)) {
        return fs::file_size(path);
    }
    std::uint64_t sum = 0;
    if (fs::is_directory(status)) {
        for (const auto& entry : fs::directory_iterator(path)) {
            sum += sizeOf(entry.path());
        }
    }
    return sum;
}

std::string contentOf(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

const std::vector<std::string>& oddNames() {
    static const std::vector<std::string> names = {"line\nbreak",
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
                                                   "caf\xc3\xa9"};
    return names;
}

}  // namespace brimvault::tests
