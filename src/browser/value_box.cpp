#include "browser/value_box.h"

#include "browser/texts.h"

#include <QtCore/QSignalBlocker>
#include <QtCore/QStringListModel>
#include <QtGui/QScreen>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QListView>
#include <QtWidgets/QScrollBar>

#include <algorithm>
#include <vector>

namespace browser {
namespace {

// To measure all of 100,000 values takes too long: the widest is one of the longest.
constexpr std::size_t kMeasuredValues = 50;
constexpr int kMargins = 16;  // pixels

}  // namespace

ValueBox::ValueBox(QWidget* parent) : QComboBox(parent), values_(new QStringListModel(this)) {
    setObjectName(QStringLiteral("cboFilterDet"));
    setAccessibleName(BrowserTexts::tr("Value of the filter"));
    // A column may have as many different values as there are tables; the list must neither
    // measure them all nor have an object for each.
    auto* list = new QListView;
    list->setUniformItemSizes(true);
    setModel(values_);
    setView(list);
    setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    setEditable(true);
    setInsertPolicy(QComboBox::NoInsert);
    setCompleter(nullptr);  // "19" must not be completed to "1990"
    connect(this, &QComboBox::activated, this, [this] { lineEdit()->setCursorPosition(0); });
    connect(this, &QComboBox::editTextChanged, this, &QWidget::setToolTip);
}

void ValueBox::SetValues(const QStringList& values) {
    const QSignalBlocker silent(this);
    const QString text = currentText();
    values_->setStringList(values);
    setCurrentIndex(-1);
    setEditText(text);
}

int ValueBox::WidthOfValues() const {
    const QStringList values = values_->stringList();
    std::vector<const QString*> longest;
    longest.reserve(static_cast<std::size_t>(values.size()));
    for (const QString& value : values)
        longest.push_back(&value);
    const auto measured = std::min(kMeasuredValues, longest.size());
    std::partial_sort(longest.begin(), longest.begin() + static_cast<std::ptrdiff_t>(measured),
                      longest.end(),
                      [](const QString* a, const QString* b) { return a->size() > b->size(); });
    int width = 0;
    for (std::size_t i = 0; i < measured; ++i)
        width = std::max(width, view()->fontMetrics().horizontalAdvance(*longest[i]));
    return width + view()->verticalScrollBar()->sizeHint().width() + kMargins;
}

// The list begins at the box and is moved to the left where the screen ends.
void ValueBox::showPopup() {
    const QRect screen_area = screen()->availableGeometry();
    view()->setMinimumWidth(std::min(WidthOfValues(), screen_area.width()));
    QComboBox::showPopup();
    QWidget* const list = view()->window();
    const int beyond = list->geometry().right() - screen_area.right();
    if (list != window() && beyond > 0) list->move(list->x() - beyond, list->y());
}

}  // namespace browser
