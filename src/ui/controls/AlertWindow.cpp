#include "ui/controls/AlertWindow.h"

#include <QEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QVBoxLayout>

#include "ui/controls/MCheckCell.h"
#include "ui/look/Look.h"
#include "ui/look/PictureLabel.h"
#include "ui/look/TextLabel.h"

namespace brimvault::ui {

namespace {

constexpr QMargins margins(22, 22, 22, 16);
constexpr int iconSide = 64;
constexpr int iconGap = 12;
constexpr int textWidth = 400;
constexpr int buttonWidth = 104;
constexpr qreal messageSize = 14;
constexpr qreal informativeSize = 12.5;
constexpr qreal buttonTextSize = 13;
constexpr qsizetype maxRun = 32;  // characters

// Names of files can be longer than a line without a place to break it: they get invisible ones (zero-width spaces).
QString breakable(const QString& text) {
    QString result;
    qsizetype run = 0;
    for (const QChar letter : text) {
        run = letter.isSpace() ? 0 : run + 1;
        result += letter;
        if (run >= maxRun && !letter.isHighSurrogate()) {
            result += QChar(0x200B);
            run = 0;
        }
    }
    return result;
}

QLabel* paragraph(const QString& text, const QFont& font, QRgb color, int width = textWidth) {
    auto* label = makeNameLabel(breakable(text), font, color);
    label->setAccessibleName(text);
    label->setTextInteractionFlags(Qt::TextSelectableByMouse);
    label->setContentsMargins(MCheckCellT::margin, 0, MCheckCellT::margin, 0);  // in line with the check box below
    label->setFixedWidth(look::scaled(width));
    return label;
}

// Puts as many parts on each line as fit.
QString partsText(const QStringList& parts, const QFont& font, int room) {
    const QString between = QStringLiteral("%1 \u00b7%1 ").arg(QChar(QChar::Nbsp));
    QStringList lines;
    for (const QString& part : parts) {
        const QString longer = lines.isEmpty() ? part : lines.last() + between + part;
        if (!lines.isEmpty() && QFontMetrics(font).horizontalAdvance(longer) <= room) {
            lines.last() = longer;
        } else {
            lines.append(part);
        }
    }
    return lines.join(QLatin1Char('\n'));
}

// As wide as the texts above and below a panel, without their margins.
constexpr int panelWidth = textWidth - 2 * MCheckCellT::margin;
constexpr QMargins panelMargins(8, 10, 8, 10);
constexpr int panelRoom = panelWidth - panelMargins.left() - panelMargins.right();

// A panel with a title line.
QVBoxLayout* fill(QFrame& panel, QRgb ground, const QString& title, QRgb color) {
    constexpr int lineGap = 4;
    panel.setObjectName(QStringLiteral("panel"));
    panel.setStyleSheet(QStringLiteral("#panel { background: %1; border-radius: %2px; }")
                            .arg(QColor(ground).name())
                            .arg(look::scaled(look::smallCornerRadius)));
    panel.setFixedWidth(look::scaled(panelWidth));
    auto* lines = new QVBoxLayout(&panel);
    lines->setContentsMargins(panelMargins);
    lines->setSpacing(lineGap);
    lines->addWidget(paragraph(title, look::font(informativeSize, QFont::DemiBold), color, panelRoom));
    return lines;
}

QWidget* factsPanel(const Alert::Facts& facts) {
    auto* panel = new QFrame;
    auto* lines = fill(*panel, look::questionFacts, facts.sum, look::textPrimary);
    if (!facts.parts.isEmpty()) {
        const QFont font = look::font(informativeSize);
        const int ofText = look::scaled(panelRoom) - 2 * MCheckCellT::margin;
        auto* parts = paragraph(partsText(facts.parts, font, ofText), font, look::textPrimary, panelRoom);
        parts->setAccessibleName(facts.parts.join(QStringLiteral(", ")));
        lines->addWidget(parts);
    }
    return panel;
}

QWidget* warningPanel(const Alert::Warning& warning) {
    auto* panel = new QFrame;
    auto* lines = fill(*panel, look::warningGround, warning.sum, look::textWarning);
    for (const QString& line : warning.lines) {
        lines->addWidget(paragraph(line, look::font(informativeSize), look::textPrimary, panelRoom));
    }
    return panel;
}

WhiteTitleButton* makeButton(const QString& title, const WhiteTitleButton::Pictures& pictures) {
    auto* button = WhiteTitleButton::make(title, pictures, buttonTextSize);
    button->setSmall(buttonWidth);
    return button;
}

// Dims the window behind a question.
class Shade final : public QWidget {
public:
    explicit Shade(QWidget* window) : QWidget(window) {
        setGeometry(window->rect());
        window->installEventFilter(this);
        raise();
        show();
    }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (watched == parentWidget() && event->type() == QEvent::Resize) {
            setGeometry(parentWidget()->rect());
        }
        return QWidget::eventFilter(watched, event);
    }
    void paintEvent(QPaintEvent* event) override {
        QPainter(this).fillRect(event->rect(), QColor::fromRgba(look::questionShade));
    }
};

}  // namespace

AlertWindow::AlertWindow(const Alert& alert, QWidget* window) : QDialog(window) {
    setWindowTitle(QStringLiteral("Brimvault"));
    setAccessibleName(alert.message);
    QStringList described{alert.informativeText, alert.facts.line(), alert.warning.text()};
    described.removeAll(QString());
    setAccessibleDescription(described.join(QLatin1Char('\n')));
    auto* content = new QHBoxLayout;
    content->setSpacing(look::scaled(iconGap));
    content->addWidget(new PictureLabel(QLatin1String("AppIcon"), look::scaled(iconSide)), 0, Qt::AlignTop);
    content->addLayout(makeTexts(alert));
    auto* rows = new QVBoxLayout(this);
    rows->setContentsMargins(margins);
    rows->setSpacing(look::scaled(iconGap));
    rows->setSizeConstraint(QLayout::SetFixedSize);
    rows->addLayout(content);
    rows->addLayout(makeButtons(alert));
    auto* const defaultButton = alert.buttons == Alert::Buttons::deleteAndCancel ? secondButton_ : firstButton_;
    defaultButton->setDefault(true);
    defaultButton->setFocus();
}

QVBoxLayout* AlertWindow::makeTexts(const Alert& alert) {
    constexpr int gap = 8;
    auto* texts = new QVBoxLayout;
    texts->setSpacing(gap);
    texts->addWidget(paragraph(alert.message, look::font(messageSize, QFont::Bold), look::textPrimary));
    texts->addWidget(paragraph(alert.informativeText, look::font(informativeSize), look::textPrimary));
    if (!alert.facts.sum.isEmpty()) {
        texts->addWidget(factsPanel(alert.facts), 0, Qt::AlignHCenter);
    }
    if (!alert.warning.sum.isEmpty()) {
        texts->addWidget(warningPanel(alert.warning), 0, Qt::AlignHCenter);
    }
    if (alert.suppression == Alert::Suppression::offered) {
        suppressionBox_ = new TitledCheckBox(tr("Do not show this message again"));
        texts->addWidget(suppressionBox_, 0, Qt::AlignLeading);
    }
    texts->addStretch(1);
    return texts;
}

QLayout* AlertWindow::makeButtons(const Alert& alert) {
    const bool deletes = alert.buttons == Alert::Buttons::deleteAndCancel;
    firstButton_ =
        deletes ? makeButton(tr("Delete"), WhiteTitleButton::danger) : makeButton(tr("OK"), WhiteTitleButton::accent);
    connect(firstButton_, &QAbstractButton::clicked, this, &QDialog::accept);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    if (alert.buttons != Alert::Buttons::takeNote) {
        secondButton_ = makeButton(tr("Cancel"), WhiteTitleButton::quiet);
        secondButton_->setTitleColor(QColor(look::accentDark));
        connect(secondButton_, &QAbstractButton::clicked, this, &QDialog::reject);
        buttons->addWidget(secondButton_);
    }
    buttons->addWidget(firstButton_);
    return buttons;
}

void AlertWindow::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.fillRect(rect(), QColor(look::row));
}

AlertAnswer WindowAlerts::runModal(const Alert& alert, QWidget* window) {
    const Shade shade(window);
    AlertWindow shown(alert, window);
    AlertAnswer answer;
    answer.returnCode = shown.exec() == QDialog::Accepted ? AlertAnswer::firstButton : AlertAnswer::secondButton;
    answer.suppressed = shown.isSuppressionTicked();
    return answer;
}

}  // namespace brimvault::ui
