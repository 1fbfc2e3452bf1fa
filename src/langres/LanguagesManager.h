#pragma once

#include <QSet>
#include <QString>
#include <QStringList>
#include <optional>
#include <string>

namespace brimvault::langres {

/// The user's languages, as the system reports them, and the list of system applications that are left alone.
/// Immutable; any thread.
class LanguagesManager {
public:
    /// Identifiers in the form of `platform::LocaleIdentifiers`.
    struct UserLanguages {
        QStringList preferredLanguages;     ///< in the user's order
        QStringList currentInputSources;    ///< languages of the keyboard layouts, each once
        bool offersCommonLanguages = true;  ///< beside those that the user uses
    };

    explicit LanguagesManager(UserLanguages languages) : user_(std::move(languages)) {}
    /// The process-wide instance. The first call reads settings and the registry of keyboard layouts, and may block.
    static const LanguagesManager& sharedManager();

    /// The user's preferred languages, up to the first that is "en".
    [[nodiscard]] QStringList preferredLanguages() const;
    /// The languages to offer: preferred ones, common ones, those of the keyboard layouts; each once.
    [[nodiscard]] QStringList popularLanguages() const;
    /// Lower-case identifiers of the languages that the user uses, and of English.
    [[nodiscard]] QSet<QString> safeUserLanguages() const;

    /// False for the applications that come with macOS, whose signatures break if they are changed. Case-sensitive;
    /// true for an application without an identifier.
    [[nodiscard]] static bool isPossibleToRemoveLangsInBundleWithIdentifier(
        const std::optional<std::string>& identifier);

private:
    const UserLanguages user_;
};

}  // namespace brimvault::langres
