#include "ui/languages/LanguagesTableView.h"

#include <QHeaderView>

#include "langres/LangListController.h"
#include "ui/languages/LanguageRowDelegate.h"
#include "ui/look/Look.h"

namespace brimvault::ui {

static_assert(static_cast<int>(langres::LangListController::textColumn) == CheckTableView::textColumn);

LanguagesTableView::LanguagesTableView(QWidget* parent) : CheckTableView(parent) {
    setItemDelegate(new LanguageRowDelegate(this));
    setAccessibleName(tr("Languages"));
    horizontalHeader()->hide();
    horizontalHeader()->setMinimumSectionSize(0);
    QPalette ground = palette();
    ground.setColor(QPalette::Base, QColor(look::drawer));
    setPalette(ground);
}

void LanguagesTableView::setModel(QAbstractItemModel* model) {
    CheckTableView::setModel(model);
    fixWidth(checkColumn, look::scaled(LanguageRowDelegate::checkColumnWidth));
    fixWidth(iconColumn, look::scaled(LanguageRowDelegate::iconColumnWidth));
}

}  // namespace brimvault::ui
