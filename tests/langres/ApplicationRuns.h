#pragma once

#include <map>
#include <string>

#include "langres/SAOperation.h"
#include "langres/removal/CAOperation.h"
#include "support/FileSections.h"
#include "trial/SampleHome.h"

namespace brimvault::tests {

using namespace trial;

inline const engine::SectionVocabulary resources = engine::vocabulary(engine::Section::languageResources);

/// What the finished notification of a scan held.
inline engine::ApplicationArray listedIn(const HeardNotifications& finished) {
    return engine::getArrayPropfromNotification<engine::ApplicationArray>(finished.last(resources.scanFinished),
                                                                          resources.arrayKey)
        .value_or(engine::ApplicationArray());
}

/// Scans and answers what the finished notification held, which is to come exactly once; `meanwhile` is called on the
/// scan's thread at every progress.
inline engine::ApplicationArray scanApplications(
    const langres::SAOperation::Folder& ofSystem, const langres::SAOperation::Folder& ofUser = std::nullopt,
    const std::function<void(langres::SAOperation&, const engine::Notification&)>& meanwhile = [](auto&, auto&) {}) {
    const HeardNotifications finished = {resources.scanFinished};
    const auto operation = std::make_shared<langres::SAOperation>(ofSystem, ofUser);
    const auto observation = engine::NotificationCenter::defaultCenter().addObserver(
        resources.scanProgress, [&](const auto& heard) { meanwhile(*operation, heard); });
    runToEnd(operation);
    EXPECT_EQ(finished.names().size(), 1);
    return listedIn(finished);
}

inline std::shared_ptr<langres::CAOperation> makeClean(
    const engine::ApplicationArray& applications, const QStringList& needed,
    engine::PrivilegedRemover& remover = engine::PrivilegedRemover::none()) {
    const auto properties = std::make_shared<engine::FCleanProps>();
    properties->setMpstrArrayNeededLangs(needed);
    return std::make_shared<langres::CAOperation>(applications, properties, remover);
}

/// What a clean posted, in plain values; the folders that are gone, in the order in which they went.
struct CleanResult {
    int posts = 0;
    std::map<std::filesystem::path, std::vector<std::filesystem::path>> gone;
    std::map<std::string, int> notCleaned;
};

inline CleanResult runClean(const std::shared_ptr<langres::CAOperation>& operation) {
    const HeardNotifications heard = {resources.cleanFinished};
    runToEnd(operation);
    CleanResult result;
    for (const auto& post : heard.all()) {
        ++result.posts;
        const auto cleaned = engine::getDictionaryPropfromNotification<engine::CleanedApplications>(
            post, engine::key::cleanedApplications);
        const auto failed =
            engine::getDictionaryPropfromNotification<engine::NotCleanedApplications>(post, resources.notCleanedKey);
        EXPECT_TRUE(cleaned && failed && post.userInfo.size() == 2);
        for (const auto& [application, items] : cleaned.value_or(engine::CleanedApplications())) {
            for (const auto& item : items) {
                result.gone[application].push_back(item->plocPath);
            }
        }
        for (const auto& [name, count] : failed.value_or(engine::NotCleanedApplications()).toStdMap()) {
            result.notCleaned[name.toStdString()] = count;
        }
    }
    return result;
}

/// Localizations of these names in a folder, each with one file of 5 bytes.
inline void makeLocalizations(const std::filesystem::path& folder, std::initializer_list<const char*> names) {
    for (const char* name : names) {
        writeFile(folder / name / "Localizable.strings", "12345");
    }
}

}  // namespace brimvault::tests
