#pragma once

#include <QString>
#include <QStringList>
#include <QTranslator>

namespace brimvault::app {

/// The language of the program: its own texts are English, other languages are translations that it carries along.
/// While this lives the application speaks the language chosen; what is on show already is not told anew. Main thread.
class Translations {
public:
    /// Of the languages in which the user wants to read, the best liked first, the program speaks the first that it
    /// can.
    explicit Translations(const QStringList& wanted);

    /// The identifier of the language chosen; "en" when no translation is needed, or there is none to be had.
    [[nodiscard]] const QString& language() const { return language_; }

    /// The languages that there are translations for.
    [[nodiscard]] static QStringList translated();
    /// The first language wanted that is English or one of those translated, in any of their regional forms; "en" when
    /// there is none. Languages are BCP 47 identifiers.
    [[nodiscard]] static QString choose(const QStringList& wanted, const QStringList& translated);

private:
    QString language_;
    QTranslator own_;
    QTranslator qt_;  ///< what Qt itself says: menus of texts, names of keys
};

}  // namespace brimvault::app
