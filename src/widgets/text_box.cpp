#include "widgets/text_box.h"

namespace widgets {
namespace {

// Far more than any column holds: a text that is too long is refused by the database, not cut by
// the box.
constexpr int kMaxTextLength = 1 << 24;

}  // namespace

TextBox TextBox::OneLine(QWidget* parent) {
    TextBox box;
    box.line_ = new QLineEdit(parent);
    box.line_->setMaxLength(kMaxTextLength);
    return box;
}

TextBox TextBox::SeveralLines(QWidget* parent) {
    TextBox box;
    box.lines_ = new WholeTextEdit(parent);
    return box;
}

QWidget* TextBox::widget() const {
    return line_ ? static_cast<QWidget*>(line_) : lines_;
}

QString TextBox::Text() const {
    return line_ ? line_->text() : lines_->WholeText();
}

void TextBox::SetText(const QString& text) {
    if (!line_) return lines_->SetWholeText(text);
    line_->setText(text);
    line_->setCursorPosition(0);
}

void TextBox::SetReadOnly() {
    if (line_)
        line_->setReadOnly(true);
    else
        lines_->setReadOnly(true);
}

void TextBox::FocusAndSelectAll() {
    widget()->setFocus();
    if (line_)
        line_->selectAll();
    else
        lines_->selectAll();
}

void TextBox::OnChange(const std::function<void()>& action) const {
    if (line_)
        QObject::connect(line_, &QLineEdit::textChanged, line_, action);
    else
        QObject::connect(lines_, &QPlainTextEdit::textChanged, lines_, action);
}

}  // namespace widgets
