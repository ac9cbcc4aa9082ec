#include "browser/detail_controls.h"

#include "browser/detail_tabs.h"
#include "browser/table_record.h"
#include "browser/texts.h"
#include "browser/wide_page.h"
#include "widgets/object_names.h"

#include <QtWidgets/QGridLayout>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QScrollArea>
#include <QtWidgets/QVBoxLayout>

namespace browser {
namespace {

using widgets::ElementName;
using widgets::Named;
using widgets::PictureBox;
using widgets::TextBox;

QPushButton* Button(const char* name, const QString& caption) {
    return Named(new QPushButton(caption), name);
}

QToolButton* BrowseButton(const char* name, const QString& hint) {
    auto* button = Named(new QToolButton, name);
    button->setText(QStringLiteral("..."));
    button->setToolTip(hint);
    button->setAccessibleName(hint);
    return button;
}

// Stores `box` as element `index` of txtDet and returns its widget.
QWidget* Adopt(DetailControls& controls, int index, const TextBox& box) {
    box.widget()->setObjectName(ElementName("txtDet", index));
    controls.txtDet[static_cast<std::size_t>(index)] = box;
    return box.widget();
}

QLabel* Caption(int index, const QString& text, QWidget* buddy) {
    auto* label = new QLabel(text);
    label->setObjectName(ElementName("Label2", index));
    label->setBuddy(buddy);
    return label;
}

// The grid has six columns: three pairs of caption and box. A box may span several columns.
void PlaceLine(DetailControls& controls, QGridLayout* grid, int row, int column, int span,
               int index, const QString& caption) {
    QWidget* line = Adopt(controls, index, TextBox::OneLine());
    grid->addWidget(Caption(index, caption, line), row, column);
    grid->addWidget(line, row, column + 1, 1, span);
}

void PlaceFileLine(DetailControls& controls, QGridLayout* grid, int row, int index,
                   const QString& caption, QToolButton* browse) {
    QWidget* line = Adopt(controls, index, TextBox::OneLine());
    auto* line_and_button = new QHBoxLayout;
    line_and_button->addWidget(line);
    line_and_button->addWidget(browse);
    grid->addWidget(Caption(index, caption, line), row, 0);
    grid->addLayout(line_and_button, row, 1, 1, 5);
}

void PlaceTextFields(DetailControls& controls, QGridLayout* grid) {
    PlaceLine(controls, grid, 0, 0, 5, kDisplayName, BrowserTexts::tr("Name"));
    PlaceLine(controls, grid, 1, 0, 5, kFileName, BrowserTexts::tr("File Name"));
    PlaceLine(controls, grid, 2, 0, 3, kAuthor, BrowserTexts::tr("Author"));
    PlaceLine(controls, grid, 2, 4, 1, kVersion, BrowserTexts::tr("Ver."));
    PlaceLine(controls, grid, 3, 0, 3, kCompany, BrowserTexts::tr("Company"));
    PlaceLine(controls, grid, 3, 4, 1, kYear, BrowserTexts::tr("Year"));
    controls.Command2 = BrowseButton("Command2", BrowserTexts::tr("Select Image File"));
    controls.Command3 = BrowseButton("Command3", BrowserTexts::tr("Select Flyer File"));
    controls.Command4 = BrowseButton("Command4", BrowserTexts::tr("Select Rules File"));
    PlaceFileLine(controls, grid, 4, kImageFile, BrowserTexts::tr("Image File"), controls.Command2);
    PlaceFileLine(controls, grid, 5, kFlyerFile, BrowserTexts::tr("Flyer File"), controls.Command3);
    PlaceFileLine(controls, grid, 6, kRulesFile, BrowserTexts::tr("Rules File"), controls.Command4);
    PlaceLine(controls, grid, 7, 0, 5, kFileDate, BrowserTexts::tr("File Date"));
    controls.txtDet[kFileDate].SetReadOnly();
}

void PlaceNotes(DetailControls& controls, QGridLayout* grid) {
    QWidget* notes = Adopt(controls, kNotes, TextBox::SeveralLines());
    notes->setMinimumHeight(notes->fontMetrics().lineSpacing() * 3);
    grid->addWidget(Caption(kNotes, BrowserTexts::tr("Notes:"), notes), 8, 0, Qt::AlignTop);
    grid->addWidget(notes, 8, 1, 1, 5);
    grid->setRowStretch(8, 1);
}

void PlaceChecks(DetailControls& controls, QGridLayout* grid) {
    controls.chkFavorite = Named(new QCheckBox(BrowserTexts::tr("Favorite")), "chkFavorite");
    controls.chkPinMame = Named(new QCheckBox(BrowserTexts::tr("PinMame")), "chkPinMame");
    controls.cmdReadInfo = Button("cmdReadInfo", BrowserTexts::tr("View Table Info from VPT"));
    auto* row = new QHBoxLayout;
    row->addWidget(controls.chkFavorite);
    row->addWidget(controls.chkPinMame);
    row->addStretch();
    row->addWidget(controls.cmdReadInfo);
    grid->addLayout(row, 9, 0, 1, 6);
}

// Holds the record's key; it is not shown.
void AddHiddenId(DetailControls& controls, QWidget* page) {
    Adopt(controls, kId, TextBox::OneLine(page))->hide();
    controls.txtDet[kId].SetReadOnly();
}

// The page is in a scroll area so that it does not limit how small the window can be made.
QWidget* BuildDetailsPage(DetailControls& controls) {
    auto* page = new QWidget;
    auto* grid = new QGridLayout(page);
    grid->setContentsMargins(6, 6, 6, 6);
    grid->setVerticalSpacing(3);
    grid->setColumnStretch(1, 3);
    grid->setColumnStretch(2, 1);
    grid->setColumnStretch(3, 1);
    grid->setColumnStretch(5, 1);
    PlaceTextFields(controls, grid);
    PlaceNotes(controls, grid);
    PlaceChecks(controls, grid);
    AddHiddenId(controls, page);
    auto* scroll = new QScrollArea;
    scroll->setWidgetResizable(true);
    scroll->setFrameShape(QFrame::NoFrame);
    scroll->setFocusPolicy(Qt::NoFocus);  // its fields have it
    scroll->setWidget(page);
    // The same screenshot as on its tab: where there is room, nobody has to change tabs to see it.
    controls.imgBeside = Named(new PictureBox(BrowserTexts::tr("Screenshot")), "imgBeside");
    return new WidePage(scroll, controls.imgBeside);
}

QWidget* BuildRulesTextPage(DetailControls& controls) {
    auto* page = new QWidget;
    auto* column = new QVBoxLayout(page);
    column->setContentsMargins(6, 6, 6, 6);
    QWidget* const rules = Adopt(controls, kRulesText, TextBox::SeveralLines());
    rules->setAccessibleName(BrowserTexts::tr("Rules Text"));
    column->addWidget(rules, 1);
    controls.cmdReadRule = Button("cmdReadRule", BrowserTexts::tr("Read From File"));
    controls.cmdSaveRules = Button("cmdSaveRules", BrowserTexts::tr("Save"));
    controls.cmdCancelRules = Button("cmdCancelRules", BrowserTexts::tr("Cancel"));
    auto* row = new QHBoxLayout;
    row->addWidget(controls.cmdReadRule);
    row->addStretch();
    row->addWidget(controls.cmdSaveRules);
    row->addWidget(controls.cmdCancelRules);
    column->addLayout(row);
    return page;
}

QWidget* BuildPicturePage(PictureBox*& picture, const char* name, const QString& caption) {
    auto* page = new QWidget;
    auto* column = new QVBoxLayout(page);
    column->setContentsMargins(6, 6, 6, 6);
    picture = Named(new PictureBox(caption), name);
    column->addWidget(picture);
    return page;
}

QTabWidget* BuildTabs(DetailControls& controls) {
    auto* tabs = Named(new QTabWidget, "DetTab");
    tabs->setUsesScrollButtons(true);
    const auto add_picture = [tabs](PictureBox*& picture, const char* name,
                                    const QString& caption) {
        tabs->addTab(BuildPicturePage(picture, name, caption), caption);
    };
    tabs->addTab(BuildDetailsPage(controls), BrowserTexts::tr("Details"));
    add_picture(controls.imgShot, "imgShot", BrowserTexts::tr("Screenshot"));
    add_picture(controls.imgFlyer, "imgFlyer", BrowserTexts::tr("Flyer"));
    tabs->addTab(BuildRulesTextPage(controls), BrowserTexts::tr("Rules Text"));
    add_picture(controls.imgRules, "imgRules", BrowserTexts::tr("Rules Sheet"));
    return tabs;
}

// The label keeps its space while it is hidden, so that nothing moves when it appears. Its text is
// red: that can be read on a ground that is nearly black only.
QLabel* BuildAlert() {
    auto* alert = Named(new QLabel, "pnlAlert");
    QPalette palette = alert->palette();
    palette.setColor(QPalette::Window, QColor(0x12, 0x0c, 0x0c));
    alert->setPalette(palette);
    alert->setAutoFillBackground(true);
    alert->setAlignment(Qt::AlignCenter);
    alert->setWordWrap(true);
    QSizePolicy policy = alert->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    alert->setSizePolicy(policy);
    alert->setMinimumHeight(alert->fontMetrics().height() + 4);
    alert->hide();
    return alert;
}

QWidget* BuildActionRow(DetailControls& controls) {
    auto* actions = new QWidget;
    auto* row = new QHBoxLayout(actions);
    row->setContentsMargins(0, 0, 0, 0);
    controls.cmdChange = Button("cmdChange", BrowserTexts::tr("Save"));
    controls.cmdCancel = Button("cmdCancel", BrowserTexts::tr("Cancel"));
    controls.cmdDelete = Button("cmdDelete", BrowserTexts::tr("Delete"));
    row->addStretch();
    row->addWidget(controls.cmdChange);
    row->addWidget(controls.cmdCancel);
    row->addWidget(controls.cmdDelete);
    return actions;
}

}  // namespace

DetailControls BuildDetailControls(QWidget* panel) {
    DetailControls controls;
    controls.pnlAlert = BuildAlert();
    controls.DetTab = BuildTabs(controls);
    QWidget* actions = BuildActionRow(controls);
    auto* column = new QVBoxLayout(panel);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(3);
    column->addWidget(controls.pnlAlert);
    column->addWidget(controls.DetTab, 1);
    column->addWidget(actions);
    // The rules text has its own Save and Cancel; the record's are hidden there.
    QObject::connect(controls.DetTab, &QTabWidget::currentChanged, actions,
                     [actions](int tab) { actions->setVisible(tab != kRulesTextTab); });
    return controls;
}

}  // namespace browser
