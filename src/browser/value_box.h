// ValueBox: cboFilterDet, where the value of a filter is typed or picked. Its list is as wide as
// its values, so that those can be told apart which begin alike; a picked value is shown from its
// beginning.
#pragma once

#include <QtCore/QStringList>
#include <QtWidgets/QComboBox>

class QStringListModel;

namespace browser {

class ValueBox : public QComboBox {
    Q_OBJECT

public:
    explicit ValueBox(QWidget* parent = nullptr);

    // Replaces the values of the list; the text stays, and none of them is chosen.
    void SetValues(const QStringList& values);

    void showPopup() override;

private:
    int WidthOfValues() const;

    QStringListModel* values_ = nullptr;
};

}  // namespace browser
