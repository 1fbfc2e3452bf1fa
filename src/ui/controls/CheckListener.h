#pragma once

#include "engine/Section.h"

namespace brimvault::ui {

/// What an item list tells the section list. Main thread.
class CheckListener {
public:
    virtual ~CheckListener() = default;

    /// An item of the section was ticked or unticked. Ticking one ticks its section; unticking never unticks it.
    virtual void setSectionChecked(engine::Section section, bool checked) = 0;
};

}  // namespace brimvault::ui
