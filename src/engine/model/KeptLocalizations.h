#pragma once

#include <QStringList>
#include <functional>
#include <memory>

#include "engine/ItemArrays.h"
#include "engine/model/LocalizationItem.h"

namespace brimvault::engine {

/// Calls for every localization of one folder that a clean may remove. Those in a language to keep stay. Where none is
/// in such a language, one stays all the same: the regional variant of a language to keep, in the order of these, else
/// the one found last.
void forEachNotKept(const LocalizationArray& folder, const QStringList& needed,
                    const std::function<void(const std::shared_ptr<LocalizationItem>&)>& call);

}  // namespace brimvault::engine
