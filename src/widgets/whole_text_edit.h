// WholeTextEdit: a box of several lines that gives back exactly the text it was given as long as
// nobody edits it. Edited text has CR LF line ends, as the catalogue stores them. A text too large
// to edit with comfort is kept whole; its beginning is shown and cannot be edited.
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
