#pragma once

#include <QList>
#include <memory>

namespace brimvault::engine {

class AppItemData;
class FFItem;
struct LocalizationItem;

// Arrays of items share their elements until one is changed: handing one to another thread costs nothing.

using ItemArray = QList<std::shared_ptr<FFItem>>;
using ApplicationArray = QList<std::shared_ptr<AppItemData>>;
using LocalizationArray = QList<std::shared_ptr<LocalizationItem>>;

}  // namespace brimvault::engine
