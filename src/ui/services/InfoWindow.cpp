#include "ui/services/InfoWindow.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QLocale>
#include <QVBoxLayout>

#include "engine/model/FileSize.h"
#include "engine/model/TrashTexts.h"
#include "ui/controls/WhiteTitleButton.h"
#include "ui/look/ImageLoad.h"
#include "ui/look/Look.h"
#include "ui/look/TextLabel.h"
#include "ui/table/RowPicture.h"

namespace brimvault::ui {

namespace {

constexpr int margin = 20;
constexpr int iconSize = 40;
constexpr int minWidth = 420;
constexpr qreal titleSize = 15;
constexpr qreal textSize = 12.5;

QString kindText(const engine::FileFacts& facts) {
    switch (facts.kind) {
        case files::NodeKind::directory:
            return InfoWindow::tr("Folder");
        case files::NodeKind::link:
            return InfoWindow::tr("Link to %1").arg(facts.linkTarget);
        case files::NodeKind::regular:
            return facts.type;
        case files::NodeKind::other:
            break;
    }
    return InfoWindow::tr("Special file");
}

// A screen reader reads the value together with its name.
void setValue(QLabel* label, const QString& name, const QString& value) {
    label->setText(value);
    label->setAccessibleName(QStringLiteral("%1: %2").arg(name, value));
}

}  // namespace

InfoWindow::InfoWindow(const std::filesystem::path& path, const engine::FileFacts& facts, const QString& note,
                       QWidget* parent)
    : QDialog(parent), path_(path), rows_(new QFormLayout) {
    setAttribute(Qt::WA_DeleteOnClose);
    setWindowTitle(tr("Information: %1").arg(facts.name));
    setMinimumWidth(look::scaled(minWidth));

    addFacts(facts);
    if (!note.isEmpty()) {
        addRow(tr("Note"), note);
    }
    auto* close = WhiteTitleButton::makeClose(textSize);
    close->setDefault(true);
    connect(close, &QAbstractButton::clicked, this, &QDialog::close);
    auto* content = new QVBoxLayout(this);
    content->setContentsMargins(margin, margin, margin, margin);
    content->setSpacing(margin * 3 / 4);
    content->addLayout(makeTitle(facts));
    content->addLayout(rows_);
    content->addStretch(1);
    content->addWidget(close, 0, Qt::AlignTrailing);
    close->setFocus();
    resize(minimumWidth(), content->totalHeightForWidth(minimumWidth()));
}

QLayout* InfoWindow::makeTitle(const engine::FileFacts& facts) const {
    auto* icon = new QLabel;
    icon->setPixmap(
        ImageLoad::LoadPNGImage(filePicture(facts.kind), devicePixelRatioF())
            .scaled(QSize(iconSize, iconSize) * devicePixelRatioF(), Qt::KeepAspectRatio, Qt::SmoothTransformation));
    auto* title = new QHBoxLayout;
    title->setSpacing(margin / 2);
    title->addWidget(icon, 0, Qt::AlignTop);
    title->addWidget(makeNameLabel(facts.name, look::font(titleSize, QFont::DemiBold), look::textPrimary), 1,
                     Qt::AlignVCenter);
    return title;
}

void InfoWindow::addFacts(const engine::FileFacts& facts) {
    rows_->setLabelAlignment(Qt::AlignTrailing | Qt::AlignTop);
    rows_->setHorizontalSpacing(margin / 2 + 2);
    rows_->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
    addRow(tr("Kind"), kindText(facts));
    size_ = addRow(tr("Size"), tr("Calculating..."));
    addRow(tr("Where"), facts.folder);
    if (facts.trashed) {
        addTrashed(*facts.trashed);
    }
    if (facts.created) {
        addDate(tr("Created"), *facts.created);
    }
    addDate(tr("Modified"), facts.modified);
    addDate(tr("Last opened"), facts.accessed);
    addRow(tr("Owner"), tr("%1, group %2").arg(facts.owner, facts.group));
    addRow(tr("Permissions"),
           QStringLiteral("%1 (%2)").arg(facts.permissionText()).arg(facts.permissions, 4, 8, QLatin1Char('0')));
}

void InfoWindow::addTrashed(const platform::TrashRecord& record) {
    addRow(tr("Original place"), engine::trashTexts::origin(record));
    if (const QString date = engine::trashTexts::deleted(record); !date.isEmpty()) {
        addRow(tr("Deleted"), date);
    }
}

InfoWindow::~InfoWindow() { closed_.request_stop(); }

void InfoWindow::setSize(quint64 bytes) {
    setValue(size_, tr("Size"),
             tr("%1 (%2 bytes)").arg(engine::FileSize::formatMemoryStringDot1(bytes), QLocale().toString(bytes)));
}

QLabel* InfoWindow::addRow(const QString& name, const QString& value) {
    auto* text = makeNameLabel({}, look::font(textSize), look::textPrimary);
    text->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    setValue(text, name, value);
    rows_->addRow(makeNameLabel(name, look::font(textSize), look::textSecondary), text);
    return text;
}

void InfoWindow::addDate(const QString& name, const QDateTime& date) {
    addRow(name, QLocale().toString(date, QLocale::LongFormat));
}

}  // namespace brimvault::ui
