#include "widgets/text_box.h"

#include "widgets/texts.h"

#include <QtGui/QValidator>
#include <QtWidgets/QToolTip>

namespace widgets {
namespace {

// Far more than any column holds: a text that is too long is refused by the database, not cut by
// the box.
constexpr int kMaxTextLength = 1 << 24;

class LengthLimit final : public QValidator {
public:
    explicit LengthLimit(QLineEdit& line) : QValidator(&line), line_(line) {}
    void SetMost(int most) { most_ = most; }

    // The line takes back what would be invalid, but not what is shorter than a text that was
    // invalid already.
    State validate(QString& text, int&) const override {
        return most_ == 0 || text.size() <= most_ ? Acceptable : Invalid;
    }
    void Tell() const {
        QToolTip::showText(line_.mapToGlobal(QPoint(0, line_.height())),
                           WidgetsTexts::tr("At most %1 characters").arg(most_), &line_);
    }

private:
    QLineEdit& line_;
    int most_ = 0;
};

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

void TextBox::LimitTyping(int most) {
    if (!line_) return;
    auto* limit = const_cast<LengthLimit*>(  // NOLINT: ours
        static_cast<const LengthLimit*>(line_->validator()));
    if (limit == nullptr) {
        limit = new LengthLimit(*line_);
        line_->setValidator(limit);
        QObject::connect(line_, &QLineEdit::inputRejected, line_, [limit] { limit->Tell(); });
    }
    limit->SetMost(most);
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
