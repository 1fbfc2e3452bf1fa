#pragma once

#include <QtGlobal>

#include "engine/Section.h"

namespace brimvault::ui {

/// What an item list tells and asks of the section list. Main thread.
class CheckListener {
public:
    virtual ~CheckListener() = default;

    /// An item of the section was ticked or unticked. Ticking one ticks its section; unticking never unticks it.
    virtual void setSectionChecked(engine::Section section, bool checked) = 0;
    /// Bytes selected in all sections that are ticked.
    [[nodiscard]] virtual quint64 getSize2CleanALLSel() const = 0;
};

}  // namespace brimvault::ui
