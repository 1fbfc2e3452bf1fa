#pragma once

#include <QString>
#include <QStringList>

namespace brimvault::platform {

/// Identifiers of languages, in one form for all that the program compares: BCP 47 with as few parts as tell the
/// language from others of its name ("de", "pt" for the Portuguese of Brazil, "pt-PT", "zh-Hans", "zh-Hant-HK"), so
/// that two spellings of one language are equal as texts. Any thread.
class LocaleIdentifiers {
public:
    /// The identifier of a language however it is spelled: "de_DE.UTF-8", "pt_PT", "zh_CN", "iw", and the English names
    /// that stood for languages before there were identifiers ("Dutch", "TraditionalChinese"). What is no language
    /// comes back as it is.
    [[nodiscard]] static QString canonicalLocaleIdentifierFromString(const QString& text);

    /// The languages in which the user wants to read, the best liked first: those of the desktop's settings, each
    /// followed by those that its regional form belongs to. English is given with its region and without a follower:
    /// all of it is kept in any case, and "en" alone says that the languages after it do not matter.
    [[nodiscard]] static QStringList preferredLanguages();
    /// The same, of identifiers given in any spelling.
    [[nodiscard]] static QStringList preferredLanguagesFrom(const QStringList& languages);

    /// The name of the language in the first of the reader's that has one for it, else the English one; empty when
    /// there is none.
    [[nodiscard]] static QString displayName(const QString& identifier, const QStringList& readersLanguages);
};

}  // namespace brimvault::platform
