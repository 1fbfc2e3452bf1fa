#pragma once

#include <memory>
#include <mutex>
#include <optional>

#include "engine/model/AppItemData.h"
#include "engine/notification/Notification.h"
#include "engine/operations/SectionOperation.h"
#include "engine/removal/FCleanProps.h"
#include "engine/removal/ItemRemoval.h"
#include "engine/removal/PrivilegedRemover.h"

namespace brimvault::langres {

/// The clean of the Language Resources section: removes from every ticked application the localizations of languages
/// that are not kept. Without languages to keep it removes and posts nothing.
///
/// One localization of each folder always stays; AppItemData decides which. If that one has vanished since the scan,
/// the last one on disk stays instead, and counts as not removed.
class CAOperation final : public engine::SectionOperation {
public:
    /// The remover outlives it.
    CAOperation(engine::ApplicationArray items, std::shared_ptr<engine::FCleanProps> pclprops,
                engine::PrivilegedRemover& remover = engine::PrivilegedRemover::none())
        : SectionOperation(engine::Section::languageResources),
          pCArray_(std::move(items)),
          pclprops_(std::move(pclprops)),
          remover_(remover) {}

protected:
    void main() override;
    void failed() override { postResults(); }
    void givenUp() override { postResults(); }

private:
    struct Results {
        engine::CleanedApplications cleaned;
        engine::NotCleanedApplications notCleaned;  ///< languages, each counted once however many of its folders failed
    };

    void clean(const engine::AppItemData& application, const QStringList& needed);
    void postResults();
    /// Reports it too.
    [[nodiscard]] bool isGoneAfterRemoval(const engine::LocalizationItem& localization);

    const engine::ApplicationArray pCArray_;
    const std::shared_ptr<engine::FCleanProps> pclprops_;
    engine::ItemRemover remover_;
    std::mutex resultsMutex_;         ///< protects what follows, which is posted by the thread that gives up
    std::optional<Results> results_;  ///< none without languages to keep
};

}  // namespace brimvault::langres
