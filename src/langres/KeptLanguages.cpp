#include "langres/KeptLanguages.h"

namespace brimvault::langres {

namespace {

const QString english = QStringLiteral("en");

}  // namespace

bool isEnglish(const QString& language) { return language.startsWith(english); }

IsKept keptByDefault(const LanguagesManager& languages) {
    return [first = languages.popularLanguages().value(0), used = languages.safeUserLanguages()](
               const QString& language) { return language == first || used.contains(language.toLower()); };
}

QString defaultsKeyOf(const QString& language) { return QStringLiteral("LK_%1").arg(language); }

QStringList languagesToKeep(const QStringList& offered, const IsKept& isKept) {
    QStringList kept = {english};
    for (const QString& language : offered) {
        if ((isEnglish(language) || isKept(language)) && !kept.contains(language)) {
            kept.append(language);
        }
    }
    return kept;
}

QStringList languagesToKeep(const LanguagesManager& languages, const platform::StoredDefaults& defaults) {
    const auto isKept = keptByDefault(languages);
    return languagesToKeep(languages.popularLanguages(), [&](const QString& language) {
        return defaults.boolean(defaultsKeyOf(language)).value_or(isKept(language));
    });
}

}  // namespace brimvault::langres
