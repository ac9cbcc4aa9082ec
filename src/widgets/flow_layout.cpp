#include "widgets/flow_layout.h"

#include <QtWidgets/QWidget>

#include <algorithm>

namespace widgets {

FlowLayout::FlowLayout(int spacing, QWidget* parent) : QLayout(parent) {
    setContentsMargins(0, 0, 0, 0);
    setSpacing(spacing);
}

FlowLayout::~FlowLayout() = default;

void FlowLayout::addItem(QLayoutItem* item) {
    items_.emplace_back(item);
}

QLayoutItem* FlowLayout::itemAt(int index) const {
    const auto place = static_cast<std::size_t>(index);
    return index >= 0 && place < items_.size() ? items_[place].get() : nullptr;
}

QLayoutItem* FlowLayout::takeAt(int index) {
    if (itemAt(index) == nullptr) return nullptr;
    const auto place = items_.begin() + index;
    QLayoutItem* const item = place->release();
    items_.erase(place);
    return item;
}

int FlowLayout::heightForWidth(int width) const {
    return Arrange(QRect(0, 0, width, 0), Place::kOnlyMeasure);
}

QSize FlowLayout::minimumSize() const {
    QSize size;
    for (const auto& item : items_)
        size = size.expandedTo(item->minimumSize());
    return size;
}

void FlowLayout::setGeometry(const QRect& rect) {
    QLayout::setGeometry(rect);
    Arrange(rect, Place::kNow);
    // A layout around this one may give less than the height for the width.
    if (QWidget* const parent = parentWidget())
        parent->setMinimumHeight(heightForWidth(rect.width()));
}

int FlowLayout::Arrange(const QRect& rect, Place place) const {
    QPoint at = rect.topLeft();
    int line_height = 0;
    for (const auto& item : items_) {
        const QSize size = item->sizeHint();
        if (at.x() > rect.x() && at.x() + size.width() > rect.x() + rect.width()) {
            at = {rect.x(), at.y() + line_height + spacing()};
            line_height = 0;
        }
        if (place == Place::kNow) item->setGeometry({at, size});
        at.rx() += size.width() + spacing();
        line_height = std::max(line_height, size.height());
    }
    return at.y() + line_height - rect.y();
}

}  // namespace widgets
