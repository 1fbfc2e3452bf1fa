#include "ui/report/NotCleanedSheet.h"

#include <QPainter>
#include <QPainterPath>
#include <QStackedLayout>
#include <QVBoxLayout>

#include "ui/controls/WhiteTitleButton.h"
#include "ui/look/Look.h"
#include "ui/look/TextLabel.h"
#include "ui/report/NotCleanedRowDelegate.h"

namespace brimvault::ui {

namespace {

constexpr QSize panelSize(560, 352);
constexpr int sideMargin = 20;
constexpr int topMargin = 18;
constexpr int bottomMargin = 14;  // includes the shadow of the button
constexpr int headingGap = 3;
constexpr int listGap = 10;
constexpr int buttonGap = 12;
constexpr int buttonWidth = 114;
constexpr int cornerRadius = 8;
constexpr int shadowWidth = 2;
constexpr int minListHeight = 60;
constexpr qreal headingSize = 15;
constexpr qreal noteSize = 12.5;
constexpr qreal buttonTextSize = 13;

// An overlay that paints over the corners of the list, to round them, and draws a line around it.
class RoundedFrame final : public QWidget {
public:
    RoundedFrame() { setAttribute(Qt::WA_TransparentForMouseEvents); }

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        QPainterPath corners;
        corners.addRect(rect());
        const QRectF line = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
        corners.addRoundedRect(line, cornerRadius, cornerRadius);
        painter.fillPath(corners, QColor(look::row));
        painter.setPen(QColor(look::separator));
        painter.drawRoundedRect(line, cornerRadius, cornerRadius);
    }
};

QWidget* framed(QWidget* content) {
    auto* frame = new QWidget;
    auto* layers = new QStackedLayout(frame);
    layers->setStackingMode(QStackedLayout::StackAll);
    layers->addWidget(content);
    layers->addWidget(new RoundedFrame);
    layers->setCurrentIndex(1);
    frame->setMinimumHeight(minListHeight);
    return frame;
}

}  // namespace

NotCleanedSheet::NotCleanedSheet(QAbstractItemModel* rows, QWidget* window)
    : Sheet(panelSize, window),
      note_(makeParagraph({}, look::font(noteSize), look::textSecondary)),
      pNotCleanedTView_(new NotCleanedListView) {
    auto* heading =
        makeParagraph(tr("Some items were not removed"), look::font(headingSize, QFont::Bold), look::textPrimary);
    setAccessibleName(heading->text());
    pNotCleanedTView_->setItemDelegate(new NotCleanedRowDelegate(pNotCleanedTView_));
    pNotCleanedTView_->setModel(rows);
    auto* layout = new QVBoxLayout(panel());
    constexpr int margin = sideMargin - shadowWidth;  // the face of the button stands below the edge of the list
    layout->setContentsMargins(margin, look::scaled(topMargin), margin, bottomMargin);
    layout->setSpacing(buttonGap);
    auto* report = new QVBoxLayout;
    report->setContentsMargins(shadowWidth, 0, shadowWidth, 0);
    report->setSpacing(0);
    report->addWidget(heading);
    report->addSpacing(headingGap);
    report->addWidget(note_);
    report->addSpacing(listGap);
    report->addWidget(framed(pNotCleanedTView_), 1);
    layout->addLayout(report, 1);
    auto* close = WhiteTitleButton::makeClose(buttonTextSize);
    close->setSmall(buttonWidth);
    layout->addWidget(close, 0, Qt::AlignTrailing);
    connect(close, &QAbstractButton::clicked, this, &Sheet::closeRequested);
}

void NotCleanedSheet::setNote(const QString& note) {
    note_->setText(note);
    note_->setVisible(!note.isEmpty());
    setAccessibleDescription(note);
}

}  // namespace brimvault::ui
