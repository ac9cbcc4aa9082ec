#include "browser/filter_bar.h"

#include "browser/texts.h"
#include "browser/value_box.h"
#include "catalogue/filter_kinds.h"
#include "catalogue/selection.h"
#include "catalogue/texts.h"
#include "platform/shown_text.h"
#include "widgets/button_width.h"

#include <QtCore/QSignalBlocker>
#include <QtWidgets/QFrame>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>

namespace browser {
namespace {

QStringList OperatorTexts() {
    QStringList texts;
    for (const QStringView symbol : catalogue::OperatorSymbols)
        texts.append(symbol.toString());
    return texts;
}

}  // namespace

FilterBar::FilterBar(ValueSource values, platform::UserPrompts& prompts, IconList& icons,
                     QWidget* parent)
    : QWidget(parent), values_(std::move(values)), prompts_(prompts), icons_(icons) {
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    BuildKinds();
    BuildValue();
    row->addWidget(cboFilter_);
    row->addWidget(cmdOperator_);
    row->addWidget(fraFilter_, 1);
    row->addStretch(0);
    HideValue();
}

void FilterBar::BuildKinds() {
    cboFilter_ = new QComboBox(this);
    cboFilter_->setObjectName(QStringLiteral("cboFilter"));
    cboFilter_->setAccessibleName(BrowserTexts::tr("Filter"));
    for (const catalogue::FilterKind& kind : catalogue::kFilterKinds)
        cboFilter_->addItem(icons_.Icon(kind.icon_key.toString()),
                            platform::Shown<catalogue::CatalogueTexts>(kind.text),
                            kind.key.toString());
    cboFilter_->setMaxVisibleItems(static_cast<int>(catalogue::kFilterKinds.size()));
    connect(cboFilter_, &QComboBox::activated, this, &FilterBar::KindChosen);
}

void FilterBar::BuildValue() {
    fraFilter_ = new QFrame(this);
    fraFilter_->setObjectName(QStringLiteral("fraFilter"));
    auto* row = new QHBoxLayout(fraFilter_);
    row->setContentsMargins(0, 0, 0, 0);

    cboFilterDet_ = new ValueBox(fraFilter_);
    row->addWidget(cboFilterDet_);
    connect(cboFilterDet_, &QComboBox::editTextChanged, this, &FilterBar::Changed);

    cmdOperator_ = new QPushButton(this);
    cmdOperator_->setObjectName(QStringLiteral("cmdOperator"));
    cmdOperator_->setToolTip(BrowserTexts::tr("Click to Change Operator"));
    widgets::ReserveWidth(*cmdOperator_, OperatorTexts());
    connect(cmdOperator_, &QPushButton::clicked, this, &FilterBar::NextOperator);
}

QString FilterBar::FilterKey() const {
    return cboFilter_->currentData().toString();
}

QString FilterBar::FilterText() const {
    return cboFilter_->currentText();
}

QString FilterBar::FilterValue() const {
    return cboFilterDet_->currentText();
}

QString FilterBar::Comparison() const {
    return cmdOperator_->text();
}

void FilterBar::SetComparison(const QString& symbol) {
    cmdOperator_->setText(symbol);
    cmdOperator_->setAccessibleName(BrowserTexts::tr("Operator %1").arg(symbol));
}

bool FilterBar::TakesValue() const {
    return !fraFilter_->isHidden();
}

void FilterBar::Describe(Selection& selection) const {
    selection.filter_key = FilterKey();
    selection.filter_value = FilterValue();
    selection.comparison = Comparison();
    selection.takes_value = TakesValue();
}

void FilterBar::SelectKey(const QString& filter_key) {
    const int found = cboFilter_->findData(filter_key);
    cboFilter_->setCurrentIndex(found < 0 ? 0 : found);
}

void FilterBar::Restore(const QString& filter_key, const QString& value) {
    const QSignalBlocker silent(this);
    SelectKey(filter_key);
    if (catalogue::IsValueFilter(FilterKey())) {
        FillFilterValues();
        SetValueText(value);
    } else {
        HideValue();
        SetComparison(QStringLiteral("="));
    }
}

void FilterBar::Choose(const QString& filter_key) {
    SelectKey(filter_key);
    KindChosen();
}

void FilterBar::KindChosen() {
    SetValueText({});
    if (catalogue::IsValueFilter(FilterKey()))
        FillFilterValues();
    else
        HideValue();
    Q_EMIT Changed();
}

void FilterBar::FillFilterValues() {
    const QString key = FilterKey();
    cboFilterDet_->SetValues({});
    const auto values = values_(key);
    if (!values.ok()) {
        Q_EMIT ValuesNotRead(values.status());
        return;
    }
    if (values->isEmpty()) {
        prompts_.Ask({BrowserTexts::tr("The database contains no values for %1").arg(key),
                      {},
                      platform::MessageIcon::kInformation});
        return;
    }
    cboFilterDet_->SetValues(*values);
    fraFilter_->show();
    cmdOperator_->show();
}

void FilterBar::SetValueText(const QString& text) {
    const QSignalBlocker silent(cboFilterDet_);
    cboFilterDet_->setEditText(text);
    cboFilterDet_->lineEdit()->setCursorPosition(0);
    cboFilterDet_->setToolTip(text);
}

void FilterBar::HideValue() {
    fraFilter_->hide();
    cmdOperator_->hide();
    cboFilterDet_->SetValues({});
    SetValueText({});
}

void FilterBar::NextOperator() {
    SetComparison(catalogue::OperatorSymbols[operator_clicks_].toString());
    operator_clicks_ = (operator_clicks_ + 1) % catalogue::OperatorSymbols.size();
    Q_EMIT Changed();
}

void FilterBar::FocusValue() {
    if (!TakesValue()) return;
    cboFilterDet_->setFocus();
    cboFilterDet_->lineEdit()->selectAll();
}

}  // namespace browser
