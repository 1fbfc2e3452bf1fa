#pragma once

#include <QAbstractButton>
#include <QApplication>
#include <QCheckBox>
#include <QHeaderView>
#include <QTest>
#include <QTimer>
#include <algorithm>
#include <functional>

#include "ui/controls/AlertWindow.h"
#include "ui/window/FAppDelegate.h"

namespace brimvault::trial {

/// Drives the real window as a user does: with the mouse and the keyboard, waiting for what it shows. Main thread.
class Guide {
public:
    explicit Guide(ui::FAppDelegate& application) : application_(application) {}

    /// Lets the program run until the condition holds; false when it does not within half a minute.
    static bool waitFor(const std::function<bool()>& condition) {
        constexpr int patience = 30000;
        return QTest::qWaitFor(condition, patience);
    }

    static void click(QWidget* widget) { QTest::mouseClick(widget, Qt::LeftButton); }

    /// The button in the widget that has that name for an assistive client; null for none.
    static QAbstractButton* button(const QWidget* parent, const QString& name) {
        const auto buttons = parent->findChildren<QAbstractButton*>();
        const auto found = std::find_if(buttons.begin(), buttons.end(),
                                        [&](const auto* button) { return button->accessibleName() == name; });
        return found == buttons.end() ? nullptr : *found;
    }

    /// Presses the button and waits until the scan that it starts has ended.
    bool scan(QAbstractButton* button) {
        click(button);
        return waitFor([this] { return !application_.pbScanning() && !application_.isScanReturning(); });
    }

    /// Presses "Clean", confirms the question, and waits until the clean has ended.
    bool clean(const std::function<void(ui::AlertWindow&)>& before = {}) {
        confirmNextQuestion(before);
        click(application_.window()->lists()->pbtnClean());
        return waitFor([this] { return !application_.pbCleanning(); });
    }

    /// Confirms the next question as soon as it is there.
    static void confirmNextQuestion(const std::function<void(ui::AlertWindow&)>& before = {}) {
        constexpr int pause = 20;
        QTimer::singleShot(pause, qApp, [before] {
            auto* alert = qobject_cast<ui::AlertWindow*>(QApplication::activeModalWidget());
            if (alert == nullptr) {
                confirmNextQuestion(before);
                return;
            }
            if (before) {
                before(*alert);
            }
            click(alert->firstButton());
        });
    }

    [[nodiscard]] ui::TTableView* list() const {
        for (auto* table : application_.window()->findChildren<ui::TTableView*>()) {
            if (table->isVisible()) {
                return table;
            }
        }
        return nullptr;
    }

    /// A click on a row of the section list.
    void clickSection(int row) const {
        auto* sections = application_.window()->sidebar()->sections();
        QTest::mouseClick(sections->viewport(), Qt::LeftButton, {},
                          sections->visualRect(sections->model()->index(row, 0)).center());
    }

    void clickSectionCheck(int row) const {
        auto* sections = application_.window()->sidebar()->sections();
        QTest::mouseClick(sections->viewport(), Qt::LeftButton, {},
                          sections->checkRect(sections->model()->index(row, 0)).center());
    }

    /// The row of the list on show with that name; -1 for none.
    [[nodiscard]] int row(const QString& name) const {
        const auto* model = list()->model();
        for (int row = 0; row < model->rowCount(); ++row) {
            if (model->index(row, ui::ItemListModel::nameColumn).data().toString() == name) {
                return row;
            }
        }
        return -1;
    }

    /// A click in a cell of the list on show.
    void clickCell(int row, int column) const {
        const QRect place = list()->visualRect(list()->model()->index(row, column));
        QTest::mouseClick(list()->viewport(), Qt::LeftButton, {}, place.center());
    }

    void clickHeader(int column) const {
        auto* header = list()->horizontalHeader();
        const QPoint place(header->sectionViewportPosition(column) + header->sectionSize(column) / 2,
                           header->height() / 2);
        QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, place);
    }

private:
    ui::FAppDelegate& application_;
};

}  // namespace brimvault::trial
