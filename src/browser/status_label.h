// StatusLabel: one panel of the status bar. Its text stands on one line, whatever breaks it holds,
// ends in an ellipsis where there is no room for it, and is parted from the panel before it by a
// line.
#pragma once

#include <QtWidgets/QLabel>

namespace browser {

class StatusLabel : public QLabel {
    Q_OBJECT

public:
    enum class Room { kOfItsText, kWhatIsLeft };

    // `is_first`: there is no panel before it.
    StatusLabel(Room room, bool is_first, QWidget* parent = nullptr);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

    // What is painted at the present width.
    QString ShownText() const;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString OneLine() const;
    int WidthFor(const QString& shown) const;

    Room room_;
    bool is_first_;
};

}  // namespace browser
