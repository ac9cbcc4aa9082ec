#include "dialogs/help_text.h"

#include "widgets/program_palette.h"

#include <QtCore/QEvent>
#include <QtGui/QTextDocument>
#include <QtWidgets/QScrollBar>

namespace dialogs {

QString HelpText::StyleSheet() const {
    const QColor heading(0x7a, 0x1f, 0x1f);
    const QColor ground = palette().color(QPalette::Base);
    return QStringLiteral("h1 { font-size: x-large; color: %1; }"
                          "h2 { font-size: large; color: %1; margin-top: 14px; }"
                          "th { text-align: left; background-color: %2; }"
                          "table { border-collapse: collapse; }"
                          "th, td { border: 1px solid %3; padding: 2px 6px; }"
                          "dt { font-weight: bold; margin-top: 8px; }")
        .arg(widgets::MovedAwayFrom(heading, ground).name(),
             palette().color(QPalette::AlternateBase).name(),
             palette().color(QPalette::Mid).name());
}

QVariant HelpText::loadResource(int type, const QUrl& name) {
    if (type == QTextDocument::StyleSheetResource) return StyleSheet();
    return QTextBrowser::loadResource(type, name);
}

void HelpText::changeEvent(QEvent* event) {
    QTextBrowser::changeEvent(event);
    const bool is_of_looks =
        event->type() == QEvent::PaletteChange || event->type() == QEvent::FontChange;
    if (!is_of_looks || source().isEmpty()) return;
    const int place = verticalScrollBar()->value();
    reload();
    verticalScrollBar()->setValue(place);
}

}  // namespace dialogs
