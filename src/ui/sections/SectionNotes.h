#pragma once

#include <QCoreApplication>
#include <QString>

#include "engine/Section.h"

namespace brimvault::ui {

/// The line below a section's subtitle: its scan was stopped, or was skipped because the one before hangs, or a clean
/// has emptied the section. Kept until the next scan of the section. Main thread.
class SectionNotes {
    Q_DECLARE_TR_FUNCTIONS(SectionNotes)

public:
    /// A scan of the section begins.
    void scanBegun(engine::Section section) { notes_[section] = {}; }
    /// It was stopped. `found` is called with what it found by then, and with what it still brings while it returns.
    void scanStopped(engine::Section section) { notes_[section].scan = Scan::stopped; }
    /// It was skipped, since the one before hangs.
    void scanSkipped(engine::Section section) { notes_[section].scan = Scan::skipped; }
    /// How many items the section has. The largest number counts: a clean takes nothing from what a scan has found.
    void found(engine::Section section, qsizetype items);
    /// A clean has freed so many bytes, and left nothing.
    void emptied(engine::Section section, quint64 bytes) { notes_[section].cleaned = bytes; }

    /// Empty where there is nothing to say.
    [[nodiscard]] QString text(engine::Section section) const;

private:
    enum class Scan { whole, stopped, skipped };
    struct Note {
        Scan scan = Scan::whole;
        qsizetype found = 0;
        quint64 cleaned = 0;
    };
    [[nodiscard]] static QString stoppedText(engine::Section section, qsizetype found);

    engine::PerSection<Note> notes_;
};

}  // namespace brimvault::ui
