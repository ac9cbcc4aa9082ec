// ElidedLabel: a line of plain text of unknown length. What does not fit is left out in the middle,
// and the whole is its tool tip. It never widens its window.
#pragma once

#include <QtWidgets/QLabel>

namespace widgets {

class ElidedLabel : public QLabel {
    Q_OBJECT

public:
    // Of its text; a line of a file of another kind may have a million.
    static constexpr qsizetype kMaxShownCharacters = 500;

    explicit ElidedLabel(QWidget* parent = nullptr);

    // The text as it fits now, in one line.
    QString ShownText() const;
    QSize minimumSizeHint() const override;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
};

}  // namespace widgets
