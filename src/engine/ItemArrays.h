#pragma once

#include <QList>
#include <memory>

namespace brimvault::engine {

class AppItemData;
class FFItem;
struct LocalizationItem;

// QList is copy-on-write: handing an array to another thread copies no elements.

using ItemArray = QList<std::shared_ptr<FFItem>>;
using ApplicationArray = QList<std::shared_ptr<AppItemData>>;
using LocalizationArray = QList<std::shared_ptr<LocalizationItem>>;

}  // namespace brimvault::engine
