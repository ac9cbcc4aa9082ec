#include "browser/wide_page.h"

#include <QtWidgets/QHBoxLayout>

namespace browser {
namespace {

// Of the width that both need, in characters of an average width: by it the texts of the page keep
// the room that they have in a window of the first start.
constexpr int kCharacters = 100;
// The parts of the width.
constexpr int kPartOfPage = 3;
constexpr int kPartOfOther = 2;

}  // namespace

WidePage::WidePage(QWidget* page, QWidget* beside, QWidget* parent)
    : QWidget(parent), beside_(beside) {
    auto* const row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(page, kPartOfPage);
    row->addWidget(beside, kPartOfOther);
    beside_->hide();
    setAutoFillBackground(true);  // one ground behind both, where a style gives tabs their own
}

int WidePage::least_width_of_both() const {
    return kCharacters * fontMetrics().averageCharWidth();
}

void WidePage::resizeEvent(QResizeEvent* event) {
    QWidget::resizeEvent(event);
    beside_->setVisible(width() >= least_width_of_both());
}

}  // namespace browser
