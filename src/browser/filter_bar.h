// FilterBar: selects the tables to show: the kind of filter and, if it compares a column, the
// operator and the value.
#pragma once

#include "base/status.h"
#include "browser/icon_list.h"
#include "browser/tree_query.h"
#include "platform/user_prompts.h"

#include <QtWidgets/QWidget>

#include <functional>

class QComboBox;
class QFrame;
class QPushButton;

namespace browser {

class ValueBox;

class FilterBar : public QWidget {
    Q_OBJECT

public:
    // Reads the values of the column that a filter key names.
    using ValueSource = std::function<base::Result<QStringList>(const QString& filter_key)>;

    // `prompts` and `icons` are borrowed and outlive the bar.
    FilterBar(ValueSource values, platform::UserPrompts& prompts, IconList& icons,
              QWidget* parent = nullptr);

    QString FilterKey() const;
    QString FilterText() const;
    QString FilterValue() const;
    QString Comparison() const;
    void SetComparison(const QString& symbol);
    // True when the value and the operator are shown.
    bool TakesValue() const;
    // Fills in the filter's part of the selection.
    void Describe(Selection& selection) const;

    // Selects a kind and value without the signal Changed. An unknown key selects "All".
    void Restore(const QString& filter_key, const QString& value);
    // Selects a kind as the user does, with the signal Changed. Requires: a key of
    // catalogue/filter_kinds.h.
    void Choose(const QString& filter_key);
    // Moves the focus to the value and selects its text.
    void FocusValue();

Q_SIGNALS:
    // The selection has changed and the tree does not show it yet.
    void Changed();
    // The values of a column could not be read, so none are offered.
    void ValuesNotRead(const base::Status& failure);

private:
    void BuildKinds();
    void BuildValue();
    void SelectKey(const QString& filter_key);
    void KindChosen();
    void FillFilterValues();
    void SetValueText(const QString& text);
    void HideValue();
    void NextOperator();

    ValueSource values_;
    platform::UserPrompts& prompts_;
    IconList& icons_;
    QComboBox* cboFilter_ = nullptr;
    QFrame* fraFilter_ = nullptr;
    ValueBox* cboFilterDet_ = nullptr;
    QPushButton* cmdOperator_ = nullptr;
    std::size_t operator_clicks_ = 0;  // modulo the number of operators
};

}  // namespace browser
