#include "platform/ReadOnlyLibraries.h"

#include <glib.h>

#include <algorithm>
#include <cstdlib>
#include <optional>
#include <span>
#include <string_view>

#include "platform/System.h"

namespace brimvault::platform {

namespace {

GLogWriterOutput writeUnlessOfDconf(GLogLevelFlags level, const GLogField* fields, gsize count, gpointer data) {
    const std::span<const GLogField> all(fields, count);
    const bool isOfDconf = std::any_of(all.begin(), all.end(), [](const GLogField& field) {
        return field.key == std::string_view("GLIB_DOMAIN") &&
               static_cast<const char*>(field.value) == std::string_view("dconf");
    });
    return isOfDconf ? G_LOG_WRITER_HANDLED : g_log_writer_default(level, fields, count, data);
}

// Set before other threads are started.
std::optional<std::filesystem::path>& keptFromLibraries() {
    static std::optional<std::filesystem::path> folder;
    return folder;
}

}  // namespace

std::filesystem::path runtimeFolder() {
    const auto& kept = keptFromLibraries();
    return kept ? *kept : std::filesystem::path(system().environmentVariable("XDG_RUNTIME_DIR"));
}

// To hear of changes, dconf makes a file in the runtime folder, or in ~/.cache where there is none, and connects to the
// session bus, which may start one. It reads without either, but complains.
void keepLibrariesFromWriting() {
    keptFromLibraries() = system().environmentVariable("XDG_RUNTIME_DIR");
    (void)::setenv("XDG_RUNTIME_DIR", "/dev/null", 1);
    (void)::setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/dev/null", 1);
    g_log_set_writer_func(&writeUnlessOfDconf, nullptr, nullptr);
}

}  // namespace brimvault::platform
