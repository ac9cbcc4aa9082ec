// WidePage: a page, and another widget on its right where there is room for both.
#pragma once

#include <QtWidgets/QWidget>

namespace browser {

class WidePage : public QWidget {
public:
    // Takes both.
    WidePage(QWidget* page, QWidget* beside, QWidget* parent = nullptr);

    // In pixels: from this width on both are shown.
    int least_width_of_both() const;

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    QWidget* beside_;
};

}  // namespace browser
