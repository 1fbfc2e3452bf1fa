#pragma once

#include "ui/table/CheckTableView.h"

namespace brimvault::ui {

/// The table of the languages that can be kept: check box, flag, name. Main thread.
class LanguagesTableView final : public CheckTableView {
    Q_OBJECT

public:
    explicit LanguagesTableView(QWidget* parent = nullptr);

    void setModel(QAbstractItemModel* model) override;
};

}  // namespace brimvault::ui
