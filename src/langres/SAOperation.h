#pragma once

#include <memory>
#include <optional>
#include <vector>

#include "engine/model/AppItemData.h"
#include "engine/operations/SBaseOperation.h"

namespace brimvault::langres {

/// The scan of the Language Resources section: every package below the Applications folders that has at least two
/// localizations, with their sizes. Which of them may be removed AppItemData decides later, by the languages to keep.
class SAOperation final : public engine::SBaseOperation {
public:
    using Folder = std::optional<std::filesystem::path>;

    SAOperation();
    /// Scans these folders; none for one that the system does not have.
    SAOperation(Folder applicationFolder, Folder userApplicationFolder);

    [[nodiscard]] Folder getOperationRootFolderURL() const override { return applicationFolder_; }

protected:
    void main() override;
    void failed() override { sendOperationCompleted(); }

private:
    struct FoundPackage {
        std::filesystem::path path;
        std::shared_ptr<const platform::RootPlace> root;  ///< the folder of applications
    };

    void initApplicationsCount();
    void countPackagesBelow(const platform::SectionRoot& root);
    void collectAppsInfo();
    /// Null for a package that is left alone. Returns early with partial results once the operation is cancelled.
    [[nodiscard]] std::shared_ptr<engine::AppItemData> readPackage(const FoundPackage& found) const;
    [[nodiscard]] static bool isToBeScanned(const std::filesystem::path& path);
    void collectLocalizations(engine::AppItemData& application,
                              const std::shared_ptr<const platform::RootPlace>& root) const;
    void tryUpdateProgress(const engine::ApplicationArray& delta, qint64 nprogr) const;
    void sendOperationCompleted() const;

    const Folder applicationFolder_;
    const Folder userApplicationFolder_;
    std::vector<FoundPackage> pAppsPaths_;
    engine::ApplicationArray pAppsArray_;
};

}  // namespace brimvault::langres
