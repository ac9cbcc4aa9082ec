#include "tableinfo/frmReadVPT.h"

#include "platform/shown_text.h"
#include "tableinfo/storage_tools.h"
#include "tableinfo/texts.h"
#include "widgets/object_names.h"
#include "widgets/picture_box.h"
#include "widgets/text_box.h"
#include "widgets/window_place.h"

#include <QtWidgets/QComboBox>
#include <QtWidgets/QGridLayout>
#include <QtWidgets/QHBoxLayout>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QVBoxLayout>

namespace tableinfo {
namespace {

using widgets::ElementName;
using widgets::Named;
using widgets::PictureBox;
using widgets::PictureSource;
using widgets::TextBox;
using widgets::WholeTextEdit;

constexpr QSize kOpeningSize(720, 600);

QPushButton* Button(const char* name, const QString& caption) {
    auto* button = Named(new QPushButton(caption), name);
    button->setAutoDefault(false);
    return button;
}

// The element `index` of txtInfo.
TextBox MakeInfoBox(int index) {
    const bool several_lines = kInfoBoxes[static_cast<std::size_t>(index)].several_lines;
    const TextBox box = several_lines ? TextBox::SeveralLines() : TextBox::OneLine();
    box.widget()->setObjectName(ElementName("txtInfo", index));
    if (several_lines)
        box.widget()->setMinimumHeight(box.widget()->fontMetrics().lineSpacing() * 3);
    return box;
}

}  // namespace

struct frmReadVPT::Controls {
    std::array<TextBox, kInfoBoxCount> txtInfo;
    QComboBox* cboCustom = Named(new QComboBox, "cboCustom");
    WholeTextEdit* txtCustom = Named(new WholeTextEdit, "txtCustom");
    PictureBox* picThm = Named(new PictureBox(TableinfoTexts::tr("Picture Preview")), "picThm");
    QPushButton* cmdUpdateFace =
        Button("cmdUpdateFace", TableinfoTexts::tr("Update Tavolo Details"));
    QPushButton* cmdMail = Button("cmdMail", TableinfoTexts::tr("Send Mail"));
    QPushButton* cmdSite = Button("cmdSite", TableinfoTexts::tr("Go To Site"));
    QLabel* lblResult = Named(new QLabel, "lblResult");
    QPushButton* Command1 = Button("Command1", TableinfoTexts::tr("Close"));

    // Columns of the grid: captions, boxes, buttons, picture. Rows: the boxes by index, then the
    // custom fields.
    void PlaceInfoBox(QGridLayout* grid, int index, int columns);
    void PlaceLines(QGridLayout* grid);
    void PlacePicture(QGridLayout* grid);
    void PlaceLongTexts(QGridLayout* grid);
    void PlaceCustomFields(QGridLayout* grid);
    QLayout* Buttons();
};

void frmReadVPT::Controls::PlaceInfoBox(QGridLayout* grid, int index, int columns) {
    const auto i = static_cast<std::size_t>(index);
    txtInfo[i] = MakeInfoBox(index);
    auto* label = new QLabel(platform::Shown<TableinfoTexts>(kInfoBoxes[i].label));
    label->setObjectName(ElementName("lblInfo", index));
    label->setBuddy(txtInfo[i].widget());
    grid->addWidget(label, index, 0, kInfoBoxes[i].several_lines ? Qt::AlignTop : Qt::AlignVCenter);
    grid->addWidget(txtInfo[i].widget(), index, 1, 1, columns);
}

void frmReadVPT::Controls::PlaceLines(QGridLayout* grid) {
    for (int index = 0; index < kMailBox; ++index)
        PlaceInfoBox(grid, index, 2);
    PlaceInfoBox(grid, kMailBox, 1);
    grid->addWidget(cmdMail, kMailBox, 2);
    PlaceInfoBox(grid, kSiteBox, 1);
    grid->addWidget(cmdSite, kSiteBox, 2);
}

void frmReadVPT::Controls::PlacePicture(QGridLayout* grid) {
    auto* column = new QVBoxLayout;
    auto* label = new QLabel(TableinfoTexts::tr("Picture Preview"));
    label->setBuddy(picThm);
    column->addWidget(label);
    picThm->setMinimumSize(200, 120);
    column->addWidget(picThm, 1);
    grid->addLayout(column, 0, 3, kSiteBox + 1, 1);
}

void frmReadVPT::Controls::PlaceLongTexts(QGridLayout* grid) {
    for (int index = kSiteBox + 1; index < kInfoBoxCount; ++index) {
        PlaceInfoBox(grid, index, 3);
        grid->setRowStretch(index, index == kInfoBoxCount - 1 ? 3 : 1);
    }
}

void frmReadVPT::Controls::PlaceCustomFields(QGridLayout* grid) {
    auto* label = new QLabel(TableinfoTexts::tr("Custom:"));
    label->setBuddy(cboCustom);
    txtCustom->setAccessibleName(TableinfoTexts::tr("Text of the custom field"));
    txtCustom->setMinimumHeight(txtCustom->fontMetrics().lineSpacing() * 3);
    txtCustom->setMaximumHeight(txtCustom->fontMetrics().lineSpacing() * 5);
    grid->addWidget(label, kInfoBoxCount, 0, Qt::AlignTop);
    grid->addWidget(cboCustom, kInfoBoxCount, 1, Qt::AlignTop);
    grid->addWidget(txtCustom, kInfoBoxCount, 2, 1, 2);
}

QLayout* frmReadVPT::Controls::Buttons() {
    auto* row = new QHBoxLayout;
    row->addWidget(cmdUpdateFace);
    row->addWidget(lblResult);
    row->addStretch();
    row->addWidget(Command1);
    return row;
}

frmReadVPT::frmReadVPT(const QString& path, platform::UserPrompts& prompts, platform::Shell& shell,
                       DetailTarget& details, QWidget* parent)
    : QDialog(parent), path_(path), prompts_(prompts), shell_(shell), details_(details),
      controls_(std::make_unique<Controls>()) {
    setObjectName(QStringLiteral("frmReadVPT"));
    setWindowTitle(TableinfoTexts::tr("Table Information"));
    BuildControls();
    ConnectControls();
    LoadInformation();
    resize(kOpeningSize);
    widgets::FitToScreen(*this);
}

frmReadVPT::~frmReadVPT() = default;

void frmReadVPT::BuildControls() {
    auto* grid = new QGridLayout;
    grid->setColumnStretch(1, 3);
    grid->setColumnStretch(3, 3);
    controls_->PlaceLines(grid);
    controls_->PlacePicture(grid);
    controls_->PlaceLongTexts(grid);
    controls_->PlaceCustomFields(grid);
    auto* column = new QVBoxLayout(this);
    column->addLayout(grid, 1);
    column->addLayout(controls_->Buttons());
}

void frmReadVPT::ConnectControls() {
    connect(controls_->cboCustom, &QComboBox::activated, this, &frmReadVPT::ShowCustomText);
    connect(controls_->cmdUpdateFace, &QPushButton::clicked, this, &frmReadVPT::UpdateDetails);
    connect(controls_->cmdMail, &QPushButton::clicked, this, &frmReadVPT::SendMail);
    connect(controls_->cmdSite, &QPushButton::clicked, this, &frmReadVPT::GoToSite);
    connect(controls_->Command1, &QPushButton::clicked, this, &QDialog::close);
}

void frmReadVPT::LoadInformation() {
    TableInfoFile file(path_);
    ShowCustomNames(file);
    if (const auto screenshot = file.Screenshot())
        controls_->picThm->SetPicture(PictureSource::Bytes(*screenshot)).Ignore();
    for (std::size_t i = 0; i < kInfoBoxes.size(); ++i)
        controls_->txtInfo[i].SetText(file.ReadStream(QString::fromUtf16(kInfoBoxes[i].tag)));
}

void frmReadVPT::ShowCustomNames(TableInfoFile& file) {
    QStringList names;
    file.ListCustomStreams(names);
    controls_->cboCustom->addItems(names);
    controls_->cboCustom->setCurrentIndex(-1);  // nothing is chosen yet
    controls_->cboCustom->setEnabled(!names.isEmpty());
}

QString frmReadVPT::ReadStream(const QString& name) const {
    return ReadTableInfoStream(path_, name);
}

QString frmReadVPT::InfoText(int index) const {
    return controls_->txtInfo[static_cast<std::size_t>(index)].Text();
}

void frmReadVPT::ShowCustomText() {
    controls_->txtCustom->SetWholeText(ReadStream(controls_->cboCustom->currentText()));
}

void frmReadVPT::UpdateDetails() {
    InfoTexts texts;
    for (int index = 0; index < kInfoBoxCount; ++index)
        texts[static_cast<std::size_t>(index)] = InfoText(index);
    controls_->lblResult->clear();
    const bool is_stored = CopyIntoDetails(
        texts, [this](const QString& name) { return ReadStream(name); }, details_);
    controls_->lblResult->setText(is_stored ? TableinfoTexts::tr("The details were updated.")
                                            : TableinfoTexts::tr("The details were not updated."));
}

void frmReadVPT::SendMail() {
    OpenAddress(MailAddress(InfoText(kMailBox), InfoText(kNameBox)));
}

void frmReadVPT::GoToSite() {
    OpenAddress(SiteAddress(InfoText(kSiteBox)));
}

// The address comes from an untrusted file; Shell::Open takes it as a single argument.
void frmReadVPT::OpenAddress(const QString& address) {
    if (shell_.Open(address).ok()) return;
    platform::Message message;
    message.text = TableinfoTexts::tr("Cannot open site: %1").arg(address);
    message.icon = platform::MessageIcon::kInformation;
    prompts_.Ask(message);
}

}  // namespace tableinfo
