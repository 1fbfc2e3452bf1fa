#pragma once

#include <QString>

#include "engine/notification/Notification.h"

namespace brimvault::ui {

/// What people are told of where a section looks for its files. Main thread.
namespace placeTexts {

/// All of its folders, a line for each: where it leads, and why it is not looked into where that is so.
[[nodiscard]] QString all(const engine::Places& places);
/// Only what is not as one would expect: where links have led, and what is not looked into; empty where all is usual.
[[nodiscard]] QString unusual(const engine::Places& places);
/// What is not looked into, and why; empty where all is.
[[nodiscard]] QString refused(const engine::Places& places);

}  // namespace placeTexts

}  // namespace brimvault::ui
