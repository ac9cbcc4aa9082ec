// OrderBar: selects the order of the tables; has the button that applies the selection.
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
    // Ignores an unknown caption.
    void SetOrderCaption(const QString& caption);
    // "Asc" or "Desc".
    QString Direction() const;
    void SetDirection(const QString& caption);
    // Fills in the order's part of the selection.
    void Describe(Selection& selection) const;

    // Highlights Refresh Tree while the tree does not show the selection.
    void SetRefreshPending(bool pending);
    // Disables or enables Refresh Tree only; the order can always be chosen.
    void LockRefresh(bool locked);

Q_SIGNALS:
    void Changed();
    void RefreshClicked();

protected:
    void changeEvent(QEvent* event) override;

private:
    void ReserveRoom();
    void BuildOrder();
    void BuildRefresh();
    void ToggleDirection();

    QComboBox* cboOrder_ = nullptr;
    QPushButton* lblDirection_ = nullptr;
    QString direction_;  // "Asc" or "Desc", whatever the button shows
    QPushButton* cmdGo_ = nullptr;
};

}  // namespace browser
