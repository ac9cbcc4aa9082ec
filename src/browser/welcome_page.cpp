#include "browser/welcome_page.h"

#include "browser/texts.h"
#include "widgets/object_names.h"

#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QScrollBar>
#include <QtWidgets/QVBoxLayout>

namespace browser {
namespace {

constexpr int kPageMargin = 6;
constexpr int kOfferSpacing = 9;
constexpr double kTitleScale = 1.5;  // of the letters

QLabel* Text(const QString& text) {
    auto* const label = new QLabel(text);
    label->setWordWrap(true);
    return label;
}

QLabel* Title() {
    QLabel* const title = Text(BrowserTexts::tr("Welcome to Tavolo"));
    QFont font = title->font();
    font.setPointSizeF(font.pointSizeF() * kTitleScale);
    font.setBold(true);
    title->setFont(font);
    return title;
}

}  // namespace

WelcomePage::WelcomePage(QWidget* parent) : QScrollArea(parent) {
    setObjectName(QStringLiteral("WelcomePage"));
    setWidgetResizable(true);
    setFocusPolicy(Qt::NoFocus);  // its buttons have it
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    auto* const page = new QWidget;
    auto* const column = new QVBoxLayout(page);
    column->setContentsMargins(kPageMargin, kPageMargin, kPageMargin, kPageMargin);
    column->setSpacing(kOfferSpacing);
    column->addWidget(Title());
    column->addWidget(Text(BrowserTexts::tr(
        "It keeps a catalogue of your Visual Pinball tables, shows their pictures, notes and "
        "rules, and starts them. There are no tables in it yet.")));
    AddOffer(*column, "cmdWelcomeScan", BrowserTexts::tr("Look for tables..."),
             BrowserTexts::tr("Finds the tables in a folder and below it"),
             &WelcomePage::LookForTables);
    AddOffer(
        *column, "cmdWelcomeExample", BrowserTexts::tr("Open the example collection"),
        BrowserTexts::tr("A dozen invented tables to try everything with, in a window of its own"),
        &WelcomePage::OpenExample);
    AddOffer(*column, "cmdWelcomeFolder", BrowserTexts::tr("Open an old catalogue..."),
             BrowserTexts::tr("Of an earlier installation: choose the folder of its pinball.mdb"),
             &WelcomePage::OpenFolder);
    column->addStretch();
    setWidget(page);
    // Room for the longest caption.
    setMinimumWidth(page->minimumSizeHint().width() + verticalScrollBar()->sizeHint().width());
}

void WelcomePage::AddOffer(QVBoxLayout& column, const char* name, const QString& caption,
                           const QString& description, Signal chosen) {
    auto* const offer = widgets::Named(new QPushButton(caption), name);
    offer->setToolTip(description);
    offer->setAccessibleDescription(description);
    connect(offer, &QAbstractButton::clicked, this, chosen);
    column.addWidget(offer);
}

}  // namespace browser
