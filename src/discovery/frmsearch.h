// frmsearch: the dialog that finds new table files. One scan for each opening of the dialog.
#pragma once

#include "base/status.h"
#include "catalogue/catalogue.h"
#include "discovery/folder_scan.h"
#include "platform/user_events.h"
#include "platform/user_prompts.h"

#include <QtWidgets/QDialog>

#include <cstdint>
#include <functional>

class QLabel;
class QListWidget;
class QPushButton;

namespace discovery {

class frmsearch : public QDialog, private ScanObserver, private platform::UserEvents {
    Q_OBJECT

public:
    // `catalogue` and `prompts` are borrowed and outlive the dialog. `refresh_tree` runs the main
    // window's selection again; it is called after each scan. Shown modally by exec().
    frmsearch(catalogue::Catalogue& catalogue, platform::UserPrompts& prompts,
              std::function<void()> refresh_tree, QWidget* parent = nullptr);

    // What the scan could not read; ok: nothing.
    base::Status passed_over() const { return passed_over_.Summary(); }

    // Every way of closing the dialog calls this; ignored while a scan runs.
    void done(int result) override;

private:
    void BuildControls();
    void BuildLayout();
    void Scan();
    base::Status WalkFolders();
    void Remember(const QString& folder);
    base::Status ReadTableInformation();
    void ShowResult(const base::Status& done);

    // ScanObserver
    void FolderQueued(const QString& folder) override;
    void ListingFolder(const QString& folder) override;
    void FolderListed() override;
    void TableAdded(const QString& display_name, const QString& checksum_text) override;
    // UserEvents
    void ProcessEvents() override;

    catalogue::Catalogue& catalogue_;
    platform::UserPrompts& prompts_;
    std::function<void()> refresh_tree_;
    QLabel* lblHint_ = nullptr;  // until a scan begins
    QPushButton* cmdgo_ = nullptr;
    QPushButton* cmdExit_ = nullptr;
    QListWidget* lstdirs_ = nullptr;
    QLabel* lbltime_ = nullptr;
    QLabel* Label2_ = nullptr;
    QLabel* lblCRC_ = nullptr;
    bool idle_ = true;
    int run_count_ = 0;  // scans since the dialog was loaded
    std::int64_t found_count_ = 0;
    catalogue::PassedOver passed_over_;
};

}  // namespace discovery
