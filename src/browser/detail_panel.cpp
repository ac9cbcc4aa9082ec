#include "browser/detail_panel.h"

#include "base/scope_guards.h"
#include "browser/detail_tabs.h"
#include "browser/notes_summary.h"
#include "browser/rules_file.h"
#include "browser/texts.h"
#include "catalogue/error_report.h"
#include "catalogue/path_names.h"
#include "catalogue/process_values.h"
#include "jet/errors.h"
#include "platform/files.h"
#include "thumbnails/table_picture.h"
#include "widgets/object_names.h"

#include <QtWidgets/QScrollArea>
#include <QtWidgets/QScrollBar>
#include <QtWidgets/QStyle>

namespace browser {
namespace {

using widgets::PictureBox;
using widgets::PictureSource;
using widgets::TextBox;

constexpr std::size_t At(int index) {
    return static_cast<std::size_t>(index);
}

// Names of the steps in which pictures are loaded.
constexpr QStringView kLoadingScreenShot = u"Loading Screen Shot";
constexpr QStringView kLoadingFlyer = u"Loading Flyer Pic";
constexpr QStringView kLoadingRules = u"Loading Rules PIc";

platform::Message DeleteQuestion() {
    platform::Message question;
    question.text = BrowserTexts::tr("Delete the current table?");
    question.title = BrowserTexts::tr("Warning");
    question.buttons = platform::MessageButtons::kYesNo;
    question.no_is_default = true;
    return question;
}

}  // namespace

DetailPanel::DetailPanel(catalogue::Catalogue& catalogue, platform::UserPrompts& prompts,
                         DetailHost& host, QWidget* parent)
    : QWidget(parent), catalogue_(catalogue), prompts_(prompts), host_(host),
      controls_(BuildDetailControls(this)) {
    ConnectFields();
    ConnectButtons();
    EnableFields();
}

void DetailPanel::ConnectFields() {
    const auto edited = [this] { MarkEdited(); };
    for (const TextBox& box : controls_.txtDet)
        box.OnChange(edited);
    for (QCheckBox* box : {controls_.chkFavorite, controls_.chkPinMame})
        connect(box, &QCheckBox::toggled, box, edited);
}

void DetailPanel::ConnectButtons() {
    const auto on_click = [](QAbstractButton* button, auto action) {
        connect(button, &QAbstractButton::clicked, button, action);
    };
    connect(controls_.imgShot, &PictureBox::Changed, controls_.imgBeside,
            [this] { controls_.imgBeside->ShowSameAs(*controls_.imgShot); });
    on_click(controls_.cmdChange, [this] { Save(); });
    on_click(controls_.cmdCancel, [this] { Cancel(); });
    on_click(controls_.cmdDelete, [this] { Delete(); });
    on_click(controls_.cmdReadInfo, [this] { Q_EMIT ViewTableInfoClicked(); });
    on_click(controls_.cmdReadRule, [this] { ReadRules(); });
    on_click(controls_.cmdSaveRules, [this] { SaveRules(); });
    on_click(controls_.cmdCancelRules, [this] { Cancel(); });
    on_click(controls_.Command2,
             [this] { ChoosePicture(kImageFile, BrowserTexts::tr("Select Image File")); });
    on_click(controls_.Command3,
             [this] { ChoosePicture(kFlyerFile, BrowserTexts::tr("Select Flyer File")); });
    on_click(controls_.Command4,
             [this] { ChoosePicture(kRulesFile, BrowserTexts::tr("Select Rules File")); });
}

void DetailPanel::ShowTableDetails(const QString& file_name) {
    EmptyControls();
    const bool is_filled = FillFields(file_name);
    EnableFields();
    if (is_filled) ShowPictures();
}

// Without a record nothing can be typed that would then be lost. Not before the new record is
// there, as the field with the focus would lose it.
void DetailPanel::EnableFields() {
    const bool has_record = shows_record();
    if (has_record) {
        const FieldLimits limits = LimitsOfFields(connection());
        for (std::size_t i = 0; i < limits.size(); ++i)
            controls_.txtDet[i].LimitTyping(limits[i]);
    }
    for (const TextBox& box : controls_.txtDet)
        box.widget()->setEnabled(has_record);
    // Not the Cancel buttons: they are the way out of every edit.
    const std::initializer_list<QWidget*> others = {
        controls_.chkFavorite, controls_.chkPinMame,  controls_.Command2,
        controls_.Command3,    controls_.Command4,    controls_.cmdChange,
        controls_.cmdDelete,   controls_.cmdReadRule, controls_.cmdSaveRules};
    for (QWidget* other : others)
        other->setEnabled(has_record);
}

int DetailPanel::WidthOfFields() const {
    const auto* const scroll = findChild<QScrollArea*>();
    const int frame = 2 * style()->pixelMetric(QStyle::PM_DefaultFrameWidth, nullptr, this);
    return scroll->widget()->minimumSizeHint().width() +
           scroll->verticalScrollBar()->sizeHint().width() + 2 * frame;
}

bool DetailPanel::FillFields(const QString& file_name) {
    const base::ScopedFlag loading(LoadingDetails);
    TableRecord record;
    const base::Status loaded = LoadTableRecord(connection(), file_name, record);
    ShowRecord(record);
    if (!loaded.ok()) return ShowFailure(loaded);
    host_.SetComments(SummariseNotes(record.fields[kNotes]));
    return true;
}

// Shows a failure in the status bar, except for a missing row, which the empty panel shows. Returns
// false for the caller to return.
bool DetailPanel::ShowFailure(const base::Status& failure) const {
    if (!jet::Is(failure, jet::ErrorNumber::kNoCurrentRecord)) host_.ShowFailure(failure);
    return false;
}

QString DetailPanel::NotesSummary(const QString& file_name) const {
    auto summary = browser::NotesSummary(connection(), file_name);
    if (summary.ok()) return *summary;
    ShowFailure(summary.status());
    return {};
}

void DetailPanel::ShowRecord(const TableRecord& record) {
    for (std::size_t i = 0; i < record.fields.size(); ++i)
        controls_.txtDet[i].SetText(record.fields[i]);
    controls_.chkPinMame->setChecked(record.pin_mame);
    controls_.chkFavorite->setChecked(record.favorite);
    if (record.checks_read)
        host_.SetStatusText(kNamePanel,
                            BrowserTexts::tr("Current Table: %1").arg(record.fields[kDisplayName]));
    if (record.times_played)
        host_.SetStatusText(kTimesPlayedPanel,
                            BrowserTexts::tr("Times Played: %1").arg(*record.times_played));
    if (record.last_played)
        host_.SetStatusText(kLastPlayedPanel,
                            BrowserTexts::tr("Last Played: %1").arg(*record.last_played));
}

// The picture file that a field names; empty if it names none.
PictureSource DetailPanel::FileIn(DetailField field) const {
    const QString path = catalogue_.values->paths.Of(controls_.txtDet[field].Text());
    return thumbnails::IsUsablePictureFile(path) ? PictureSource::File(path) : PictureSource();
}

// Without an image file, the screenshot in the table file is shown; if that is damaged, the
// sequence continues.
widgets::PictureStep DetailPanel::ScreenshotStep() const {
    const catalogue::LocalPaths& paths = catalogue_.values->paths;
    auto source = thumbnails::ScreenshotOf({paths.Of(controls_.txtDet[kImageFile].Text()),
                                            paths.Of(controls_.txtDet[kFileName].Text())});
    const bool is_file = !source.path.isEmpty();
    return {controls_.imgShot, std::move(source), kLoadingScreenShot, is_file};
}

// The size of a picture on a hidden tab, in device pixels: that of the current tab.
QSize DetailPanel::RoomOfHiddenPictures() const {
    const QWidget* page = controls_.DetTab->currentWidget();
    return (QSizeF(page->size()) * page->devicePixelRatioF()).toSize();
}

void DetailPanel::ShowPictures() {
    pictures_.Start({ScreenshotStep(),
                     {controls_.imgFlyer, FileIn(kFlyerFile), kLoadingFlyer},
                     {controls_.imgRules, FileIn(kRulesFile), kLoadingRules}},
                    RoomOfHiddenPictures());
    controls_.DetTab->setEnabled(true);
}

void DetailPanel::ClearTableDetails() {
    EmptyControls();
    EnableFields();
}

void DetailPanel::EmptyControls() {
    const base::ScopedFlag loading(LoadingDetails);
    for (TextBox& box : controls_.txtDet)
        box.SetText({});
    controls_.chkPinMame->setChecked(false);
    controls_.chkFavorite->setChecked(false);
    pictures_.Stop();
    for (PictureBox* box : {controls_.imgShot, controls_.imgFlyer, controls_.imgRules})
        box->ShowPlaceholder();
    for (const int panel : {kNamePanel, kTimesPlayedPanel, kLastPlayedPanel})
        host_.SetStatusText(panel, {});
    host_.SetComments({});
}

void DetailPanel::MarkEdited() {
    if (!LoadingDetails) SetRecordChanged(true);
}

void DetailPanel::SetRecordChanged(bool changed) {
    controls_.pnlAlert->hide();
    host_.LockForEdit(changed);
    for (int tab = 0; tab < kDetailTabCount; ++tab)
        controls_.DetTab->setTabEnabled(tab, !changed || tab == controls_.DetTab->currentIndex());
    if (!changed) return;
    host_.SetComments({});
    QPalette red = controls_.pnlAlert->palette();
    red.setColor(QPalette::WindowText, QColor(255, 0, 0));
    controls_.pnlAlert->setPalette(red);
    controls_.pnlAlert->setText(
        BrowserTexts::tr("Record Changed! Click CANCEL or SAVE to continue."));
    controls_.pnlAlert->show();
}

TableRecord DetailPanel::EditedRecord() const {
    TableRecord record;
    for (std::size_t i = 0; i < record.fields.size(); ++i)
        record.fields[i] = controls_.txtDet[i].Text();
    record.pin_mame = controls_.chkPinMame->isChecked();
    record.favorite = controls_.chkFavorite->isChecked();
    return record;
}

// Shows the tab of the field and makes it the one that stays enabled during the edit.
void DetailPanel::GoToField(DetailField field) {
    if (controls_.DetTab->currentIndex() != kDetailsTab) {
        controls_.DetTab->setTabEnabled(kDetailsTab, true);
        controls_.DetTab->setCurrentIndex(kDetailsTab);
        SetRecordChanged(record_changed());
    }
    controls_.txtDet[field].FocusAndSelectAll();
}

void DetailPanel::Save() {
    const TableRecord record = EditedRecord();
    if (record.fields[kId].isEmpty()) return;
    if (const auto field = FirstMissingFile(record, catalogue_.values->paths)) {
        prompts_.Ask({BrowserTexts::tr("Please select a valid file name or leave blank"), {}});
        return GoToField(*field);
    }
    if (const auto saved = SaveTableRecord(connection(), record); !saved.ok())
        return ShowSaveFailure(record, saved);
    host_.RecordStored(record);
    EndEdit(record.fields[kFileName]);
}

// Of a text that is too long, it says in which field.
void DetailPanel::ShowSaveFailure(const TableRecord& record, const base::Status& failure) {
    const auto field = jet::Is(failure, jet::ErrorNumber::kFieldTooSmall)
                           ? FirstTooLong(record, LimitsOfFields(connection()))
                           : std::nullopt;
    if (!field) return catalogue::ShowError(prompts_, failure);
    const std::string text = FieldCaption(*field).toStdString() + ": " + failure.message();
    catalogue::ShowError(prompts_, {failure.code(), text, failure.number()});
    GoToField(*field);
}

QString DetailPanel::FieldCaption(DetailField field) const {
    const auto* const label = findChild<QLabel*>(widgets::ElementName("Label2", field));
    return label == nullptr ? QString() : label->text().remove(u':');
}

void DetailPanel::SaveRules() {
    const QString id = controls_.txtDet[kId].Text();
    if (id.isEmpty()) return;
    const auto saved = SaveRulesText(connection(), id, controls_.txtDet[kRulesText].Text());
    if (!saved.ok()) return catalogue::ShowError(prompts_, saved);
    EndEdit(host_.SelectedTag());
}

// Shows the stored record.
void DetailPanel::EndEdit(const QString& file_name) {
    SetRecordChanged(false);
    host_.RememberSelectedNode();
    ShowTableDetails(file_name);
}

void DetailPanel::Cancel() {
    ShowTableDetails(host_.SelectedTag());
    SetRecordChanged(false);
}

void DetailPanel::SaveTab() {
    if (CurrentTab() == kRulesTextTab)
        SaveRules();
    else
        Save();
}

void DetailPanel::StartEdit() {
    if (CurrentTab() == kRulesTextTab)
        controls_.txtDet[kRulesText].widget()->setFocus();
    else
        GoToField(kDisplayName);
}

std::optional<KeptEdit> DetailPanel::CurrentEdit() const {
    if (!record_changed() || !shows_record()) return std::nullopt;
    return KeptEdit{EditedRecord(), CurrentTab()};
}

void DetailPanel::GoOnWith(const KeptEdit& edit) {
    if (!shows_record() || edit.record.fields[kId] != controls_.txtDet[kId].Text()) return;
    SetCurrentTab(edit.tab);
    for (std::size_t i = 0; i < edit.record.fields.size(); ++i)
        if (controls_.txtDet[i].Text() != edit.record.fields[i])
            controls_.txtDet[i].SetText(edit.record.fields[i]);
    controls_.chkPinMame->setChecked(edit.record.pin_mame);
    controls_.chkFavorite->setChecked(edit.record.favorite);
    SetRecordChanged(true);
}

base::Status DetailPanel::TakeFile(const QString& path, bool is_rules_text) {
    const int tab = is_rules_text ? kRulesTextTab : kDetailsTab;
    if (record_changed() && CurrentTab() != tab)
        return {base::StatusCode::kBusy,
                BrowserTexts::tr("Save or cancel the edit first.").toStdString()};
    QString text = catalogue_.values->paths.Stored(path);
    if (is_rules_text) {
        ASSIGN_OR_RETURN(text, ReadRulesFile(path));
    }
    SetCurrentTab(tab);
    SetDetailText(is_rules_text ? kRulesText : kImageFile, text);
    return {};
}

bool DetailPanel::shows_record() const {
    return !controls_.txtDet[kId].Text().isEmpty();
}

void DetailPanel::Delete() {
    const QString id = controls_.txtDet[kId].Text();
    if (id.isEmpty()) return;
    if (prompts_.Ask(DeleteQuestion()) != platform::MessageAnswer::kYes) return;
    if (const auto deleted = DeleteRecord(connection(), id); !deleted.ok())
        return catalogue::ShowError(prompts_, deleted);
    SetRecordChanged(false);
    host_.RefreshTree();
}

void DetailPanel::ChoosePicture(DetailField field, const QString& title) {
    platform::FileDialog dialog;
    dialog.name = QStringLiteral("ComDialog");
    dialog.title = title;
    dialog.filter =
        BrowserTexts::tr("Pictures") + QStringLiteral(" (*.bmp;*.jpg;*.gif)|*.bmp;*.jpg;*.gif");
    dialog.file_name = catalogue_.values->paths.Of(controls_.txtDet[field].Text());
    dialog.folder = catalogue_.values->LastPictureDir;
    const QString chosen = prompts_.ChooseFileToOpen(dialog);
    if (chosen.isEmpty()) return;
    catalogue_.values->LastPictureDir = catalogue::GetFolder(chosen);
    controls_.txtDet[field].SetText(catalogue_.values->paths.Stored(chosen));
}

void DetailPanel::ReadRules() {
    platform::FileDialog dialog;
    dialog.name = QStringLiteral("ComDialog");
    dialog.title = BrowserTexts::tr("Select Rules File");
    dialog.filter = BrowserTexts::tr("Text") + QStringLiteral(" (*.txt)|*.txt");
    dialog.folder = catalogue_.values->last_folders.rules;
    const QString chosen = prompts_.ChooseFileToOpen(dialog);
    if (!platform::FileExists(chosen)) return;
    catalogue_.values->last_folders.rules = catalogue::GetFolder(chosen);
    const auto text = ReadRulesFile(chosen);
    if (!text.ok()) return catalogue::ShowError(prompts_, text.status());
    controls_.txtDet[kRulesText].SetText(*text);
}

jet::Connection& DetailPanel::connection() const {
    return *catalogue_.CatalogueConnection;
}

bool DetailPanel::record_changed() const {
    return !controls_.pnlAlert->isHidden();
}

QString DetailPanel::DetailText(int index) const {
    return controls_.txtDet.at(At(index)).Text();
}

void DetailPanel::SetDetailText(int index, const QString& text) {
    controls_.txtDet.at(At(index)).SetText(text);
}

bool DetailPanel::FavoriteChecked() const {
    return controls_.chkFavorite->isChecked();
}

int DetailPanel::CurrentTab() const {
    return controls_.DetTab->currentIndex();
}

void DetailPanel::SetCurrentTab(int tab) {
    controls_.DetTab->setCurrentIndex(tab);
}

}  // namespace browser
