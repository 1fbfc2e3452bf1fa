#pragma once

#include <QString>
#include <QStringList>
#include <QTranslator>

namespace brimvault::app {

/// The language of the program: its own texts are English, other languages are translations inside the program. They
/// are installed for as long as this lives; texts that are on show already are not translated again. Main thread.
class Translations {
public:
    /// Chooses the first of the user's languages, in order of preference, that is English or has a translation.
    explicit Translations(const QStringList& wanted);

    /// The identifier of the language chosen; "en" if no translation is needed, or there is none.
    [[nodiscard]] const QString& language() const { return language_; }

    /// The languages that there are translations for.
    [[nodiscard]] static QStringList translated();
    /// The first language wanted that is English or one of those translated, in any of their regional forms; "en" when
    /// there is none. Languages are BCP 47 identifiers.
    [[nodiscard]] static QString choose(const QStringList& wanted, const QStringList& translated);

private:
    QString language_;
    QTranslator own_;
    QTranslator qt_;  ///< Qt's own texts: context menus of text fields, names of keys
};

}  // namespace brimvault::app
