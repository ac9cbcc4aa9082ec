// WholeTextEdit: a box of several lines that gives back exactly the text it was given until it is
// edited. Edited text has CR LF line ends, as the catalogue stores them. Of a text too large for
// the editor only the beginning is shown, read-only; the whole is kept.
#pragma once

#include <QtWidgets/QPlainTextEdit>

namespace widgets {

class WholeTextEdit : public QPlainTextEdit {
    Q_OBJECT

public:
    explicit WholeTextEdit(QWidget* parent = nullptr);

    void SetWholeText(const QString& text);
    QString WholeText() const;
    // True when only the beginning of the text is shown.
    bool shows_beginning_only() const { return shows_beginning_only_; }

private:
    QString text_;
    bool shows_beginning_only_ = false;
};

}  // namespace widgets
