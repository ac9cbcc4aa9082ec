// DetailPanel: the tabbed right-hand side of the main window: the record of the selected table with
// its pictures, notes and rules, and its editing. The window around it is reached through
// DetailHost only.
#pragma once

#include "browser/detail_controls.h"
#include "browser/status_panels.h"
#include "browser/table_record.h"
#include "catalogue/pin_subs.h"
#include "platform/user_prompts.h"
#include "widgets/picture_sequence.h"

#include <QtWidgets/QWidget>

namespace browser {

// What the panel needs of the window that holds it.
class DetailHost {
public:
    virtual ~DetailHost() = default;
    // Of the tree's selected node; empty when none is selected.
    virtual QString SelectedTag() const = 0;
    virtual QString SelectedText() const = 0;
    // Makes the selected node the one that the next start shows again.
    virtual void RememberSelectedNode() = 0;
    // The record with this id has this FileName from now on.
    virtual void FileNameStored(const QString& id, const QString& file_name) = 0;
    virtual void RefreshTree() = 0;
    // `panel` of the status bar, see status_panels.h.
    virtual void SetStatusText(int panel, const QString& text) = 0;
    // Says a failure that no box tells in the status bar.
    virtual void ShowFailure(const base::Status& failure) = 0;
    // The label lblComments under the tree.
    virtual void SetComments(const QString& text) = 0;
    // Locks (true) or frees the filters, the operator, the tree, Refresh Tree, Play and the File
    // and Utilities menus.
    virtual void LockForEdit(bool changed) = 0;
};

class DetailPanel : public QWidget {
    Q_OBJECT

public:
    // All arguments are borrowed and outlive the panel.
    DetailPanel(catalogue::Catalogue& catalogue, platform::UserPrompts& prompts, DetailHost& host,
                QWidget* parent = nullptr);

    void ShowTableDetails(const QString& file_name);
    void ClearTableDetails();
    void SetRecordChanged(bool changed);
    bool record_changed() const;

    // Text of a field, 0..12; SetDetailText counts as an edit of the user.
    QString DetailText(int index) const;
    void SetDetailText(int index, const QString& text);
    bool FavoriteChecked() const;

    // The actions of cmdChange ("Save"), cmdSaveRules and cmdDelete.
    void Save();
    void SaveRules();
    void Delete();

    int CurrentTab() const;
    void SetCurrentTab(int tab);

    // For the label under the tree; a failure is said in the status bar.
    QString NotesSummary(const QString& file_name) const;

Q_SIGNALS:
    // The button "View Table Info from VPT".
    void ViewTableInfoClicked();

private:
    void ConnectFields();
    void ConnectButtons();
    jet::Connection& connection() const;

    bool FillFields(const QString& file_name);
    bool SayFailure(const base::Status& failure) const;
    void ShowRecord(const TableRecord& record);
    void ShowPictures();
    widgets::PictureSource FileIn(DetailField field) const;
    widgets::PictureStep ScreenshotStep() const;
    QSize RoomOfHiddenPictures() const;

    void MarkEdited();
    TableRecord EditedRecord() const;
    void GoToField(DetailField field);
    void EndEdit(const QString& file_name);
    void Cancel();
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
