#include "browser/status_label.h"

#include <QtGui/QPainter>

#include <algorithm>
#include <cmath>

namespace browser {
namespace {

constexpr int kPadding = 6;           // pixels on each side of the text
constexpr int kLeastCharacters = 8;   // of a panel that must give way
constexpr qsizetype kMeasured = 500;  // characters; more do not fit on any screen

bool BreaksLine(QChar c) {
    return c.category() == QChar::Other_Control || c == QChar::LineSeparator ||
           c == QChar::ParagraphSeparator;
}

}  // namespace

StatusLabel::StatusLabel(Room room, bool is_first, QWidget* parent)
    : QLabel(parent), room_(room), is_first_(is_first) {
    setTextFormat(Qt::PlainText);
}

QString StatusLabel::OneLine() const {
    QString line = text().left(kMeasured);
    std::replace_if(line.begin(), line.end(), BreaksLine, QChar(u' '));
    return line;
}

int StatusLabel::WidthFor(const QString& shown) const {
    if (shown.isEmpty()) return 0;
    // Not the rounded width of whole pixels: a fraction less, and the text would be cut.
    return static_cast<int>(std::ceil(QFontMetricsF(font()).horizontalAdvance(shown))) + 1 +
           2 * kPadding;
}

QSize StatusLabel::sizeHint() const {
    return {WidthFor(OneLine()), fontMetrics().height() + 2};
}

QSize StatusLabel::minimumSizeHint() const {
    const int least = room_ == Room::kWhatIsLeft
                          ? 1
                          : kLeastCharacters * fontMetrics().averageCharWidth() + 2 * kPadding;
    return {std::min(least, sizeHint().width()), sizeHint().height()};
}

QString StatusLabel::ShownText() const {
    return fontMetrics().elidedText(OneLine(), Qt::ElideRight, width() - 2 * kPadding);
}

void StatusLabel::paintEvent(QPaintEvent*) {
    const QString shown = ShownText();
    if (shown.isEmpty()) return;
    QPainter painter(this);
    if (!is_first_) {
        painter.setPen(palette().color(QPalette::Mid));
        painter.drawLine(0, 2, 0, height() - 3);
    }
    painter.setPen(palette().color(foregroundRole()));
    painter.drawText(rect().adjusted(kPadding, 0, -kPadding, 0), Qt::AlignLeft | Qt::AlignVCenter,
                     shown);
}

}  // namespace browser
