#include "ui/list/ListPanel.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QVBoxLayout>

#include "ui/look/Look.h"
#include "ui/look/PlainToolTip.h"
#include "ui/look/TextLabel.h"

namespace brimvault::ui {

namespace {

constexpr int sideMargin = 18;
constexpr int countGap = 16;
constexpr int buttonGap = 8;
constexpr qreal titleSize = 18;
constexpr qreal countSize = 12;
constexpr qreal noteSize = 14;
constexpr int cleanWidth = 160;

// A bar with a gradient and a line along one edge.
class Bar final : public QWidget {
public:
    enum class Line { above, below };

    Bar(QRgb top, QRgb bottom, Line line) : top_(top), bottom_(bottom), line_(line) {}

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        QLinearGradient ground(rect().topLeft(), rect().bottomLeft());
        ground.setColorAt(0, QColor(top_));
        ground.setColorAt(1, QColor(bottom_));
        painter.fillRect(rect(), ground);
        const int edge = line_ == Line::above ? 0 : height() - 1;
        painter.fillRect(QRect(0, edge, width(), 1), QColor(line_ == Line::above ? look::separator : look::headerLine));
    }

private:
    QRgb top_;
    QRgb bottom_;
    Line line_;
};

}  // namespace

ListPanel::ListPanel(QWidget* parent)
    : QWidget(parent),
      title_(new ElidedLabel(look::font(titleSize, QFont::Bold), look::textPrimary)),
      count_(new ElidedLabel(look::font(countSize), look::textSecondary)),
      freed_(new ElidedLabel(look::font(countSize), look::textSecondary)),
      moved_(new MovedLine),
      places_(new ElidedLabel(look::font(countSize), look::textSecondary)),
      buttons_(new QHBoxLayout),
      pbtnInf_(new IconButton(QLatin1String("btnInf"), tr("Show Information"))),
      pbtnFinder_(new IconButton(QLatin1String("btnFinder"), tr("Show in File Manager"))),
      middle_(new QHBoxLayout),
      pDestView_(new QWidget),
      lists_(new QVBoxLayout(pDestView_)),
      note_(makeNameLabel({}, look::font(noteSize), look::textSecondary)),
      pbtnSelectAll_(new SelectAllButton),
      plashka_(new PlashkaView),
      pbtnClean_(new WhiteTitleButton),
      pProgressClean_(pbtnClean_->addIndicator(tr("Clean progress"))) {
    QPalette white = palette();
    white.setColor(QPalette::Window, QColor(look::row));
    pDestView_->setPalette(white);
    pDestView_->setAutoFillBackground(true);
    lists_->setContentsMargins({});
    lists_->setSpacing(0);
    note_->setAlignment(Qt::AlignCenter);
    lists_->addWidget(note_);

    auto* panel = new QVBoxLayout(this);
    panel->setContentsMargins({});
    panel->setSpacing(0);
    panel->addWidget(makeTitleBar());
    middle_->setSpacing(0);
    middle_->addWidget(pDestView_, 1);
    panel->addLayout(middle_, 1);
    panel->addWidget(makeBottomBar());
}

QWidget* ListPanel::makeTitleBar() {
    auto* bar = new Bar(look::row, look::row, Bar::Line::below);
    bar->setFixedHeight(look::scaled(look::titleBarHeight));
    auto* layout = new QHBoxLayout(bar);
    layout->setContentsMargins(sideMargin, 0, sideMargin, 0);
    layout->setSpacing(countGap);
    layout->addWidget(title_);
    layout->addWidget(count_);
    // Takes the room that the title and the count leave it, and none of theirs.
    freed_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    freed_->setTextFormat(Qt::PlainText);  // names of programs
    freed_->hide();
    layout->addWidget(freed_, 1);
    layout->addWidget(moved_);
    layout->addWidget(places_, 1);
    buttons_->setSpacing(buttonGap);
    buttons_->addWidget(pbtnInf_);
    buttons_->addWidget(pbtnFinder_);
    layout->addLayout(buttons_);
    return bar;
}

QWidget* ListPanel::makeBottomBar() {
    auto* bar = new Bar(look::bottomBarTop, look::bottomBarBottom, Bar::Line::above);
    bar->setFixedHeight(look::scaled(look::bottomBarHeight));
    pbtnClean_->setMinimumWidth(look::scaled(cleanWidth));
    plashka_->setMaximumWidth(look::scaled(520));
    auto* layout = new QHBoxLayout(bar);
    layout->setContentsMargins(sideMargin - 6, 0, sideMargin - 2, 0);
    layout->setSpacing(11);
    layout->addWidget(pbtnSelectAll_);
    layout->addSpacing(9);
    constexpr int beforeTheSpacers = 1000;  // takes the room up to its maximum width; the spacers share the rest
    layout->addStretch(1);
    layout->addWidget(plashka_, beforeTheSpacers);
    layout->addStretch(1);
    layout->addWidget(pbtnClean_);
    return bar;
}

void ListPanel::addList(QWidget* list) {
    list->hide();
    lists_->insertWidget(0, list, 1);
    setTabOrder(pbtnFinder_, list);
}

// Tab order: the drawer's button, what undoes a move, the other buttons, the lists, the drawer, "Select All".
void ListPanel::adoptDrawer(QWidget* drawer, QAbstractButton* pbtnLangs) {
    buttons_->insertWidget(0, pbtnLangs);
    middle_->addWidget(drawer);
    setTabOrder(pbtnLangs, moved_->undoButton());  // of which one at most is on show
    setTabOrder(moved_->undoButton(), pbtnInf_);
    setTabOrder(pbtnInf_, pbtnFinder_);
    setTabOrder(pbtnFinder_, drawer);
    setTabOrder(drawer, pbtnSelectAll_);
}

void ListPanel::setTitle(const QString& title, const QString& count) {
    title_->setText(title);
    count_->setText(count);
}

void ListPanel::setFreed(const QString& freed) {
    freed_->setText(freed);
    setWrappedToolTip(*freed_, freed.isEmpty()
                                   ? QString()
                                   : tr("%1. Snapshots of the file system may still hold that space.").arg(freed));
    setDescription(*title_, freed);
    freed_->setVisible(!freed.isEmpty());
    places_->setVisible(freed.isEmpty());
}

void ListPanel::setPlaces(const QString& unusual, const QString& all) {
    places_->setText(QString(unusual).replace(QLatin1Char('\n'), QStringLiteral(" · ")));
    setWrappedToolTip(*count_, all);
    setWrappedToolTip(*places_, all);
    title_->setToolTip(count_->toolTip());
    setDescription(*title_, freed_->text().isEmpty() ? all : freed_->text());
}

void ListPanel::setNote(const QString& note) { note_->setText(note); }

void ListPanel::setListShown(QWidget* list, bool shown) {
    QWidget* const comes = shown ? list : note_;
    QWidget* const goes = shown ? note_ : list;
    comes->show();
    if (goes->hasFocus()) {
        comes->setFocus();
    }
    goes->hide();
}

}  // namespace brimvault::ui
