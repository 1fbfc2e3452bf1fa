#include "platform/InputSources.h"

#include <unicode/locid.h>
#include <xkbcommon/xkbregistry.h>

#include <QDir>
#include <QFile>
#include <QHash>
#include <QXmlStreamReader>
#include <algorithm>
#include <filesystem>
#include <iterator>
#include <memory>

#include "platform/LocaleIdentifiers.h"
#include "platform/System.h"
#include "platform/formats/FileContents.h"
#include "platform/linux/KeyboardSettings.h"

namespace brimvault::platform {

namespace {

using Registry = std::unique_ptr<rxkb_context, decltype(&rxkb_context_unref)>;

constexpr std::size_t maxFileBytes = 4UL * 1024 * 1024;  // ten times the size of the installed files

// libxkbregistry opens the user's own rules by itself, and would block on a FIFO in their place.
bool hasHarmlessRules() {
    const std::filesystem::path home = system().environmentVariable("HOME");
    const std::filesystem::path configuration = system().environmentVariable("XDG_CONFIG_HOME");
    const std::filesystem::path folders[] = {configuration / "xkb", home / ".config/xkb", home / ".xkb"};
    return std::all_of(std::begin(folders), std::end(folders), [](const auto& folder) {
        return FileContents::isHarmless(folder / "rules/evdev.xml", maxFileBytes);
    });
}

Registry loadRegistry() {
    const bool all = hasHarmlessRules();
    Registry registry(rxkb_context_new(all ? RXKB_CONTEXT_NO_FLAGS : RXKB_CONTEXT_NO_DEFAULT_INCLUDES),
                      &rxkb_context_unref);
    if (registry && !all) {
        (void)rxkb_context_include_path_append(registry.get(), "/usr/share/X11/xkb");
    }
    constexpr const char* rules = "evdev";  // the rules for all keyboards on Linux
    if (registry && !rxkb_context_parse(registry.get(), rules)) {
        registry.reset();
    }
    return registry;
}

rxkb_layout* find(rxkb_context* registry, const KeyboardLayout& wanted) {
    for (auto* layout = rxkb_layout_first(registry); layout != nullptr; layout = rxkb_layout_next(layout)) {
        const char* variant = rxkb_layout_get_variant(layout);
        if (wanted.name == rxkb_layout_get_name(layout) && wanted.variant == (variant == nullptr ? "" : variant)) {
            return layout;
        }
    }
    return nullptr;
}

QString countryOf(rxkb_layout* layout) {
    auto* country = rxkb_layout_get_iso3166_first(layout);
    return country == nullptr ? QString() : QString::fromLatin1(rxkb_iso3166_code_get_code(country));
}

QString languageSpokenIn(const QString& country) {
    UErrorCode status = U_ZERO_ERROR;
    icu::Locale spoken("und", country.toLatin1().constData());
    spoken.addLikelySubtags(status);
    return U_SUCCESS(status) ? QString::fromLatin1(spoken.getLanguage()) : QString();
}

// The registry names languages by ISO 639-2 codes, and not the main one first.
QString languageOf(rxkb_layout* layout) {
    const QString country = countryOf(layout);
    const QString spoken = languageSpokenIn(country);
    // Where the list lacks a layout's main language (Taiwan's), the layout's brief name is that language's code.
    const char* brief = rxkb_layout_get_brief(layout);
    QString language = !spoken.isEmpty() && spoken == QLatin1String(brief) ? spoken : QString();
    for (auto* code = rxkb_layout_get_iso639_first(layout); code != nullptr; code = rxkb_iso639_code_next(code)) {
        const QString named =
            LocaleIdentifiers::canonicalLocaleIdentifierFromString(QString::fromLatin1(rxkb_iso639_code_get_code(code)))
                .section(QLatin1Char('-'), 0, 0);
        if (language.isEmpty() || named == spoken) {
            language = named;
        }
    }
    // The country tells the two kinds of Portuguese and of Chinese apart; for other languages it means only the
    // keyboard.
    const bool ofTwoKinds = language == QLatin1String("zh") || language == QLatin1String("pt");
    return LocaleIdentifiers::canonicalLocaleIdentifierFromString(
        ofTwoKinds && !country.isEmpty() ? language + QLatin1Char('-') + country : language);
}

QStringList languagesOf(const std::vector<KeyboardLayout>& layouts) {
    const auto registry = layouts.empty() ? Registry(nullptr, &rxkb_context_unref) : loadRegistry();
    QStringList languages;
    for (const auto& wanted : layouts) {
        auto* layout = registry ? find(registry.get(), wanted) : nullptr;
        languages.append(layout == nullptr ? QString() : languageOf(layout));
    }
    return languages;
}

// Each input method is described by an element "engine" with a "name" and a "language".
void readEngines(const std::filesystem::path& path, QHash<QString, QString>& languageOfEngine) {
    const auto contents = FileContents::read(path, maxFileBytes);
    QXmlStreamReader reader(QByteArray::fromStdString(contents.value_or(std::string())));
    QString name;
    QString language;
    while (!reader.atEnd()) {
        const auto token = reader.readNext();
        if (token == QXmlStreamReader::EndElement && reader.name() == QLatin1String("engine")) {
            languageOfEngine.insert(name, language);
        } else if (token == QXmlStreamReader::StartElement && reader.name() == QLatin1String("engine")) {
            name.clear();  // of the enclosing element
            language.clear();
        } else if (token == QXmlStreamReader::StartElement && reader.name() == QLatin1String("name")) {
            name = reader.readElementText(QXmlStreamReader::SkipChildElements);
        } else if (token == QXmlStreamReader::StartElement && reader.name() == QLatin1String("language")) {
            language = reader.readElementText(QXmlStreamReader::SkipChildElements);
        }
    }
}

QStringList languagesOf(const std::vector<std::string>& engines) {
    QHash<QString, QString> languageOfEngine;
    if (!engines.empty()) {
        const auto folder = systemRoot() / "usr/share/ibus/component";
        const QDir components(QFile::decodeName(folder.c_str()), QStringLiteral("*.xml"));
        for (const auto& file : components.entryInfoList(QDir::Files)) {
            readEngines(file.filesystemFilePath(), languageOfEngine);
        }
    }
    QStringList languages;
    for (const auto& engine : engines) {
        languages.append(LocaleIdentifiers::canonicalLocaleIdentifierFromString(
            languageOfEngine.value(QString::fromStdString(engine))));
    }
    return languages;
}

}  // namespace

QStringList currentInputSources() {
    const auto settings = enabledInputSettings();
    QStringList languages = languagesOf(settings.layouts) + languagesOf(settings.engines);
    languages.removeAll(QString());
    languages.removeDuplicates();
    return languages;
}

}  // namespace brimvault::platform
