#pragma once

#include <QString>
#include <QStringList>
#include <functional>

#include "langres/LanguagesManager.h"
#include "platform/StoredDefaults.h"

namespace brimvault::langres {

/// Whether the language is English or one of its variants, which are always kept. Any thread.
[[nodiscard]] bool isEnglish(const QString& language);
/// Answers whether a language on offer is kept. Any thread.
using IsKept = std::function<bool(const QString& language)>;
/// By default the first one on offer is kept, and those that the user uses.
[[nodiscard]] IsKept keptByDefault(const LanguagesManager& languages);
/// The key under which the user's choice about a language is stored.
[[nodiscard]] QString defaultsKeyOf(const QString& language);

/// The languages to keep of those on offer, in their order, but English first: all that are English, and of the others
/// those for which the answer is yes. It is asked of each once. Any thread.
[[nodiscard]] QStringList languagesToKeep(const QStringList& offered, const IsKept& isKept);
/// The languages to keep as the user has chosen them. The thread of the defaults.
[[nodiscard]] QStringList languagesToKeep(const LanguagesManager& languages, const platform::StoredDefaults& defaults);

}  // namespace brimvault::langres
