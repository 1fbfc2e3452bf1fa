#include "trial/LinuxDesktop.h"

#include <array>
#include <chrono>
#include <cstdint>
#include <initializer_list>
#include <span>

#include "trial/SampleHome.h"

namespace brimvault::trial {

namespace fs = std::filesystem;

namespace {

struct SizedFile {
    const char* name;
    std::uint64_t size;  ///< bytes
};

void makeFiles(const fs::path& folder, std::span<const SizedFile> files) {
    for (const auto& file : files) {
        writeAllocatedFile(folder / file.name, file.size);
    }
}
void makeFiles(const fs::path& folder, std::initializer_list<SizedFile> files) {
    makeFiles(folder, std::span(files.begin(), files.size()));
}

void writeAll(const fs::path& folder, std::initializer_list<const char*> names) {
    for (const char* name : names) {
        writeFile(folder / name, "precious");
    }
}

// A folder, all that it holds included, as it was left some days ago.
void age(const fs::path& path) {
    const auto old = fs::file_time_type::clock::now() - std::chrono::hours(72);
    if (fs::is_directory(path)) {
        for (const auto& entry : fs::recursive_directory_iterator(path)) {
            fs::last_write_time(entry.path(), old);
        }
    }
    fs::last_write_time(path, old);
}

// What makes a folder a profile; the caches in it; and what lies beside these.
void makeProfile(const fs::path& folder, std::uint64_t size) {
    writeFile(folder / "Local State", "{}");
    writeAll(folder, {"Cookies", "Local Storage/leveldb/000003.log", "IndexedDB/x", "User/settings.json",
                      "Backups/unsaved", "blob_storage/x", "Network/Cookies"});
    makeFiles(folder, {{"Cache/Cache_Data/data_1", size},
                       {"Cache/index", 1'000},
                       {"Code Cache/js/x", 120'000},
                       {"GPUCache/data_0", 264'000},
                       {"CachedData/abc/x", 320'000},
                       {"DawnWebGPUCache/x", 40'000}});
}

// Not ticked, for the reasons that the rules tell.
constexpr SizedFile untickedCaches[] = {
    {"kwin/x", 310'000},
    {"plasmashell/x", 24'000},
    {"plasma_theme_default.kcache", 105'000},
    {"icon-cache.kcache", 106'000},
    {"ksycoca6_de_abc", 12'000},
    {"drkonqi/x", 20'000},
    {"kscreenlocker_greet/x", 30'000},
    {"org.kde.dirmodel-qml.kcache", 40'000},
    {"mesa_shader_cache/index", 2'962'000},
    {"radv_builtin_shaders64", 50'000},
    {"nvidia/GLCache/x", 640'000},
    {"qtshadercache-x86_64/x", 60'000},
    {"AMD/VkCache/x", 70'000},
    {"dxvk-cache/x", 90'000},
    {"tracker3/files/x", 1'200'000},
    {"localsearch3/x", 110'000},
    {"baloo/x", 120'000},
    {"tracker/x", 10'000},
    {"evolution/mail/x", 2'640'000},
    {"camel/x", 10'000},
    {"thunderbird/x", 430'000},
    {"geary/x", 20'000},
    {"kmail2/x", 30'000},
    {"akonadi-search/x", 40'000},
    {"rclone/vfs/drive/report.odt", 9'800'000},
    {"kioexec/krun/x", 30'000},
    {"R/renv/x", 840'000},
    {"gnome-boxes/disk.qcow2", 40'000'000},
    {"libvirt/x", 20'000},
    {"quickemu/x", 20'001},
    {"multipass/x", 20'002},
    {"vagrant/x", 20'003},
    {"JetBrains/Idea2024.3/LocalHistory/x", 18'000'000},
    {"JetBrains/PyCharm2024.3/x", 7'000'000},
    {"Google/AndroidStudio2024.2/x", 9'000'000},
    {"spotify/Storage/x", 11'000'000},
    {"huggingface/hub/models--x/blobs/1", 221'000'000},
    {"torch/x", 4'100'000},
    {"whisper/x", 20'004},
    {"lm-studio/x", 20'005},
    {"ollama/x", 20'006},
    {"modelscope/x", 20'007},
    {"clip/x", 20'008},
    {"suno/x", 20'009},
    {"nltk_data/x", 20'010},
    {"tensorflow_datasets/x", 20'011},
    {"gpt4all/x", 20'012},
    {"ms-playwright/chromium/x", 4'800'000},
    {"puppeteer/x", 20'013},
    {"Cypress/x", 20'014},
    {"selenium/x", 20'015},
    {"electron/x", 20'016},
    {"electron-builder/x", 20'017},
    {"node-gyp/x", 20'018},
    {"pre-commit/x", 20'019},
    {"bazelisk/x", 20'020},
    {"ccache/x", 50'000'000},
    {"sccache/x", 20'021},
    {"zig/x", 20'022},
    {"nix/x", 20'023},
    {"go-build/x", 6'100'000},
    {"deno/x", 20'024},
    {"composer/x", 20'025},
    {"coursier/x", 20'026},
    {"containers/x", 20'027},
    {"pypoetry/virtualenvs/project/x", 3'100'000},
    {"uv/archive/once", 300'000},
    {"yay/package/x", 205'000},
    {"paru/x", 20'028},
    {"pikaur/x", 20'029},
    {"aurutils/x", 20'030},
    {"trizen/x", 20'031},
    {"borg/x", 20'032},
    {"restic/x", 20'033},
    {"duplicity/x", 20'034},
    {"deja-dup/x", 20'035},
    {"kopia/x", 20'036},
    {"vorta/x", 20'037},
    {"rustic/x", 20'038},
    {"nvim/swap/x", 20'039},
    {"vim/x", 20'040},
    {"emacs/x", 20'041},
    {"zsh/history", 20'042},
    {"bash/x", 20'043},
    {"fish/x", 20'044},
    {"starship/x", 20'045},
    {"dein/x", 20'046},
    {"helix/helix.log", 20'047},
    {"io.github.alainm23.planify/x", 20'048},
    {"today.db", 20'049},
    {"today.sqlite", 20'050},
};

constexpr SizedFile tickedCaches[] = {
    {"fontconfig/x", 214'000},
    {"pip/http-v2/x", 6'123'000},
    {"pypoetry/cache/x", 440'000},
    {"pypoetry/artifacts/x", 330'000},
    {"yarn/x", 20'051},
    {"node/corepack/x", 20'052},
    {"typescript/x", 20'053},
    {"mypy/x", 182'000},
    {"ruff/x", 20'054},
    {"black/x", 20'055},
    {"pylint/x", 20'056},
    {"npm/x", 20'057},
    {"mozilla/firefox/abc.default/cache2/x", 12'400'000},
    {"google-chrome/Default/Cache/x", 20'058},
    {"chromium/Default/Cache/x", 3'880'000},
    {"BraveSoftware/Brave-Browser/x", 20'059},
    {"microsoft-edge/x", 20'060},
    {"vivaldi/x", 20'061},
    {"opera/x", 20'062},
    {"thumbnails/large/x", 3'189'000},
    {"libdnf5/x", 20'063},
    {"PackageKit/x", 20'064},
    {"appstream/x", 20'065},
    {"gnome-software/x", 20'066},
    {"discover/x", 20'067},
    {"flatpak/x", 20'068},
    {"deadbeef/covers2/x", 20'069},
    {"rhythmbox/x", 20'070},
    {"amarok/x", 20'071},
    {"com.vendor.editor/x", 719'000},
    {"org.project.desktop/x", 127'000},
    {"old.db", 20'072},
    {".hidden/x", 20'073},
    {".fr-8Ck2Lq/unpacked/x", 80'000},
    {".fr-recent/x", 20'074},
    {"Google/Chrome/x", 20'075},  // beside what a rule knows
    {"ibusx/x", 20'076},          // names that only look like a rule's
    {"dock/x", 20'077},
    {"xtracker/x", 20'078},
};

}  // namespace

void LinuxDesktop::makeCaches() const {
    const auto caches = home_ / ".cache";
    // Spared.
    writeAll(caches, {"ibus/libpinyin/user.db", "ibus/dbus-1a2b", "fcitx5/x", "mozc/x", "libpinyin/x", "uim-1/x",
                      "obexd/x", "doc/x", "gvfs/x", "keyring-ABC/x", "ssh-agent.socket/x", "dconf/user", "gdm/x",
                      "at-spi-1/x", "sessions/xfce4", "wallpaper/x", "gnome-control-center/backgrounds/x"});
    makeFiles(caches, untickedCaches);
    makeFiles(caches, tickedCaches);
    age(caches / ".fr-8Ck2Lq");
    age(caches / "old.db");
    writeAllocatedFile(home_ / "project/.venv/x", 500'000);
    fs::create_hard_link(home_ / "project/.venv/x", caches / "uv/archive/twice");
    // Known by what they hold.
    writeFile(caches / "plugins/a/b/.git/HEAD", "ref: refs/heads/main");
    makeFiles(caches, {{"plugins/a/b/x", 20'079}, {"no-copy/.git/x", 20'080}});
    fs::create_directory_symlink("../Documents", caches / "link");
}

void LinuxDesktop::makeApplications() const {
    const auto apps = home_ / ".var/app";
    makeFiles(apps / "org.example.Image", {{"cache/x/y", 2'510'000},
                                           {"cache/fontconfig/z", 800'000},
                                           {"cache/tmp/old", 200'000},
                                           {"cache/tmp/recent", 5'000},
                                           {".cache/x", 30'000}});
    age(apps / "org.example.Image/cache/tmp/old");
    writeAll(apps / "org.example.Image",
             {"cache/ibus/x", "cache/rclone/vfs/x", "cache/pypoetry/virtualenvs/x", "data/x", "config/settings",
              ".mozilla/x", ".local/share/x", ".local/state/x"});
    writeAllocatedFile(apps / "org.example.Image/cache/pypoetry/cache/x", 7'000);
    writeAllocatedFile(apps / "org.example.Running/cache/x", 910'000);
    makeProfile(apps / "org.example.Chat/config/Chat", 450'000);
    writeAllocatedFile(apps / "org.example.Other/cache/x", 1'000);
    fs::create_directory_symlink("org.example.Other", apps / "org.example.Link");

    const auto snap = home_ / "snap/editor";
    makeFiles(
        snap,
        {{"common/.cache/x", 3'000'000}, {"9/.cache/x", 9'000}, {"11/.cache/x", 310'000}, {"x12/.cache/y", 320'000}});
    writeAll(snap, {"common/x", "11/Documents/x", "x12/.config/x", "old/.cache/x", "common/.local/share/x"});
    fs::create_directory_symlink("x12", snap / "current");

    makeProfile(home_ / profile, 13'000'000);
    writeAllocatedFile(home_ / profile / "Service Worker/CacheStorage/x", 2'100'000);
    const auto browser = home_ / ".config/chromium";
    writeFile(browser / "Local State", "{}");
    writeAll(browser, {"DIPS", "Default/Cookies", "Profile 2/Bookmarks"});
    writeFile(browser / "Default/Preferences", "{}");
    writeFile(browser / "Profile 2/Preferences", "{}");
    makeFiles(browser, {{"ShaderCache/x", 1'000},
                        {"component_crx_cache/x", 2'000},
                        {"Default/GPUCache/x", 3'000},
                        {"Profile 2/Code Cache/x", 4'000}});
    makeProfile(home_ / ".config/Vendor/Mail", 210'000);
    makeProfile(home_ / ".config/WireTalk", 660'000);
    // Look-alikes.
    writeAll(home_ / ".config", {"lookalike/Cache/x", "libreoffice/4/user/uno_packages/cache/x", "half/GPUCache/x",
                                 "text/Local State", "text/GPUCache/x"});
    fs::create_directory_symlink("Code", home_ / ".config/linked");
}

void LinuxDesktop::makeTools() const {
    makeFiles(home_, {{".npm/_cacache/x", 2'120'000},
                      {".npm/_npx/x", 140'000},
                      {".cargo/registry/cache/x", 900'000},
                      {".cargo/registry/src/x", 3'100'000},
                      {".cargo/git/checkouts/x", 400'000},
                      {".cargo/git/db/x", 600'000},
                      {"go/pkg/mod/cache/download/x", 1'500'000},
                      {"go/pkg/mod/example.com/module/x", 2'600'000},
                      {".gradle/caches/x", 17'000'000},
                      {".gradle/wrapper/dists/x", 1'300'000},
                      {".ivy2/cache/x", 300'000},
                      {".rustup/downloads/x", 1'000},
                      {".rustup/tmp/x", 2'000},
                      {".android/cache/x", 3'000},
                      {".android/build-cache/x", 4'000},
                      {".thumbnails/normal/x", 5'000},
                      {".local/share/Steam/steamapps/shadercache/220/x", 34'000'000},
                      {".local/share/Steam/appcache/httpcache/x", 610'000},
                      {".local/share/Steam/steamapps/downloading/220/x", 7'000'000},
                      {".local/share/Steam/steamapps/temp/x", 1'000},
                      {".var/app/com.valvesoftware.Steam/.local/share/Steam/steamapps/shadercache/440/x", 6'000},
                      {".wine/drive_c/users/anna/Temp/x", 7'000},
                      {".local/share/tagged/x", 8'000}});
    writeFile(home_ / ".local/share/tagged/CACHEDIR.TAG", "Signature: 8a477f597d28d172789f06886806bc55\n");
    writeAll(home_, {".npmrc",
                     ".npm/_logs/x.log",
                     ".cargo/bin/x",
                     ".cargo/registry/index/x",
                     "go/src/x",
                     "go/bin/x",
                     ".gradle/gradle.properties",
                     ".ivy2/local/x",
                     ".m2/repository/x",
                     ".rustup/toolchains/x",
                     ".android/avd/x",
                     ".local/share/Steam/steamapps/common/game/x",
                     ".local/share/pnpm/store/x",
                     ".local/share/containers/x",
                     ".local/share/flatpak/x",
                     ".wine/drive_c/users/anna/Documents/x",
                     ".local/share/other/x",
                     ".conan/x",
                     ".nuget/x",
                     ".stack/x",
                     ".opam/x"});
    writeFile(home_ / ".m2/repository/CACHEDIR.TAG", "Signature: 8a477f597d28d172789f06886806bc55\n");
}

void LinuxDesktop::makeLogs() const {
    makeFiles(home_, {{".xsession-errors", 16'000'000},
                      {".xsession-errors.old", 300'000},
                      {".local/share/xorg/Xorg.0.log", 30'000},
                      {".local/share/sddm/wayland-session.log", 70'000},
                      {".local/state/nvim/lsp.log", 2'500'000},
                      {".local/state/nvim/deep/a/b/c/d.log.2.gz", 1'001},
                      {".local/state/tool/tool-20261101.log", 1'002},
                      {".cache/JetBrains/Idea2024.3/log/idea.log", 1'017},
                      {".local/share/game/logs/latest.log", 1'003},
                      {".local/share/game/logs/old/2026-11-01.log.gz", 1'004},
                      {".local/share/Steam/logs/console.txt", 1'005},
                      {".local/share/Steam/logs/console.log.last", 1'006},
                      {".config/tool/Logs/a/b/tool.log", 1'007},
                      {".config/VirtualBox/VBoxSVC.log.3", 1'008},
                      {"VirtualBox VMs/Debian/Logs/VBox.log.1", 1'009},
                      {"VirtualBox VMs/Group/BSD/Logs/VBox.log", 1'010},
                      {".minecraft/logs/latest.log", 1'011},
                      {".minecraft/crash-reports/crash-2026-11-01.txt", 1'012},
                      {".var/app/org.example.Image/.local/state/image/image.log", 1'013},
                      {".var/app/org.example.Image/data/image/logs/image.log.1", 1'014},
                      {"snap/editor/11/.local/state/editor/editor.log", 1'015},
                      {".config/Code/logs/20261101/window1/output", 1'400'000},
                      {".config/Code/Crashpad/completed/a.dmp", 1'016}});
    writeFile(home_ / "core.4711", std::string("\177ELF\2\1\1\0\0\0\0\0\0\0\0\0\4\0", 18) + std::string(9'000, 'x'));
    writeFile(home_ / ".local/share/sparse/logs/x.log", "12345");
    constexpr std::uintmax_t terabyte = 1'000'000'000'000;
    fs::resize_file(home_ / ".local/share/sparse/logs/x.log", terabyte);
    // Look-alikes.
    writeAll(home_, {"core",
                     "core.1.txt",
                     "x.log",
                     "Documents/logs/x.log",
                     ".local/state/nvim/undo/x",
                     ".local/state/nvim/shada/main.shada",
                     ".local/state/nvim/swap/a.log.swp",
                     ".local/state/nvim/1/2/3/4/5/too-deep.log",
                     ".local/state/lesshst",
                     ".local/state/store/MANIFEST-000001",
                     ".local/state/store/000003.log",
                     ".local/state/store/x.log",
                     ".local/state/numbers/000004.log",
                     ".local/state/project/.git/logs/HEAD.log",
                     ".local/state/hexchat/room.log",
                     ".local/share/gvfs-metadata/logs/home.log",
                     ".local/share/org.project.Element/logs/room.log",
                     ".local/share/konversation/logs/room.log",
                     ".config/Code/Crashpad/pending/b.dmp",
                     ".var/app/org.gajim.Gajim/.local/state/chat/room.log",
                     ".purple/logs/friend.log"});
    fs::create_symlink(home_ / "Documents/x", home_ / ".local/state/tool/linked.log");
    fs::create_hard_link(home_ / "Documents/logs/x.log", home_ / ".local/state/tool/twice.log");
    fs::create_directory_symlink(home_ / "Documents/logs", home_ / ".local/share/linked");
}

void LinuxDesktop::makeDesktopEntries() const {
    const auto entries = home_ / ".local/share/applications";
    const auto theme = home_ / ".local/share/icons/hicolor";
    writeFile(theme / "index.theme",
              "[Icon Theme]\nName=Hicolor\nDirectories=scalable/apps\n[scalable/apps]\nContext=Applications\n"
              "Type=Scalable\nSize=48\nMinSize=16\nMaxSize=512\n");
    const auto entry = [&](const std::string& identifier, const std::string& name, const std::string& colour,
                           const std::string& more) {
        writeFile(entries / (identifier + ".desktop"),
                  "[Desktop Entry]\nType=Application\nName=" + name + "\nIcon=" + identifier + "\n" + more);
        writeFile(theme / "scalable/apps" / (identifier + ".svg"),
                  "<svg xmlns='http://www.w3.org/2000/svg' width='48' height='48'>"
                  "<rect x='4' y='4' width='40' height='40' rx='10' fill='" +
                      colour + "'/></svg>\n");
    };
    entry("org.example.Image", "Image Editor", "#1db954", "Exec=image\n");
    entry("code", "Visual Studio Code", "#2aa5a0", "Exec=/usr/bin/code %F\nStartupWMClass=Code\n");
    entry("chromium", "Chromium", "#f46b3c", "Exec=/usr/bin/chromium %U\n");
}

void LinuxDesktop::makePrecious() const {
    writeAll(home_, {".mozilla/firefox/abc.default/places.sqlite", ".ssh/id", ".gnupg/x", "Documents/x", "Pictures/x",
                     ".config/settings/x", ".local/share/notes/x", ".local/state/x/y"});
}

void LinuxDesktop::makeAll() const {
    makeCaches();
    makeApplications();
    makeTools();
    makeLogs();
    makeDesktopEntries();
    makePrecious();
}

std::vector<fs::path> LinuxDesktop::changingFolders() {
    return {".cache",
            ".var",
            "snap",
            ".npm",
            ".cargo",
            "go",
            ".gradle",
            ".ivy2",
            ".rustup",
            ".android",
            ".thumbnails",
            ".wine",
            ".config",
            ".local/share",
            ".local/state",
            ".minecraft",
            "VirtualBox VMs",
            ".xsession-errors",
            ".xsession-errors.old"};
}

std::vector<fs::path> LinuxDesktop::precious() {
    return {".cache/ibus/libpinyin/user.db",
            ".cache/rclone/vfs/drive/report.odt",
            ".cache/JetBrains/Idea2024.3/LocalHistory/x",
            ".config/Code/Cookies",
            ".config/Code/User/settings.json",
            ".config/libreoffice/4/user/uno_packages/cache/x",
            ".var/app/org.example.Image/cache/tmp/recent",
            ".var/app/org.example.Image/cache/rclone/vfs/x",
            ".var/app/org.example.Image/data/x",
            "snap/editor/x12/.config/x",
            "snap/editor/x12/.cache",
            ".m2/repository/x",
            ".mozilla/firefox/abc.default/places.sqlite",
            ".local/share/Steam/steamapps/common/game/x",
            ".local/state/store/000003.log",
            ".local/state/hexchat/room.log",
            ".local/state/nvim/undo/x",
            "Documents/logs/x.log"};
}

void LinuxDesktop::runFlatpak(const fs::path& runtime, const std::string& identifier, pid_t process) {
    const auto instance = runtime / ".flatpak" / std::to_string(process);
    writeFile(instance / "info", "[Application]\nname=" + identifier + "\n");
    writeFile(instance / "pid", std::to_string(process));
}

void LinuxDesktop::runProfile(const fs::path& folder, const std::string& machine, pid_t process) const {
    const auto lock = home_ / folder / "SingletonLock";
    fs::remove(lock);
    fs::create_symlink(machine + "-" + std::to_string(process), lock);
}

}  // namespace brimvault::trial
