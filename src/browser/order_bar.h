// OrderBar: the order of the tables, and the button that applies the whole selection.
#pragma once

#include "browser/tree_query.h"

#include <QtWidgets/QWidget>

class QComboBox;
class QPushButton;

namespace browser {

class OrderBar : public QWidget {
    Q_OBJECT

public:
    explicit OrderBar(QWidget* parent = nullptr);

    QString OrderCaption() const;
    // A caption that the combo does not offer leaves it as it is.
    void SetOrderCaption(const QString& caption);
    // "Asc" or "Desc".
    QString Direction() const;
    void SetDirection(const QString& caption);
    // Fills in the bar's part.
    void Describe(Selection& selection) const;

    // Makes Refresh Tree stand out while the tree does not show what is selected.
    void SetRefreshPending(bool pending);
    // Refresh Tree cannot be pressed while a record is being changed; the order can be chosen all
    // the same.
    void LockRefresh(bool locked);

Q_SIGNALS:
    void Changed();
    void RefreshClicked();

private:
    void BuildOrder();
    void BuildRefresh();
    void ToggleDirection();

    QComboBox* cboOrder_ = nullptr;
    QPushButton* lblDirection_ = nullptr;
    QPushButton* cmdGo_ = nullptr;
};

}  // namespace browser
