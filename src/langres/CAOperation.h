#pragma once

#include <memory>
#include <mutex>
#include <optional>

#include "engine/model/AppItemData.h"
#include "engine/notification/Notification.h"
#include "engine/operations/FCleanProps.h"
#include "engine/operations/SectionOperation.h"
#include "engine/removal/ItemRemoval.h"
#include "engine/removal/PrivilegedRemover.h"

namespace brimvault::langres {

/// The clean of the Language Resources section: of every application that is ticked, the localizations that none of the
/// languages to keep asks for. Without languages to keep nothing is removed, and nothing posted.
///
/// Of the localizations of a folder one always stays. The records tell which; where it is gone meanwhile, the last one
/// that is there stays in its place, and counts as not removed.
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
        engine::NotCleanedApplications notCleaned;  ///< by language, in however many folders it failed
    };

    void clean(const engine::AppItemData& application, const QStringList& needed);
    void postResults();
    [[nodiscard]] bool isGoneAfterRemoval(const engine::LocalizationItem& localization);

    const engine::ApplicationArray pCArray_;
    const std::shared_ptr<engine::FCleanProps> pclprops_;
    engine::ItemRemover remover_;
    std::mutex resultsMutex_;         ///< protects what follows: who gives the operation up tells of it
    std::optional<Results> results_;  ///< none without languages to keep
};

}  // namespace brimvault::langres
