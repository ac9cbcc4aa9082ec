// EditCommands: what the Edit menu does: undo and redo of changes of the catalogue, and the window
// that lists them.
#pragma once

#include "browser/frmPinball.h"
#include "catalogue/catalogue.h"
#include "history/history_file.h"
#include "history/undo_redo.h"
#include "platform/user_prompts.h"

#include <QtCore/QTimer>

#include <optional>

namespace app {

class EditCommands {
public:
    // All are borrowed and outlive the commands; `file` keeps the history of the catalogue.
    EditCommands(catalogue::Catalogue& catalogue, history::HistoryFile& file,
                 platform::UserPrompts& prompts, browser::frmPinball& window);

    // For Commands::SetWatch: afterwards the status bar says how many fields were replaced, and
    // leads to the window.
    void RememberNewest();
    void TellReplaced();

private:
    std::uint64_t Newest();
    browser::UndoCaptions Captions();
    void Undo();
    void Redo();
    void ShowHistory();
    void Show(const base::Result<std::optional<history::UndoRedo::Done>>& done,
              const QString& nothing);
    bool MayChangeRows();
    void TellFailure();

    catalogue::Catalogue& catalogue_;
    history::HistoryFile& file_;
    history::UndoRedo undo_redo_;
    platform::UserPrompts& prompts_;
    browser::frmPinball& window_;
    std::uint64_t newest_ = 0;  // number of the newest change at RememberNewest
    QTimer failures_;           // looks for what the history could not keep
};

}  // namespace app
