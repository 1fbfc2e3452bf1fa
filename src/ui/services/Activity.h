#pragma once

namespace brimvault::ui {

/// What the window is doing: one thing at a time. `ui/window/WindowControls` says what the user may do meanwhile. Work
/// that still ends when the user closes the window keeps its value until then.
enum class Activity {
    idle,           ///< scans that were stopped may still return: their sections know
    asking,         ///< a question to the user is open; nothing begins before it is answered
    awaitingScan,   ///< the user asked for a scan; it begins once the one that was stopped has returned
    scanning,       ///< until its end, or until it is stopped
    cleaning,       ///< until all of it has returned
    stoppingClean,  ///< the user stopped the clean, which has not returned yet
    removing,       ///< a single item
    closing,        ///< the user closed the window; it goes once the scans that were stopped have returned
    closed,         ///< the window has gone; nothing follows
};

[[nodiscard]] constexpr bool isScan(Activity activity) {
    return activity == Activity::awaitingScan || activity == Activity::scanning;
}

[[nodiscard]] constexpr bool isClean(Activity activity) {
    return activity == Activity::cleaning || activity == Activity::stoppingClean;
}

/// What runs, as the window shows it: `scanning`, `cleaning` or `removing`, else `idle`.
[[nodiscard]] constexpr Activity workOf(Activity activity) {
    return isScan(activity)                 ? Activity::scanning
           : isClean(activity)              ? Activity::cleaning
           : activity == Activity::removing ? Activity::removing
                                            : Activity::idle;
}

}  // namespace brimvault::ui
