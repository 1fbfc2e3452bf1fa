#include "platform/linux/KeyboardSettings.h"

#include <gio/gio.h>

#include <QHash>
#include <QRegularExpression>
#include <QStringList>
#include <QXmlStreamReader>
#include <algorithm>
#include <filesystem>
#include <iterator>
#include <string>

#include "platform/LibraryURLs.h"
#include "platform/System.h"
#include "platform/formats/FileContents.h"
#include "platform/formats/SettingsText.h"
#include "platform/linux/Owned.h"

// Every desktop keeps the layouts that its user has enabled in a place of its own; the layouts chosen at installation
// are in /etc. The display server is not asked: that takes a connection, and Wayland compositors do not tell.

namespace brimvault::platform {

namespace {

using Layouts = std::vector<KeyboardLayout>;

constexpr std::size_t maxFileBytes = 1024UL * 1024;
constexpr std::size_t maxDatabaseBytes = 64UL * 1024 * 1024;

// Layouts and variants as two parallel lists: "us,de" and ",nodeadkeys".
Layouts fromLists(const QString& names, const QString& variants) {
    const QStringList allVariants = variants.split(QLatin1Char(','));
    Layouts layouts;
    qsizetype index = 0;
    for (const QString& name : names.split(QLatin1Char(','))) {
        const QString variant = allVariants.value(index++);
        if (const QString trimmed = name.trimmed(); !trimmed.isEmpty()) {
            layouts.push_back({trimmed.toStdString(), variant.trimmed().toStdString()});
        }
    }
    return layouts;
}

// Layout and variant in one name with a separator: "de+nodeadkeys".
KeyboardLayout fromName(const std::string& name, char separator) {
    const auto at = name.find(separator);
    return at == std::string::npos ? KeyboardLayout{name, {}} : KeyboardLayout{name.substr(0, at), name.substr(at + 1)};
}

// --- Desktops on GSettings ---------------------------------------------------------------------------------------

struct SettingsPlace {
    const char* desktop;
    const char* schema;
    const char* key;
};

constexpr SettingsPlace settingsPlaces[] = {
    {"GNOME", "org.gnome.desktop.input-sources", "sources"},
    {"Unity", "org.gnome.desktop.input-sources", "sources"},
    {"Budgie", "org.gnome.desktop.input-sources", "sources"},
    {"Pantheon", "org.gnome.desktop.input-sources", "sources"},
    {"X-Cinnamon", "org.cinnamon.desktop.input-sources", "sources"},
    {"X-Cinnamon", "org.gnome.libgnomekbd.keyboard", "layouts"},
    {"MATE", "org.mate.peripherals-keyboard-xkb.kbd", "layouts"},
};

// Pairs of a kind and a name: of a layout ("xkb") or of an input method ("ibus"). Or names of layouts alone.
InputSettings fromVariant(GVariant* value) {
    InputSettings found;
    const std::string type = g_variant_get_type_string(value);
    const bool pairs = type == "a(ss)";
    if (!pairs && type != "as") {
        return found;
    }
    for (gsize index = 0; index < g_variant_n_children(value); ++index) {
        const char* kind = "xkb";
        const char* name = nullptr;
        if (pairs) {
            g_variant_get_child(value, index, "(&s&s)", &kind, &name);
        } else {
            g_variant_get_child(value, index, "&s", &name);
        }
        if (std::string(kind) == "xkb" && *name != '\0') {
            found.layouts.push_back(fromName(name, pairs ? '+' : '\t'));
        } else if (std::string(kind) == "ibus") {
            found.engines.emplace_back(name);
        }
    }
    return found;
}

// GLib opens files of the user by itself, and would block on a FIFO in their place.
bool mayAskSettings() {
    const auto configuration = LibraryURLs::getConfigurationFolderURL();
    const std::filesystem::path data = system().environmentVariable("XDG_DATA_HOME");
    constexpr const char* schemas = "glib-2.0/schemas/gschemas.compiled";
    const std::filesystem::path files[] = {configuration / "dconf/user", configuration / "glib-2.0/settings/keyfile",
                                           data / schemas, homeFolder() / ".local/share" / schemas};
    return std::all_of(std::begin(files), std::end(files),
                       [](const auto& file) { return FileContents::isHarmless(file, maxDatabaseBytes); });
}

// GLib aborts the process when a schema or a key that is not installed is asked for.
InputSettings fromSettings(const SettingsPlace& place) {
    auto* installed = g_settings_schema_source_get_default();
    if (installed == nullptr) {
        return {};
    }
    const Owned<GSettingsSchema, g_settings_schema_unref> schema(
        g_settings_schema_source_lookup(installed, place.schema, TRUE));
    if (!schema || g_settings_schema_has_key(schema.get(), place.key) == 0) {
        return {};
    }
    const Owned<GSettings, g_object_unref> settings(g_settings_new_full(schema.get(), nullptr, nullptr));
    const Owned<GVariant, g_variant_unref> value(g_settings_get_value(settings.get(), place.key));
    return fromVariant(value.get());
}

// --- Desktops with files of their own ----------------------------------------------------------------------------

// Untrusted files; what a desktop writes there is short.
std::string contentsBelowConfiguration(const char* name) {
    return FileContents::read(LibraryURLs::getConfigurationFolderURL() / name, maxFileBytes).value_or(std::string());
}

Layouts fromPlasma() {
    const SettingsText file(contentsBelowConfiguration("kxkbrc"));
    const auto value = [&](const char* key) { return QString::fromStdString(file.value("Layout", key).value_or("")); };
    const QString use = value("Use").toLower();
    if (use == QLatin1String("false") || use == QLatin1String("0")) {
        return {};
    }
    return fromLists(value("LayoutList"), value("VariantList"));
}

Layouts fromXfce() {
    QXmlStreamReader reader(
        QByteArray::fromStdString(contentsBelowConfiguration("xfce4/xfconf/xfce-perchannel-xml/keyboard-layout.xml")));
    QHash<QString, QString> values;
    while (!reader.atEnd()) {
        if (reader.readNext() == QXmlStreamReader::StartElement) {
            const auto attributes = reader.attributes();
            values.insert(attributes.value(QLatin1String("name")).toString(),
                          attributes.value(QLatin1String("value")).toString());
        }
    }
    // "XkbDisable" leaves the layouts of the machine.
    return values.value(QStringLiteral("XkbDisable")) == QLatin1String("true")
               ? Layouts()
               : fromLists(values.value(QStringLiteral("XkbLayout")), values.value(QStringLiteral("XkbVariant")));
}

InputSettings ofDesktop() {
    const auto desktops = QString::fromStdString(system().environmentVariable("XDG_CURRENT_DESKTOP"))
                              .split(QLatin1Char(':'), Qt::SkipEmptyParts);
    for (const auto& place : settingsPlaces) {
        if (desktops.contains(QLatin1String(place.desktop)) && mayAskSettings()) {
            if (auto found = fromSettings(place); !found.layouts.empty() || !found.engines.empty()) {
                return found;
            }
        }
    }
    if (desktops.contains(QLatin1String("KDE"))) {
        return {fromPlasma(), {}};
    }
    return desktops.contains(QLatin1String("XFCE")) ? InputSettings{fromXfce(), {}} : InputSettings();
}

// --- The machine -------------------------------------------------------------------------------------------------

// What the expression captures in the first line that it matches; empty without such a line.
QString valueInLine(const std::filesystem::path& path, const QRegularExpression& line) {
    const auto contents = FileContents::read(path, maxFileBytes);
    return line.match(QString::fromStdString(contents.value_or(std::string()))).captured(1);
}

Layouts ofMachine() {
    const auto etc = systemRoot() / "etc";
    const auto inDefaults = [&](const char* key) {
        return valueInLine(etc / "default/keyboard",
                           QRegularExpression(QStringLiteral("^\\s*%1=[\"']?([^\"'\\n#]*)").arg(QLatin1String(key)),
                                              QRegularExpression::MultilineOption));
    };
    if (auto layouts = fromLists(inDefaults("XKBLAYOUT"), inDefaults("XKBVARIANT")); !layouts.empty()) {
        return layouts;
    }
    const auto inDisplay = [&](const char* key) {
        return valueInLine(
            etc / "X11/xorg.conf.d/00-keyboard.conf",
            QRegularExpression(QStringLiteral("^\\s*Option\\s+\"%1\"\\s+\"([^\"\\n]*)\"").arg(QLatin1String(key)),
                               QRegularExpression::MultilineOption | QRegularExpression::CaseInsensitiveOption));
    };
    return fromLists(inDisplay("XkbLayout"), inDisplay("XkbVariant"));
}

}  // namespace

InputSettings enabledInputSettings() {
    auto settings = ofDesktop();
    if (settings.layouts.empty()) {
        settings.layouts = ofMachine();
    }
    return settings;
}

}  // namespace brimvault::platform
