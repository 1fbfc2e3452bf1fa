#pragma once

#include <QLabel>
#include <QWidget>

#include "ui/controls/IconButton.h"
#include "ui/controls/PlashkaView.h"
#include "ui/controls/SelectAllButton.h"
#include "ui/controls/WhiteTitleButton.h"

class QHBoxLayout;
class QVBoxLayout;

namespace brimvault::ui {

/// What stands on the right from the first scan on: the title of the section, its list, and the bar below. Main thread.
class ListPanel final : public QWidget {
    Q_OBJECT

public:
    explicit ListPanel(QWidget* parent = nullptr);

    /// Adds a list to the container that all lists share; it is hidden until it is shown by its owner.
    void addList(QWidget* list);
    /// Takes the drawer of the languages, which shrinks the lists, and its button.
    void adoptDrawer(QWidget* drawer, QAbstractButton* pbtnLangs);
    void setTitle(const QString& title, const QString& count);
    /// Where the section's files lie: what there is to say at once, on one line, and all of it as a tooltip.
    void setPlaces(const QString& unusual, const QString& all);
    /// What is said in the place of a list.
    void setNote(const QString& note);
    /// Shows the list, or the note in its place, which keeps the keyboard's focus for it meanwhile.
    void setListShown(QWidget* list, bool shown);

    [[nodiscard]] WhiteTitleButton* pbtnClean() const { return pbtnClean_; }
    [[nodiscard]] ProgressIndicator* pProgressClean() const { return pProgressClean_; }
    /// What is known of the selected item, and where it lies.
    [[nodiscard]] IconButton* pbtnInf() const { return pbtnInf_; }
    [[nodiscard]] IconButton* pbtnFinder() const { return pbtnFinder_; }
    [[nodiscard]] SelectAllButton* pbtnSelectAll() const { return pbtnSelectAll_; }
    [[nodiscard]] PlashkaView* plashka() const { return plashka_; }

private:
    QWidget* makeTitleBar();
    QWidget* makeBottomBar();

    QLabel* title_;
    QLabel* count_;
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
