#include "platform/LocaleIdentifiers.h"

#include <unicode/locid.h>
#include <unicode/region.h>
#include <unicode/uloc.h>
#include <unicode/unistr.h>

#include <QHash>
#include <QLocale>
#include <QRegularExpression>
#include <QSet>
#include <cstdint>

#include "platform/System.h"

namespace brimvault::platform {

namespace {

QString fromIcu(const icu::UnicodeString& text) {
    return QString(reinterpret_cast<const QChar*>(text.getBuffer()), text.length());
}

// "SimplifiedChinese" and "Simplified Chinese" are one name.
QString nameKey(const QString& name) {
    QString key;
    for (const QChar character : name) {
        if (character.isLetterOrNumber()) {
            key.append(character.toLower());
        }
    }
    return key;
}

// The English names of all languages in ICU's locale data, and legacy names that applications use and ICU lacks.
QHash<QString, QString> makeLanguageNames() {
    QHash<QString, QString> names;
    for (const char* const* code = uloc_getISOLanguages(); *code != nullptr; ++code) {
        icu::UnicodeString name;
        icu::Locale(*code).getDisplayLanguage(icu::Locale::getEnglish(), name);
        names.insert(nameKey(fromIcu(name)), QString::fromLatin1(*code));
    }
    for (const char* identifier : {"zh-Hans", "zh-Hant", "pt-BR", "pt-PT", "en-GB", "en-US", "fr-CA", "es-MX", "es-419",
                                   "de-AT", "de-CH", "nl-BE", "sr-Latn", "sr-Cyrl"}) {
        icu::UnicodeString name;
        icu::Locale(identifier).getDisplayName(icu::Locale::getEnglish(), name);  // "Chinese (Simplified)"
        names.insert(nameKey(fromIcu(name)), QString::fromLatin1(identifier));
    }
    constexpr std::pair<const char*, const char*> others[] = {
        {"simplifiedchinese", "zh-Hans"},
        {"traditionalchinese", "zh-Hant"},
        {"brazilianportuguese", "pt"},
        {"europeanportuguese", "pt-PT"},
        {"americanenglish", "en"},
        {"britishenglish", "en-GB"},
        {"britainenglish", "en-GB"},
        {"norwegian", "nb"},
        {"farsi", "fa"},
        {"flemish", "nl-BE"},
        {"byelorussian", "be"},
        {"mexicanspanish", "es-MX"},
        {"canadianfrench", "fr-CA"},
    };
    for (const auto& [name, identifier] : others) {
        names.insert(QString::fromLatin1(name), QString::fromLatin1(identifier));
    }
    return names;
}

QString languageOfName(const QString& name) {
    static const QHash<QString, QString> names = makeLanguageNames();
    return names.value(nameKey(name));
}

// A language of two or three letters, then optionally a script and a region after "-" or "_"; POSIX adds an encoding
// and a modifier.
bool looksLikeIdentifier(const QString& text) {
    static const QRegularExpression form(QStringLiteral(
        "^[A-Za-z]{2,3}([-_][A-Za-z]{4})?([-_]([A-Za-z]{2}|[0-9]{3}))?(\\.[A-Za-z0-9-]+)?(@[A-Za-z]+)?\\z"));
    return form.match(text).hasMatch();
}

// Drops the encoding. A modifier that names a script becomes the script subtag; others are dropped.
QString withoutPosixParts(const QString& text) {
    QString plain = text.section(QLatin1Char('@'), 0, 0).section(QLatin1Char('.'), 0, 0);
    const QString modifier = text.section(QLatin1Char('@'), 1).toLower();
    for (const auto& [name, script] : {std::pair("latin", "Latn"), std::pair("cyrillic", "Cyrl"),
                                       std::pair("devanagari", "Deva"), std::pair("arabic", "Arab")}) {
        if (modifier == QLatin1String(name)) {
            const QString language = plain.section(QLatin1Char('_'), 0, 0);
            return language + QLatin1Char('_') + QLatin1String(script) + plain.mid(language.size());
        }
    }
    return plain;
}

QString joined(const char* language, const char* script, const char* region) {
    QString identifier = QString::fromLatin1(language);
    for (const char* part : {script, region}) {
        if (*part != '\0') {
            identifier += QLatin1Char('-') + QString::fromLatin1(part);
        }
    }
    return identifier;
}

// Chinese always keeps its script; other languages keep only the subtags that are not likely by default.
QString shortestForm(const icu::Locale& locale) {
    UErrorCode status = U_ZERO_ERROR;
    icu::Locale full = locale;
    full.addLikelySubtags(status);
    if (U_SUCCESS(status) && qstrcmp(full.getLanguage(), "zh") == 0) {
        icu::Locale defaultLocale("zh", qstrcmp(full.getScript(), "Hant") == 0 ? "TW" : "CN");
        const bool isDefaultRegion = qstrcmp(full.getCountry(), defaultLocale.getCountry()) == 0;
        return joined("zh", full.getScript(), isDefaultRegion ? "" : full.getCountry());
    }
    icu::Locale minimal = locale;
    minimal.minimizeSubtags(status);
    const icu::Locale& answer = U_SUCCESS(status) ? minimal : locale;
    return joined(answer.getLanguage(), answer.getScript(), answer.getCountry());
}

// Canonical "en-US" is "en"; for English the region that was named is kept.
QString withRegion(const QString& identifier) {
    const icu::Locale locale(identifier.section(QLatin1Char('.'), 0, 0).toLatin1().constData());
    return joined(locale.getLanguage(), "", locale.getCountry());
}

// The more general forms of a regional form, the nearest first.
QStringList familyOf(const QString& identifier) {
    const QString language = identifier.section(QLatin1Char('-'), 0, 0);
    if (language == QLatin1String("zh")) {
        return {identifier.section(QLatin1Char('-'), 0, 1)};
    }
    if (language == QLatin1String("es") && identifier.size() > language.size()) {
        // Latin American Spanish has an identifier of its own, with the UN code of the region.
        UErrorCode status = U_ZERO_ERROR;
        const auto* america = icu::Region::getInstance("419", status);
        const auto* own =
            icu::Region::getInstance(identifier.section(QLatin1Char('-'), -1).toLatin1().constData(), status);
        if (U_SUCCESS(status) && america->contains(*own)) {
            return {QStringLiteral("es-419"), language};
        }
    }
    return {language};
}

QSet<QString> makeKnownLanguages() {
    QSet<QString> languages;
    for (std::int32_t place = 0; place < uloc_countAvailable(); ++place) {
        languages.insert(QString::fromLatin1(icu::Locale(uloc_getAvailable(place)).getLanguage()));
    }
    return languages;
}

// For a reader's language that it does not know, ICU would fall back to the locale of the process.
QString nameIn(const QString& readersLanguage, const icu::Locale& asked) {
    static const QSet<QString> knownLanguages = makeKnownLanguages();
    const icu::Locale reader(readersLanguage.toLatin1().constData());
    if (!knownLanguages.contains(QString::fromLatin1(reader.getLanguage()))) {
        return {};
    }
    icu::UnicodeString language;
    asked.getDisplayLanguage(reader, language);
    if (*asked.getLanguage() == '\0' || fromIcu(language) == QLatin1String(asked.getLanguage())) {
        return {};  // ICU returns the code where it has no name
    }
    icu::UnicodeString name;
    asked.getDisplayName(reader, name);
    return fromIcu(name);
}

}  // namespace

QString LocaleIdentifiers::canonicalLocaleIdentifierFromString(const QString& text) {
    if (!looksLikeIdentifier(text)) {
        const QString known = languageOfName(text);
        return known.isEmpty() ? text : canonicalLocaleIdentifierFromString(known);
    }
    UErrorCode status = U_ZERO_ERROR;
    icu::Locale locale = icu::Locale::createCanonical(withoutPosixParts(text).toLatin1().constData());
    locale.canonicalize(status);
    if (U_FAILURE(status) || *locale.getLanguage() == '\0') {
        return text;
    }
    if (qstrcmp(locale.getLanguage(), "no") == 0) {
        // Bokmål is what nearly all mean by it, and what lists of languages offer.
        locale = icu::Locale("nb", locale.getCountry());
    }
    return shortestForm(locale);
}

QStringList LocaleIdentifiers::preferredLanguages() {
    QStringList languages = QLocale::system().uiLanguages();
    // Qt drops modifiers, some of which name the script.
    QString locale;
    for (const char* variable : {"LANGUAGE", "LC_ALL", "LC_MESSAGES", "LANG"}) {
        if (locale.isEmpty()) {
            locale = QString::fromStdString(system().environmentVariable(variable));
        }
    }
    if (locale.contains(QLatin1Char('@'))) {
        languages.prepend(locale.section(QLatin1Char(':'), 0, 0));
    }
    return preferredLanguagesFrom(languages);
}

QStringList LocaleIdentifiers::preferredLanguagesFrom(const QStringList& languages) {
    QStringList preferred;
    bool hasRegionalEnglish = false;
    const auto add = [&](const QString& identifier) {
        if (!identifier.isEmpty() && !preferred.contains(identifier)) {
            preferred.append(identifier);
        }
    };
    for (const QString& language : languages) {
        if (language == QLatin1String("C") || language == QLatin1String("POSIX")) {
            continue;  // no language: untranslated texts, which are English
        }
        const QString identifier = canonicalLocaleIdentifierFromString(language);
        if (identifier.section(QLatin1Char('-'), 0, 0) == QLatin1String("en")) {
            // QLocale lists "en" after a regional form by itself.
            const QString english = withRegion(language);
            add(hasRegionalEnglish && english == QLatin1String("en") ? QString() : english);
            hasRegionalEnglish = hasRegionalEnglish || english != QLatin1String("en");
            continue;
        }
        add(identifier);
        for (const QString& family : familyOf(identifier)) {
            add(family);
        }
    }
    return preferred.isEmpty() ? QStringList{QStringLiteral("en")} : preferred;
}

QString LocaleIdentifiers::displayName(const QString& identifier, const QStringList& readersLanguages) {
    const icu::Locale asked(identifier.toLatin1().constData());
    for (const QString& language : readersLanguages) {
        if (QString name = nameIn(language, asked); !name.isEmpty()) {
            return name;
        }
    }
    return nameIn(QStringLiteral("en"), asked);
}

}  // namespace brimvault::platform
