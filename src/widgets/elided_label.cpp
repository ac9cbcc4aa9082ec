#include "widgets/elided_label.h"

#include <QtGui/QHelpEvent>
#include <QtGui/QPainter>
#include <QtWidgets/QStyle>
#include <QtWidgets/QToolTip>

#include <algorithm>

namespace widgets {

ElidedLabel::ElidedLabel(QWidget* parent) : QLabel(parent) {
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
}

QString ElidedLabel::ShownText() const {
    QString line = text().left(kMaxShownCharacters);
    std::replace_if(
        line.begin(), line.end(), [](QChar c) { return !c.isPrint(); }, QChar(u' '));
    return fontMetrics().elidedText(line, Qt::ElideMiddle, contentsRect().width());
}

QSize ElidedLabel::minimumSizeHint() const {
    return {0, fontMetrics().height()};
}

// Not kept as the tool tip: who sets one keeps it.
bool ElidedLabel::event(QEvent* event) {
    if (event->type() != QEvent::ToolTip || ShownText() == text()) return QLabel::event(event);
    // A text of others, and no HTML.
    QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(),
                       QStringLiteral("<p style='white-space:pre'>") +
                           text().left(kMaxShownCharacters).toHtmlEscaped(),
                       this);
    return true;
}

void ElidedLabel::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    style()->drawItemText(&painter, contentsRect(), static_cast<int>(alignment()), palette(),
                          isEnabled(), ShownText(), foregroundRole());
}

}  // namespace widgets
