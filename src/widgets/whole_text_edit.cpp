#include "widgets/whole_text_edit.h"

#include "widgets/texts.h"

namespace widgets {
namespace {

// The editor lays out each line as one piece, in a time that grows with the square of its length
// when it has no blanks. Within these bounds a text appears in about half a second.
constexpr qsizetype kMaxCharacters = 8'000'000;
constexpr qsizetype kMaxLineEnds = 400'000;
constexpr qsizetype kMaxLineLength = 20'000;

bool IsLineEnd(QChar c) {
    return c == QLatin1Char('\r') || c == QLatin1Char('\n');
}

// How much of `text` the editor can show.
qsizetype ShownLength(const QString& text) {
    const qsizetype most = qMin(text.size(), kMaxCharacters);
    qsizetype line_start = 0;
    qsizetype line_ends = 0;
    for (qsizetype i = 0; i < most; ++i) {
        if (IsLineEnd(text[i])) {
            line_start = i + 1;
            ++line_ends;
        }
        if (i - line_start >= kMaxLineLength || line_ends >= kMaxLineEnds) return i;
    }
    return most;
}

}  // namespace

WholeTextEdit::WholeTextEdit(QWidget* parent) : QPlainTextEdit(parent) {
    setTabChangesFocus(true);
}

void WholeTextEdit::SetWholeText(const QString& text) {
    text_ = text;
    const qsizetype shown = ShownLength(text);
    shows_beginning_only_ = shown < text.size();
    setReadOnly(shows_beginning_only_);
    setToolTip(
        shows_beginning_only_
            ? WidgetsTexts::tr("This text is too long to be edited here. Its beginning is shown.")
            : QString());
    setPlainText(shows_beginning_only_ ? text.left(shown) : text);
}

QString WholeTextEdit::WholeText() const {
    if (shows_beginning_only_ || !document()->isModified()) return text_;
    // Not toPlainText(), which turns no-break spaces into blanks.
    QString text = document()->toRawText();
    text.replace(QChar(QChar::LineSeparator), QChar(QChar::ParagraphSeparator));
    return text.replace(QChar(QChar::ParagraphSeparator), QStringLiteral("\r\n"));
}

}  // namespace widgets
