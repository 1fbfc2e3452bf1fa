#pragma once

#include <QSet>
#include <QString>
#include <QStringList>
#include <functional>
#include <optional>
#include <string>

namespace brimvault::langres {

/// What the system tells of the user's languages, and which of its own applications are left alone.
///
/// The languages are asked for by the main thread; whether an application may be changed, by any.
class LanguagesManager {
public:
    /// Where the answers come from; identifiers in the form of `platform::LocaleIdentifiers`.
    struct Sources {
        std::function<QStringList()> preferredLanguages;   ///< in the user's order
        std::function<QStringList()> currentInputSources;  ///< of the enabled keyboard layouts, each once
        bool offersCommonLanguages = true;                 ///< beside those that the user evidently uses
    };

    explicit LanguagesManager(Sources sources) : sources_(std::move(sources)) {}
    /// The one of the process, of the system that it runs on.
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
    Sources sources_;
};

}  // namespace brimvault::langres
