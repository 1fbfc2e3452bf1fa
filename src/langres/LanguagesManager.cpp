#include "langres/LanguagesManager.h"

#include <unordered_set>

#include "platform/InputSources.h"
#include "platform/LocaleIdentifiers.h"
#include "platform/MacOSVersion.h"

namespace brimvault::langres {

namespace {

const std::string systemPrefix = "com.apple.";

// Only identifiers with the prefix "com.apple." are looked up, so the last three never match; kept on purpose.
const std::unordered_set<std::string>& generateAppleSystemBundleIdentifiers() {
    static const std::unordered_set<std::string> identifiers = {
        "com.apple.ActivityMonitor",
        "com.apple.AddressBook",
        "com.apple.airport.airportutility",
        "com.apple.appstore",
        "com.apple.audio.AudioMIDISetup",
        "com.apple.Automator",
        "com.apple.backup.launcher",
        "com.apple.BluetoothFileExchange",
        "com.apple.bootcampassistant",
        "com.apple.calculator",
        "com.apple.Chess",
        "com.apple.ColorSyncUtility",
        "com.apple.Console",
        "com.apple.dashboardlauncher",
        "com.apple.Dictionary",
        "com.apple.DigitalColorMeter",
        "com.apple.Disk-Utility",
        "com.apple.DiskUtility",
        "com.apple.exposelauncher",
        "com.apple.FaceTime",
        "com.apple.FontBook",
        "com.apple.gamecenter",
        "com.apple.Grab",
        "com.apple.grapher",
        "com.apple.iBooksX",
        "com.apple.iCal",
        "com.apple.iChat",
        "com.apple.Image_Capture",
        "com.apple.iTunes",
        "com.apple.keychainaccess",
        "com.apple.launchpad.launcher",
        "com.apple.mail",
        "com.apple.Maps",
        "com.apple.MigrateAssistant",
        "com.apple.Notes",
        "com.apple.PhotoBooth",
        "com.apple.Photos",
        "com.apple.Preview",
        "com.apple.QuickTimePlayerX",
        "com.apple.reminders",
        "com.apple.Safari",
        "com.apple.ScriptEditor2",
        "com.apple.siri.launcher",
        "com.apple.Siri",
        "com.apple.Stickies",
        "com.apple.systempreferences",
        "com.apple.SystemProfiler",
        "com.apple.Terminal",
        "com.apple.TextEdit",
        "com.apple.VoiceOverUtility",
        "com.apple.X11redirect",
        "com.apple",
        "net.java.openjdk",
        "org.cups",
    };
    return identifiers;
}

// The languages of most applications, the most common first.
QStringList commonLanguages() {
    QStringList languages;
    for (const char* identifier : {"en",    "fr", "de", "zh-Hans", "zh-Hant", "ja", "es", "it", "nl", "ko", "pt",
                                   "pt-PT", "da", "fi", "nb",      "sv",      "ru", "pl", "tr", "ar", "th", "cs",
                                   "hu",    "ca", "hr", "el",      "he",      "ro", "sk", "uk", "id", "ms", "vi"}) {
        languages.append(QString::fromLatin1(identifier));
    }
    return languages;
}

void appendNew(QStringList& languages, const QStringList& more) {
    for (const QString& language : more) {
        if (!languages.contains(language)) {
            languages.append(language);
        }
    }
}

}  // namespace

const LanguagesManager& LanguagesManager::sharedManager() {
    using platform::MacOSVersion;
    // On 10.9 only the languages that the user uses are offered.
    static const LanguagesManager manager({platform::LocaleIdentifiers::preferredLanguages(),
                                           platform::currentInputSources(),
                                           MacOSVersion::is_10_10_orHigher() || !MacOSVersion::is_10_9_orHigher()});
    return manager;
}

QStringList LanguagesManager::preferredLanguages() const {
    const auto& languages = user_.preferredLanguages;
    const auto english = languages.indexOf(QLatin1String("en"));
    return english < 0 ? languages : languages.mid(0, english + 1);
}

QStringList LanguagesManager::popularLanguages() const {
    QStringList languages = user_.preferredLanguages;
    if (user_.offersCommonLanguages) {
        appendNew(languages, commonLanguages());
    }
    appendNew(languages, user_.currentInputSources);
    return languages;
}

QSet<QString> LanguagesManager::safeUserLanguages() const {
    QSet<QString> languages = {QStringLiteral("en"), QStringLiteral("english"), QStringLiteral("base"),
                               QStringLiteral("en_us"), QStringLiteral("en_gb")};
    for (const QString& language : preferredLanguages() + user_.currentInputSources) {
        languages.insert(language.toLower());
    }
    return languages;
}

bool LanguagesManager::isPossibleToRemoveLangsInBundleWithIdentifier(const std::optional<std::string>& identifier) {
    return !identifier || !identifier->starts_with(systemPrefix) ||
           !generateAppleSystemBundleIdentifiers().contains(*identifier);
}

}  // namespace brimvault::langres
