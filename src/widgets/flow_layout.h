// FlowLayout: puts widgets beside each other at their preferred sizes, and begins another line
// where the width ends. Its widget is never lower than all lines.
#pragma once

#include <QtWidgets/QLayout>

#include <memory>
#include <vector>

namespace widgets {

class FlowLayout : public QLayout {
public:
    // `spacing`: pixels between widgets and between lines. There are no margins.
    explicit FlowLayout(int spacing, QWidget* parent = nullptr);
    ~FlowLayout() override;

    void addItem(QLayoutItem* item) override;
    int count() const override { return static_cast<int>(items_.size()); }
    QLayoutItem* itemAt(int index) const override;
    QLayoutItem* takeAt(int index) override;
    Qt::Orientations expandingDirections() const override { return {}; }
    bool hasHeightForWidth() const override { return true; }
    int heightForWidth(int width) const override;
    QSize sizeHint() const override { return minimumSize(); }
    QSize minimumSize() const override;
    void setGeometry(const QRect& rect) override;

private:
    enum class Place { kNow, kOnlyMeasure };
    // The height that is needed.
    int Arrange(const QRect& rect, Place place) const;

    std::vector<std::unique_ptr<QLayoutItem>> items_;
};

}  // namespace widgets
