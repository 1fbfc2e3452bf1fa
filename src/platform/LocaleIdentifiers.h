#pragma once

#include <QString>
#include <QStringList>

namespace brimvault::platform {

/// Identifiers of languages in one canonical form, so that two spellings of a language are equal as texts: BCP 47 with
/// the fewest subtags that are unambiguous ("de", "pt" for the Portuguese of Brazil, "pt-PT", "zh-Hans", "zh-Hant-HK").
/// Any thread.
class LocaleIdentifiers {
public:
    /// The canonical identifier for any spelling: "de_DE.UTF-8", "pt_PT", "zh_CN", "iw", and the English names that
    /// older applications use ("Dutch", "TraditionalChinese"). What is no language is returned unchanged.
    [[nodiscard]] static QString canonicalLocaleIdentifierFromString(const QString& text);

    /// The user's languages in order of preference: those of the desktop's settings, each followed by its more general
    /// forms as fallbacks. English keeps its region and has no fallback: English is always kept, and "en" alone says
    /// that the languages after it do not matter.
    [[nodiscard]] static QStringList preferredLanguages();
    /// The same for given languages, in any spelling.
    [[nodiscard]] static QStringList preferredLanguagesFrom(const QStringList& languages);

    /// The name of the language, in the first of the reader's languages that has one, with English as the fallback;
    /// empty when there is none.
    [[nodiscard]] static QString displayName(const QString& identifier, const QStringList& readersLanguages);
};

}  // namespace brimvault::platform
