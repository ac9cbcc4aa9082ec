#include "app/edit_commands.h"

#include "app/texts.h"
#include "browser/detail_tabs.h"
#include "catalogue/error_report.h"
#include "catalogue/long_run.h"
#include "history/change_texts.h"
#include "history/frmHistory.h"
#include "history/refusals_text.h"
#include "platform/free_memory.h"

#include <algorithm>
#include <climits>

namespace app {
namespace {

constexpr int kFailuresEveryMs = 1000;

}  // namespace

EditCommands::EditCommands(catalogue::Catalogue& catalogue, history::HistoryFile& file,
                           platform::UserPrompts& prompts, browser::frmPinball& window)
    : catalogue_(catalogue), file_(file), undo_redo_(*catalogue.CatalogueConnection, file),
      prompts_(prompts), window_(window) {
    browser::CommandActions actions;
    actions.undo = [this] { Undo(); };
    actions.redo = [this] { Redo(); };
    actions.show_history = [this] { ShowHistory(); };
    window_.SetActions(actions);
    window_.SetUndoCaptions([this] { return Captions(); });
    QObject::connect(&failures_, &QTimer::timeout, &window_, [this] { TellFailure(); });
    failures_.start(kFailuresEveryMs);
}

// The file is busy as long as a command writes into it.
void EditCommands::TellFailure() {
    if (window_.shows_progress()) return;
    window_.TellInPassing(file_.TakeFailure());
}

// 0: there is none.
std::uint64_t EditCommands::Newest() {
    const auto changes = catalogue::RunLong(
        catalogue_, {AppTexts::tr("Reading the history")},
        [&](const base::RunSteps&) -> base::Result<std::vector<history::Change>> {
            RETURN_IF_ERROR(catalogue_.CatalogueConnection->Flush());
            return file_.Changes();
        });
    return changes.ok() && !changes->empty() ? changes->back().number : 0;
}

void EditCommands::RememberNewest() {
    newest_ = Newest();
}

void EditCommands::TellReplaced() {
    if (Newest() <= newest_) return;
    const auto changes = file_.Changes();
    if (!changes.ok() || changes->empty() || changes->back().fields == 0) return;
    const history::Change& change = changes->back();
    const int plural = static_cast<int>(std::min<std::uint64_t>(change.fields, INT_MAX));
    const QString text =
        change.fields == 1
            ? AppTexts::tr("%1: %2 field replaced. Click to see it.", nullptr, 1)
            : AppTexts::tr("%1: %2 fields replaced. Click to see them.", nullptr, plural);
    window_.TellResult(text.arg(history::ShownName(change), history::GroupedText(change.fields)),
                       [this] { ShowHistory(); });
}

browser::UndoCaptions EditCommands::Captions() {
    const auto ahead = undo_redo_.LookAhead();
    if (!ahead.ok()) {
        window_.TellInPassing(ahead.status());
        return {};
    }
    const auto caption = [](const auto& next) {
        return next ? history::ShownName(*next) : QString();
    };
    return {caption(ahead->undo), caption(ahead->redo)};
}

// A text that is being written would be lost when the details are shown anew.
bool EditCommands::MayChangeRows() {
    if (window_.details().CurrentTab() != browser::kRulesTextTab) return true;
    window_.TellResult(AppTexts::tr("Not while the rules text is shown"));
    return false;
}

void EditCommands::Undo() {
    if (!MayChangeRows()) return;
    Show(RunLong(catalogue_, {AppTexts::tr("Undo"), catalogue::LongRun::Stop::kOnRequest},
                 [&](const base::RunSteps& steps) { return undo_redo_.Undo(steps); }),
         AppTexts::tr("There is nothing to undo"));
}

void EditCommands::Redo() {
    if (!MayChangeRows()) return;
    Show(RunLong(catalogue_, {AppTexts::tr("Redo"), catalogue::LongRun::Stop::kOnRequest},
                 [&](const base::RunSteps& steps) { return undo_redo_.Redo(steps); }),
         AppTexts::tr("There is nothing to redo"));
}

void EditCommands::ShowHistory() {
    if (!MayChangeRows()) return;
    history::frmHistory(
        catalogue_, file_, prompts_, [this] { window_.ShowChangedRows(); }, &window_)
        .exec();
    // A change of all tables takes as much as the window without it.
    platform::ReleaseFreeMemory();
}

void EditCommands::Show(const base::Result<std::optional<history::UndoRedo::Done>>& done,
                        const QString& nothing) {
    if (base::IsStopped(done.status()))
        return window_.TellResult(AppTexts::tr("Stopped. Nothing was changed"));
    if (!done.ok()) return catalogue::ShowError(prompts_, done.status());
    if (!*done) return window_.TellResult(nothing);
    window_.ShowChangedRows();
    const QString shown = history::ShownName(**done);
    window_.TellResult(shown);
    const QString refusals = history::RefusalsText((*done)->result.refusals);
    if (refusals.isEmpty()) return;
    prompts_.Ask(
        {refusals, shown, platform::MessageIcon::kInformation, platform::MessageButtons::kOk});
}

}  // namespace app
