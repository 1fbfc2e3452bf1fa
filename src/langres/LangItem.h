#pragma once

#include <QString>

#include "langres/KeptLanguages.h"
#include "platform/UserDefaults.h"

namespace brimvault::langres {

/// One language that can be kept, with the user's choice. Main thread.
class LangItem {
public:
    /// With the stored choice, else `bneed`.
    static LangItem initWithName(const QString& identifier, bool bneed, platform::UserDefaults& defaults) {
        LangItem item(identifier, bneed, defaults);
        item.initFromDefaults();
        return item;
    }

    [[nodiscard]] const QString& pName() const { return pName_; }
    [[nodiscard]] bool bNeeded() const { return bNeeded_; }
    /// For this run alone.
    void setBNeeded(bool needed) { bNeeded_ = needed; }
    /// For this run and the next ones; stored at once.
    void setNEED(bool needed) {
        bNeeded_ = needed;
        saveToDefaults();
    }

    /// The key under which the choice is stored.
    [[nodiscard]] QString keyString() const { return defaultsKeyOf(pName_); }
    /// Shown if the language has no name.
    [[nodiscard]] QString description() const { return QStringLiteral("<LangItem: %1>").arg(pName_); }

private:
    LangItem(QString identifier, bool bneed, platform::UserDefaults& defaults)
        : pName_(std::move(identifier)), bNeeded_(bneed), defaults_(&defaults) {}
    bool initFromDefaults() {
        const auto stored = defaults_->boolean(keyString());
        bNeeded_ = stored.value_or(bNeeded_);
        return stored.has_value();
    }
    void saveToDefaults() const { defaults_->setBoolean(keyString(), bNeeded_); }

    QString pName_;
    bool bNeeded_;
    platform::UserDefaults* defaults_;
};

}  // namespace brimvault::langres
