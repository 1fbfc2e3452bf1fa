#pragma once

#include <QCoreApplication>
#include <QString>

#include "engine/Section.h"

namespace brimvault::ui {

/// What a row of the section list says beside the model's own text: that its scan was stopped, or not begun because the
/// one before hangs, and what a clean that emptied it has freed. Until the next scan of the section. Main thread.
class SectionNotes {
    Q_DECLARE_TR_FUNCTIONS(SectionNotes)

public:
    /// A scan of the section begins.
    void scanBegun(engine::Section section) { notes_[section] = {}; }
    /// It was stopped; what it found by then, and what it still brings while it returns, is told to `found`.
    void scanStopped(engine::Section section) { notes_[section].scan = Scan::stopped; }
    /// It was left out, since an earlier one hangs.
    void scanSkipped(engine::Section section) { notes_[section].scan = Scan::skipped; }
    /// How many items the section has. A clean takes none from what a scan has found.
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
