// TextBox: a field that shows a text, in one line or in several, and gives it back as it was given
// unless it was edited.
#pragma once

#include "widgets/whole_text_edit.h"

#include <QtWidgets/QLineEdit>

#include <functional>

namespace widgets {

// A handle to a widget, which its Qt parent owns; copies refer to the same widget. Requires: one
// made by OneLine or SeveralLines, for every call.
class TextBox {
public:
    TextBox() = default;
    static TextBox OneLine(QWidget* parent = nullptr);
    static TextBox SeveralLines(QWidget* parent = nullptr);

    QString Text() const;
    void SetText(const QString& text);
    void SetReadOnly();
    // From now on a user cannot type or paste more than `most` characters (0: any number) and is
    // told so; SetText still can. Only of one line.
    void LimitTyping(int most);
    // The focus, with the whole text selected.
    void FocusAndSelectAll();
    // Calls `action` after every change of the text while the widget lives.
    void OnChange(const std::function<void()>& action) const;
    QWidget* widget() const;

private:
    QLineEdit* line_ = nullptr;       // either this
    WholeTextEdit* lines_ = nullptr;  // or this
};

}  // namespace widgets
