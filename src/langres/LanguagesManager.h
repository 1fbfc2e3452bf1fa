#pragma once

#include <QSet>
#include <QString>
#include <QStringList>
#include <optional>
#include <string>

namespace brimvault::langres {

/// What the system has told of the user's languages, and which of its own applications are left alone. Any thread; it
/// does not change.
class LanguagesManager {
public:
    /// Identifiers in the form of `platform::LocaleIdentifiers`.
    struct UserLanguages {
        QStringList preferredLanguages;     ///< in the user's order
        QStringList currentInputSources;    ///< of what the user types with, each once
        bool offersCommonLanguages = true;  ///< beside those that the user evidently uses
    };

    explicit LanguagesManager(UserLanguages languages) : user_(std::move(languages)) {}
    /// The one of the process. The first call reads settings and the registry of keyboards, and may block.
    static const LanguagesManager& sharedManager();

    /// The user's preferred languages, up to the first that is "en".
    [[nodiscard]] QStringList preferredLanguages() const;
    /// The languages to offer: preferred ones, common ones, those of the keyboard layouts; each once.
    [[nodiscard]] QStringList popularLanguages() const;
    /// Lower-cased identifiers of what the user evidently uses, and of English.
    [[nodiscard]] QSet<QString> safeUserLanguages() const;

    /// NO for the applications that come with macOS, which check that nothing of them was changed. Compares letter by
    /// letter; an application without an identifier may be changed.
    [[nodiscard]] static bool isPossibleToRemoveLangsInBundleWithIdentifier(
        const std::optional<std::string>& identifier);

private:
    const UserLanguages user_;
};

}  // namespace brimvault::langres
