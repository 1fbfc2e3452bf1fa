#pragma once

#include <QLabel>
#include <QWidget>

#include "ui/controls/IconButton.h"
#include "ui/controls/PlashkaView.h"
#include "ui/controls/SelectAllButton.h"
#include "ui/controls/WhiteTitleButton.h"
#include "ui/list/MovedLine.h"

class QHBoxLayout;
class QVBoxLayout;

namespace brimvault::ui {

/// The right side of the window once a scan was started: the title of the section, its list, the bar below. Main
/// thread.
class ListPanel final : public QWidget {
    Q_OBJECT

public:
    explicit ListPanel(QWidget* parent = nullptr);

    /// Adds a list to the container that all lists share, hidden.
    void addList(QWidget* list);
    /// Puts the languages drawer beside the lists, and its button into the title bar.
    void adoptDrawer(QWidget* drawer, QAbstractButton* pbtnLangs);
    void setTitle(const QString& title, const QString& count);
    /// What the last clean has freed: beside the title, in the place of the folders, and its description for assistive
    /// clients. Empty for nothing.
    void setFreed(const QString& freed);
    /// Where the section looks: the unusual folders beside the title, all of them as a tooltip.
    void setPlaces(const QString& unusual, const QString& all);
    /// The text that is shown instead of an empty list.
    void setNote(const QString& note);
    /// Shows the list or the note instead of it; the focus goes with the change.
    void setListShown(QWidget* list, bool shown);

    [[nodiscard]] MovedLine* movedLine() const { return moved_; }
    [[nodiscard]] WhiteTitleButton* pbtnClean() const { return pbtnClean_; }
    [[nodiscard]] ProgressIndicator* pProgressClean() const { return pProgressClean_; }
    /// "Show Information" and "Show in File Manager", for the selected item.
    [[nodiscard]] IconButton* pbtnInf() const { return pbtnInf_; }
    [[nodiscard]] IconButton* pbtnFinder() const { return pbtnFinder_; }
    [[nodiscard]] SelectAllButton* pbtnSelectAll() const { return pbtnSelectAll_; }
    [[nodiscard]] PlashkaView* plashka() const { return plashka_; }

private:
    QWidget* makeTitleBar();
    QWidget* makeBottomBar();

    QLabel* title_;
    QLabel* count_;
    QLabel* freed_;
    MovedLine* moved_;
    QLabel* places_;
    QHBoxLayout* buttons_;
    IconButton* pbtnInf_;
    IconButton* pbtnFinder_;
    QHBoxLayout* middle_;  ///< the lists, and the drawer beside them
    QWidget* pDestView_;
    QVBoxLayout* lists_;
    QLabel* note_;
    SelectAllButton* pbtnSelectAll_;
    PlashkaView* plashka_;
    WhiteTitleButton* pbtnClean_;
    ProgressIndicator* pProgressClean_;
};

}  // namespace brimvault::ui
