#include "app/Translations.h"

#include <QCoreApplication>
#include <QDir>
#include <QLibraryInfo>

namespace brimvault::app {

namespace {

const QString english = QStringLiteral("en");
const QString folder = QStringLiteral(":/translations");
const QString prefix = QStringLiteral("brimvault_");

// "de-Latn-AT", "de-Latn", "de": a language, and what it is a form of.
QStringList withFamily(const QString& language) {
    QStringList family;
    for (auto end = language.size(); end > 0; end = language.lastIndexOf(QLatin1Char('-'), end - 1)) {
        family.append(language.left(end));
    }
    return family;
}

}  // namespace

Translations::Translations(const QStringList& wanted) : language_(choose(wanted, translated())) {
    if (language_ == english) {
        return;
    }
    if (own_.load(prefix + language_, folder)) {
        QCoreApplication::installTranslator(&own_);
    }
    // Not every system has it; what the program says by itself does not depend on it.
    if (qt_.load(QStringLiteral("qtbase_") + language_, QLibraryInfo::path(QLibraryInfo::TranslationsPath))) {
        QCoreApplication::installTranslator(&qt_);
    }
}

QStringList Translations::translated() {
    QStringList languages;
    for (const QString& file : QDir(folder).entryList({prefix + QStringLiteral("*.qm")})) {
        languages.append(file.sliced(prefix.size()).section(QLatin1Char('.'), 0, 0));
    }
    return languages;
}

QString Translations::choose(const QStringList& wanted, const QStringList& translated) {
    for (const QString& language : wanted) {
        for (const QString& form : withFamily(language)) {
            if (form == english || translated.contains(form)) {
                return form;
            }
        }
    }
    return english;
}

}  // namespace brimvault::app
