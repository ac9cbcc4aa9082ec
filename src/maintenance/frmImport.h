// frmImport: starts the import of VPLauncher's data and shows its progress. Cannot be closed while
// an import runs.
#pragma once

#include "base/status.h"
#include "catalogue/catalogue.h"
#include "maintenance/launcher_import.h"
#include "platform/user_events.h"
#include "platform/user_prompts.h"

#include <QtWidgets/QDialog>

#include <functional>

class QComboBox;
class QLabel;
class QPushButton;
class QRadioButton;

namespace maintenance {

class frmImport : public QDialog, private ImportDisplay {
    Q_OBJECT

public:
    // `catalogue`, `prompts` and `events` are borrowed and outlive the window; `events` delivers
    // the user's input. Shown modally by exec(). `refresh_tree` runs when the user presses "Done".
    frmImport(catalogue::Catalogue& catalogue, platform::UserPrompts& prompts,
              platform::UserEvents& events, std::function<void()> refresh_tree,
              QWidget* parent = nullptr);

    // The first failure of the database in the imports of this window; ok: there was none.
    const base::Status& database_failure() const { return import_.database_failure(); }

public Q_SLOTS:
    void reject() override;

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    QWidget* BuildOptions();
    QWidget* BuildProgress();
    QWidget* BuildButton();
    void StartOrFinish();

    void SetBusy(bool busy) override;
    void SetReading(const QString& text) override;
    void SetWriting(const QString& text) override;
    void SetDone() override;

    LauncherImport import_;
    std::function<void()> refresh_tree_;
    bool busy_ = false;
    bool done_ = false;  // an import has changed rows; its button then closes the window
    QRadioButton* optImport_[2] = {};
    QComboBox* Combo1_ = nullptr;
    QLabel* lblReading_ = nullptr;
    QLabel* lblWriting_ = nullptr;
    QPushButton* cmdImport_ = nullptr;
};

}  // namespace maintenance
