#include "widgets/button_width.h"

#include <QtCore/QEvent>
#include <QtWidgets/QAbstractButton>

#include <algorithm>

namespace widgets {
namespace {

// On each side of the caption, as a part of the height of the letters.
constexpr int kMargins = 1;

class WidthKeeper final : public QObject {
public:
    WidthKeeper(QAbstractButton& button, const QStringList& captions)
        : QObject(&button), button_(button), captions_(captions) {
        button.installEventFilter(this);
        SetWidth();
    }

    bool eventFilter(QObject*, QEvent* event) override {
        if (event->type() == QEvent::FontChange) SetWidth();
        return false;
    }

private:
    void SetWidth() {
        const QFontMetrics metrics = button_.fontMetrics();
        int widest = 0;
        for (const QString& caption : captions_)
            widest = std::max(widest, metrics.horizontalAdvance(caption));
        button_.setFixedWidth(widest + 2 * kMargins * metrics.height());
    }

    QAbstractButton& button_;
    QStringList captions_;
};

}  // namespace

void ReserveWidth(QAbstractButton& button, const QStringList& captions) {
    new WidthKeeper(button, captions);  // which the button owns
}

}  // namespace widgets
