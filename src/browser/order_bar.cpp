#include "browser/order_bar.h"

#include "base/marked_text.h"
#include "browser/texts.h"
#include "catalogue/selection.h"
#include "catalogue/texts.h"
#include "platform/shown_text.h"
#include "widgets/button_width.h"

#include <QtCore/QEvent>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QStyle>

namespace browser {
namespace {

// Values of the button's property "textEffect", which the style sheet uses.
constexpr int kPlain = 0;
constexpr int kEmphasised = 3;
constexpr char kTextEffect[] = "textEffect";

constexpr char kRefreshStyle[] =
    "QPushButton[textEffect=\"3\"] { font-weight: bold; color: #4a2c00; background: #ffc14d;"
    " border: 1px solid #c47f00; border-radius: 3px; padding: 3px 10px; }"
    "QPushButton[textEffect=\"3\"]:hover { background: #ffcf75; }"
    "QPushButton[textEffect=\"3\"]:pressed { background: #e8a52c; }"
    "QPushButton[textEffect=\"3\"]:disabled { color: #9c8a6a; background: #f3e3c3; }";

// As settings and the database know them.
constexpr QStringView kAscending = MARKED_TEXT("BrowserTexts", "Asc");
constexpr QStringView kDescending = MARKED_TEXT("BrowserTexts", "Desc");

// What the settings hold may be none of the two; it is shown as it stands.
QString ShownDirection(QStringView direction) {
    return platform::Shown<BrowserTexts>(direction);
}

}  // namespace

OrderBar::OrderBar(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("ssOrder"));
    BuildOrder();
    BuildRefresh();
    auto* caption = new QLabel(BrowserTexts::tr("Order:"), this);
    caption->setObjectName(QStringLiteral("Label3"));
    caption->setBuddy(cboOrder_);
    auto* row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->addWidget(caption);
    row->addWidget(cboOrder_);
    row->addWidget(lblDirection_);
    row->addSpacing(9);
    row->addWidget(cmdGo_);
}

void OrderBar::BuildOrder() {
    cboOrder_ = new QComboBox(this);
    cboOrder_->setObjectName(QStringLiteral("cboOrder"));
    for (const catalogue::OrderColumn& order : catalogue::kOrderColumns)
        cboOrder_->addItem(platform::Shown<catalogue::CatalogueTexts>(order.caption),
                           order.caption.toString());
    connect(cboOrder_, &QComboBox::activated, this, &OrderBar::Changed);

    lblDirection_ = new QPushButton(this);
    lblDirection_->setObjectName(QStringLiteral("lblDirection"));
    lblDirection_->setToolTip(BrowserTexts::tr("Changes Sort Direction"));
    widgets::ReserveWidth(*lblDirection_,
                          {ShownDirection(kAscending), ShownDirection(kDescending)});
    SetDirection(kAscending.toString());
    connect(lblDirection_, &QPushButton::clicked, this, &OrderBar::ToggleDirection);
}

void OrderBar::BuildRefresh() {
    cmdGo_ = new QPushButton(BrowserTexts::tr("Refresh Tree"), this);
    cmdGo_->setObjectName(QStringLiteral("cmdGo"));
    cmdGo_->setToolTip(BrowserTexts::tr("Click to Apply Selection(s)"));
    cmdGo_->setStyleSheet(QString::fromLatin1(kRefreshStyle));
    ReserveRoom();
    connect(cmdGo_, &QPushButton::clicked, this, &OrderBar::RefreshClicked);
}

QString OrderBar::OrderCaption() const {
    return cboOrder_->currentData().toString();
}

void OrderBar::SetOrderCaption(const QString& caption) {
    const int found = cboOrder_->findData(caption);
    if (found >= 0) cboOrder_->setCurrentIndex(found);
}

QString OrderBar::Direction() const {
    return direction_;
}

void OrderBar::SetDirection(const QString& caption) {
    direction_ = caption;
    const QString shown = ShownDirection(caption);
    lblDirection_->setText(shown);
    lblDirection_->setAccessibleName(BrowserTexts::tr("Direction %1").arg(shown));
}

void OrderBar::Describe(Selection& selection) const {
    selection.order_caption = OrderCaption();
    selection.direction = Direction();
}

void OrderBar::ToggleDirection() {
    SetDirection((Direction() == kAscending ? kDescending : kAscending).toString());
    Q_EMIT Changed();
}

// The highlighted button is larger: nothing beside it must move when it changes.
void OrderBar::ReserveRoom() {
    const bool is_pending = cmdGo_->property(kTextEffect).toInt() == kEmphasised;
    QSize most;
    cmdGo_->setMinimumSize(0, 0);
    for (const bool pending : {true, false}) {
        SetRefreshPending(pending);
        most = most.expandedTo(cmdGo_->sizeHint());
    }
    cmdGo_->setMinimumSize(most);
    SetRefreshPending(is_pending);
}

void OrderBar::changeEvent(QEvent* event) {
    QWidget::changeEvent(event);
    if (event->type() == QEvent::FontChange) ReserveRoom();
}

void OrderBar::SetRefreshPending(bool pending) {
    cmdGo_->setProperty(kTextEffect, pending ? kEmphasised : kPlain);
    cmdGo_->style()->unpolish(cmdGo_);
    cmdGo_->style()->polish(cmdGo_);
}

void OrderBar::LockRefresh(bool locked) {
    cmdGo_->setEnabled(!locked);
}

}  // namespace browser
