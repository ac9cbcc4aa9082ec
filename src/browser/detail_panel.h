// DetailPanel: the tabbed right-hand side of the main window. Shows the record of the selected
// table with its pictures, notes and rules, and edits it. It reaches the window through DetailHost
// only.
#pragma once

#include "browser/detail_controls.h"
#include "browser/kept_edit.h"
#include "browser/status_panels.h"
#include "browser/table_record.h"
#include "catalogue/catalogue.h"
#include "platform/user_prompts.h"
#include "widgets/picture_sequence.h"

#include <QtWidgets/QWidget>

namespace browser {

// What the panel needs of the window.
class DetailHost {
public:
    virtual ~DetailHost() = default;
    // Tag and text of the tree's selected node; empty when none is selected.
    virtual QString SelectedTag() const = 0;
    virtual QString SelectedText() const = 0;
    // Makes the selected node the one that the next start selects.
    virtual void RememberSelectedNode() = 0;
    // Called when the record has been stored.
    virtual void RecordStored(const TableRecord& record) = 0;
    virtual void RefreshTree() = 0;
    // `panel` of the status bar, see status_panels.h.
    virtual void SetStatusText(int panel, const QString& text) = 0;
    // Shows in the status bar, instead of a box, that the table cannot be read.
    virtual void ShowFailure(const base::Status& failure) = 0;
    // Sets the text of lblComments, the label under the tree.
    virtual void SetComments(const QString& text) = 0;
    // Disables (true) or enables the filters, the operator, the tree, Refresh Tree, Play and the
    // File and Utilities menus.
    virtual void LockForEdit(bool changed) = 0;
};

class DetailPanel : public QWidget {
    Q_OBJECT

public:
    // All arguments are borrowed and outlive the panel.
    DetailPanel(catalogue::Catalogue& catalogue, platform::UserPrompts& prompts, DetailHost& host,
                QWidget* parent = nullptr);

    // Shows the first record with this FileName; without one the fields are disabled. Failures are
    // shown in the status bar.
    void ShowTableDetails(const QString& file_name);
    void ClearTableDetails();
    // True: shows the warning, locks the window and the other tabs; false: frees them.
    void SetRecordChanged(bool changed);
    bool record_changed() const;

    // The text of a field, see DetailField. SetDetailText marks the record as changed, as an edit
    // by the user does.
    QString DetailText(int index) const;
    void SetDetailText(int index, const QString& text);
    bool FavoriteChecked() const;

    // The actions of cmdChange ("Save"), cmdSaveRules, cmdDelete and the two Cancel buttons.
    void Save();
    void SaveRules();
    void Delete();
    void Cancel();
    // Save or SaveRules, whichever belongs to the current tab.
    void SaveTab();
    // Puts the focus into the first field of the current tab, or of the details where it has none.
    void StartEdit();
    bool shows_record() const;
    // Pixels that the panel needs so that the details need not be scrolled sideways.
    int WidthOfFields() const;
    // The edit in progress, to be gone on with later; nullopt: there is none.
    std::optional<KeptEdit> CurrentEdit() const;
    // Goes on with an edit. Does nothing unless its record is shown.
    void GoOnWith(const KeptEdit& edit);
    // Puts a file that was dropped into the edit: the path of a picture as the screenshot, or the
    // content of a text as the rules. kBusy: another tab is being edited. Requires: shows_record().
    base::Status TakeFile(const QString& path, bool is_rules_text);

    int CurrentTab() const;
    void SetCurrentTab(int tab);

    // The text for lblComments. A failure is shown in the status bar and gives an empty text.
    QString NotesSummary(const QString& file_name) const;

Q_SIGNALS:
    // The button "View Table Info from VPT" was clicked.
    void ViewTableInfoClicked();

private:
    void ConnectFields();
    void ConnectButtons();
    jet::Connection& connection() const;

    bool FillFields(const QString& file_name);
    bool ShowFailure(const base::Status& failure) const;
    void EmptyControls();
    void EnableFields();
    void ShowRecord(const TableRecord& record);
    void ShowPictures();
    widgets::PictureSource FileIn(DetailField field) const;
    widgets::PictureStep ScreenshotStep() const;
    QSize RoomOfHiddenPictures() const;

    void MarkEdited();
    TableRecord EditedRecord() const;
    void ShowSaveFailure(const TableRecord& record, const base::Status& failure);
    QString FieldCaption(DetailField field) const;
    void GoToField(DetailField field);
    void EndEdit(const QString& file_name);
    void ChoosePicture(DetailField field, const QString& title);
    void ReadRules();

    catalogue::Catalogue& catalogue_;
    platform::UserPrompts& prompts_;
    DetailHost& host_;
    DetailControls controls_;
    bool LoadingDetails = false;
    widgets::PictureSequence pictures_;
};

}  // namespace browser
