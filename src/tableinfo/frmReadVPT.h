// frmReadVPT, "Table Information": what the author of one table file wrote about it. The texts can
// be changed before they are copied into the main window's details; the table file itself is never
// written.
#pragma once

#include "platform/shell.h"
#include "platform/user_prompts.h"
#include "tableinfo/table_info_dialog_logic.h"

#include <QtWidgets/QDialog>

#include <memory>

namespace tableinfo {

class TableInfoFile;

class frmReadVPT : public QDialog {
    Q_OBJECT

public:
    // Shows the information of the table file `path` (full path). The references outlive the
    // dialog.
    frmReadVPT(const QString& path, platform::UserPrompts& prompts, platform::Shell& shell,
               DetailTarget& details, QWidget* parent = nullptr);
    ~frmReadVPT() override;

private:
    struct Controls;

    void BuildControls();
    void ConnectControls();
    void LoadInformation();
    void ShowCustomNames(TableInfoFile& file);

    void ShowCustomText();
    void UpdateDetails();
    void SendMail();
    void GoToSite();
    void OpenAddress(const QString& address);
    QString InfoText(int index) const;
    QString ReadStream(const QString& name) const;

    const QString path_;
    platform::UserPrompts& prompts_;
    platform::Shell& shell_;
    DetailTarget& details_;
    std::unique_ptr<Controls> controls_;
};

}  // namespace tableinfo
