#include "browser/find_bar.h"

#include "browser/find_query.h"
#include "browser/texts.h"
#include "widgets/flow_layout.h"
#include "widgets/object_names.h"

#include <QtCore/QSignalBlocker>
#include <QtGui/QKeyEvent>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QToolButton>
#include <QtWidgets/QVBoxLayout>

namespace browser {
namespace {

using widgets::Named;

constexpr int kChipSpacing = 3;

QString HowToFind() {
    return BrowserTexts::tr("What to find in the tables that are shown, for example:\n"
                            "taxi \"two words\" -without\n"
                            "author:bob   also name, file, company, version\n"
                            "year:>1980   also times; <, <=, >=, = and 1980..1989\n"
                            "played:2003-05   also added, filedate\n"
                            "is:missing   also favourite, pinmame, played, unplayed");
}

}  // namespace

FindBar::FindBar(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("FindBar"));
    auto* rows = new QVBoxLayout(this);
    rows->setContentsMargins(0, 0, 0, 0);
    rows->setSpacing(kChipSpacing);
    BuildField();
    BuildChips();
}

void FindBar::BuildField() {
    txtFind_ = Named(new QLineEdit(this), "txtFind");
    txtFind_->setPlaceholderText(BrowserTexts::tr("Find"));
    txtFind_->setAccessibleName(BrowserTexts::tr("Find"));
    txtFind_->setToolTip(HowToFind());
    txtFind_->setMaxLength(static_cast<int>(FindQuery::kMaxLength));
    txtFind_->installEventFilter(this);
    connect(txtFind_, &QLineEdit::textChanged, this, [this](const QString& text) {
        ShowChips();
        Q_EMIT TextChanged(text);
    });

    lblFindCount_ = Named(new QLabel(this), "lblFindCount");
    lblFindCount_->setTextFormat(Qt::PlainText);
    // So that the field seldom changes its width.
    lblFindCount_->setMinimumWidth(lblFindCount_->fontMetrics().horizontalAdvance(
        BrowserTexts::tr("%1 of %2").arg(QStringLiteral("00"), QStringLiteral("00"))));
    lblFindCount_->setAlignment(Qt::AlignRight | Qt::AlignVCenter);

    auto* row = new QHBoxLayout;
    row->setSpacing(kChipSpacing);
    row->addWidget(txtFind_, 1);
    row->addWidget(lblFindCount_);
    auto* const leave = AddButton("cmdFindLeave", QStringLiteral("\u00d7"),
                                  BrowserTexts::tr("Ends finding (Escape)"));
    connect(leave, &QToolButton::clicked, this, &FindBar::LeaveWanted);
    row->addWidget(leave);
    static_cast<QVBoxLayout*>(layout())->addLayout(row);
}

void FindBar::BuildChips() {
    chips_ = new QWidget(this);
    chips_->setLayout(new widgets::FlowLayout(kChipSpacing));
    layout()->addWidget(chips_);
    AddBeginning("chipAuthor", BrowserTexts::tr("Author"), QStringLiteral("author:"),
                 BrowserTexts::tr("Part of the author's name"));
    AddBeginning("chipYear", BrowserTexts::tr("Year >"), QStringLiteral("year:>"),
                 BrowserTexts::tr("Later than a year"));
    AddSwitch("chipFavourite", BrowserTexts::tr("Favourite"), QStringLiteral("is:favourite"),
              BrowserTexts::tr("Favourites only"));
    AddSwitch("chipMissing", BrowserTexts::tr("Missing"), QStringLiteral("is:missing"),
              BrowserTexts::tr("Only tables whose file is missing"));
    AddSwitch("chipPinMame", BrowserTexts::tr("MAME"), QStringLiteral("is:pinmame"),
              BrowserTexts::tr("Only tables that need VPinMAME"));
    AddSwitch("chipUnplayed", BrowserTexts::tr("Unplayed"), QStringLiteral("is:unplayed"),
              BrowserTexts::tr("Only tables that were never played"));
}

QToolButton* FindBar::AddButton(const char* name, const QString& caption, const QString& tool_tip) {
    auto* const button = Named(new QToolButton(this), name);
    button->setText(caption);
    button->setToolTip(tool_tip);
    button->setAccessibleName(tool_tip);
    return button;
}

QToolButton* FindBar::AddChip(const char* name, const QString& caption, const QString& tool_tip) {
    QToolButton* const chip = AddButton(name, caption, tool_tip);
    chips_->layout()->addWidget(chip);
    return chip;
}

void FindBar::AddSwitch(const char* name, const QString& caption, const QString& part,
                        const QString& tool_tip) {
    QToolButton* const chip = AddChip(name, caption, tool_tip);
    chip->setCheckable(true);
    switches_.push_back({chip, part});
    connect(chip, &QToolButton::clicked, this, [this, part] {
        const QString text = Text();
        SetText(HasPart(text, part) ? WithoutPart(text, part) : WithPart(text, part));
        txtFind_->setFocus();
    });
}

// What follows the part is typed.
void FindBar::AddBeginning(const char* name, const QString& caption, const QString& part,
                           const QString& tool_tip) {
    connect(AddChip(name, caption, tool_tip), &QToolButton::clicked, this, [this, part] {
        SetText(WithPart(Text(), part).trimmed());
        txtFind_->setFocus();
    });
}

void FindBar::ShowChips() {
    for (const Chip& chip : switches_)
        chip.button->setChecked(HasPart(Text(), chip.part));
}

QString FindBar::Text() const {
    return txtFind_->text();
}

void FindBar::SetText(const QString& text) {
    txtFind_->setText(text);
}

void FindBar::FocusField() {
    txtFind_->setFocus(Qt::ShortcutFocusReason);
    txtFind_->selectAll();
}

void FindBar::SetCount(const QString& text, const QString& tool_tip) {
    lblFindCount_->setText(text);
    lblFindCount_->setToolTip(tool_tip);
    txtFind_->setAccessibleDescription(text);
}

bool FindBar::TakesKey(int key) {
    switch (key) {
    case Qt::Key_Down:
        Q_EMIT NextWanted();
        return true;
    case Qt::Key_Up:
        Q_EMIT PreviousWanted();
        return true;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        Q_EMIT PlayWanted();
        return true;
    case Qt::Key_Escape:
        Q_EMIT EscapePressed();
        return true;
    default:
        return false;
    }
}

bool FindBar::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() != QEvent::KeyPress) return QWidget::eventFilter(watched, event);
    const auto* const key = static_cast<QKeyEvent*>(event);
    const bool is_enter = key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter;
    if (is_enter && key->isAutoRepeat()) return true;  // holding the key must not play again
    return TakesKey(key->key());
}

}  // namespace browser
