// FilterBar: which tables are shown: the filter kind and, for a kind that compares a column, the
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

class FilterBar : public QWidget {
    Q_OBJECT

public:
    // The values that a column holds.
    using ValueSource = std::function<base::Result<QStringList>(const QString& filter_key)>;

    // `prompts` and `icons` are borrowed and outlive the bar.
    FilterBar(ValueSource values, platform::UserPrompts& prompts, IconList& icons,
              QWidget* parent = nullptr);

    QString FilterKey() const;
    QString FilterText() const;
    QString FilterValue() const;
    QString Comparison() const;
    void SetComparison(const QString& symbol);
    // The value and the operator are shown.
    bool TakesValue() const;
    // Fills in the bar's part.
    void Describe(Selection& selection) const;

    // Selects a kind as a saved selection does: `value` is put back, nothing is marked. An unknown
    // key selects "All".
    void Restore(const QString& filter_key, const QString& value);
    // Selects a kind as the user does. Requires: a key of filter_kinds.h.
    void Choose(const QString& filter_key);
    // The focus into the value, all of it selected.
    void FocusValue();

Q_SIGNALS:
    // The user changed something: what the tree shows is not what is selected any more.
    void Changed();
    // The values of a column cannot be offered: they could not be read.
    void ValuesNotRead(const base::Status& failure);

private:
    void BuildKinds();
    void BuildValue();
    void SelectKey(const QString& filter_key);
    void KindChosen();
    void FillFilterValues();
    void SetValues(const QStringList& values);
    void SetValueText(const QString& text);
    void HideValue();
    void NextOperator();

    ValueSource values_;
    platform::UserPrompts& prompts_;
    IconList& icons_;
    QComboBox* cboFilter_ = nullptr;
    QFrame* fraFilter_ = nullptr;
    QComboBox* cboFilterDet_ = nullptr;
    QPushButton* cmdOperator_ = nullptr;
    std::size_t operator_clicks_ = 0;  // within the current round of the symbols
};

}  // namespace browser
