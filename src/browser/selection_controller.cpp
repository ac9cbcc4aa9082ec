#include "browser/selection_controller.h"

#include "browser/texts.h"
#include "catalogue/error_report.h"
#include "catalogue/filter_kinds.h"
#include "catalogue/selection.h"
#include "catalogue/start_up.h"
#include "platform/free_memory.h"

#include <QtCore/QTimer>

#include <algorithm>

namespace browser {
namespace {

QString IconOfKind(const QString& filter_key) {
    const auto* const kind = std::find_if(
        catalogue::kFilterKinds.begin(), catalogue::kFilterKinds.end(),
        [&](const catalogue::FilterKind& candidate) { return candidate.key == filter_key; });
    return kind == catalogue::kFilterKinds.end() ? QString() : kind->icon_key.toString();
}

// Reading as many tables takes tens of megabytes beside what is shown of them.
constexpr std::size_t kManyTables = 10'000;
// To look at the clock takes a tenth of the time of reading a row.
constexpr std::int64_t kRowsTold = 64;
// After the painting.
constexpr int kReleaseMs = 300;

// Suspends painting of the tree and shows the progress bar while the tree is filled.
class [[nodiscard]] TreeUnderConstruction {
public:
    TreeUnderConstruction(TableTreeView& tree, StatusPanels& status, std::int64_t tables)
        : tree_(tree), status_(status) {
        tree_.setUpdatesEnabled(false);
        status_.StartProgress(tables);
    }
    ~TreeUnderConstruction() {
        status_.EndProgress();
        tree_.setUpdatesEnabled(true);
    }
    TreeUnderConstruction(const TreeUnderConstruction&) = delete;
    TreeUnderConstruction& operator=(const TreeUnderConstruction&) = delete;

private:
    TableTreeView& tree_;
    StatusPanels& status_;
};

}  // namespace

SelectionController::SelectionController(const Parts& parts, std::function<void()> clear_details)
    : parts_(parts), clear_details_(std::move(clear_details)) {
    const auto mark = [this] { parts_.order_bar.SetRefreshPending(true); };
    connect(&parts_.filter_bar, &FilterBar::Changed, this, mark);
    connect(&parts_.order_bar, &OrderBar::Changed, this, mark);
    connect(&parts_.order_bar, &OrderBar::RefreshClicked, this, &SelectionController::RefreshTree);
    connect(&parts_.filter_bar, &FilterBar::ValuesNotRead, this,
            [this](const base::Status& failure) {
                TellFailure(BrowserTexts::tr("The values cannot be read from"), failure);
            });
}

Selection SelectionController::Current() const {
    Selection selection;
    parts_.filter_bar.Describe(selection);
    parts_.order_bar.Describe(selection);
    return selection;
}

void SelectionController::RestoreFilter(const AppliedSelection& saved) {
    applied_ = saved;
    parts_.filter_bar.Restore(saved.FilterKey, saved.FilterValue);
    if (catalogue::IsValueFilter(parts_.filter_bar.FilterKey())) return;
    applied_.FilterValue.clear();
    applied_.CurrentOperator = QStringLiteral("=");
}

void SelectionController::RefreshTree() {
    place_.Remember(parts_.model, parts_.tree);
    const std::size_t tables_before = parts_.model.table_count();
    const std::optional<Selection> before = shown_;
    clear_details_();
    parts_.model.Clear();
    parts_.status.SetPanelText(kCountPanel, {});  // no count beside an empty tree
    shown_.reset();
    const Selection selection = Current();
    if (const auto wrong = WrongValue(selection))
        ReportWrongValue(*wrong);
    else if (const base::Status shown = ShowSelection(selection); !shown.ok())
        ShowFailure(shown);
    parts_.order_bar.SetRefreshPending(false);
    if (shown_) KeepPlace(before);
    if (std::max(tables_before, parts_.model.table_count()) >= kManyTables)
        QTimer::singleShot(kReleaseMs, this, [] { platform::ReleaseFreeMemory(); });
}

// An order is none of the question.
void SelectionController::KeepPlace(const std::optional<Selection>& before) {
    const bool is_same = before && before->filter_key == shown_->filter_key &&
                         before->filter_value == shown_->filter_value &&
                         before->comparison == shown_->comparison;
    const QModelIndex node = place_.Find(parts_.model, is_same ? TreePlace::Gone::kTakesTheNeighbour
                                                               : TreePlace::Gone::kTakesNone);
    if (!node.isValid()) return;
    place_.Select(parts_.tree, node);
    Q_EMIT PlaceKept(node);
}

void SelectionController::ShowFailure(const base::Status& failure) {
    parts_.status.SetPanelText(kCountPanel, {});  // the tree is empty
    TellFailure(BrowserTexts::tr("The tables cannot be read from"), failure);
}

void SelectionController::TellFailure(const QString& what, const base::Status& failure) {
    parts_.status.ShowFailure(
        catalogue::FailureText(what, catalogue::CataloguePath(parts_.catalogue), failure));
}

void SelectionController::ReportWrongValue(const QString& message) {
    parts_.prompts.Ask({message, {}, platform::MessageIcon::kInformation});
    parts_.filter_bar.FocusValue();
}

base::Status SelectionController::ShowSelection(const Selection& selection) {
    ASSIGN_OR_RETURN(auto rows, OpenSelection(*parts_.catalogue.CatalogueConnection, selection));
    if (!rows) {
        ReportNothingFound();
        return {};
    }
    Apply(selection);
    return BuildTree(*rows, selection);
}

void SelectionController::ReportNothingFound() {
    parts_.prompts.Ask(
        {BrowserTexts::tr("No matching records found"), {}, platform::MessageIcon::kInformation});
}

void SelectionController::Apply(const Selection& selection) {
    applied_.FilterKey = selection.filter_key;
    applied_.FilterValue = selection.filter_value;
    applied_.CurrentOperator =
        selection.comparison.isEmpty() ? QStringLiteral("=") : selection.comparison;
}

base::Status SelectionController::BuildTree(jet::Recordset& rows, const Selection& selection) {
    RETURN_IF_ERROR(rows.MoveLast());
    const std::int64_t count = rows.RecordCount();
    parts_.status.SetPanelText(kCountPanel, CountText(count));
    RETURN_IF_ERROR(rows.MoveFirst());
    const TreeUnderConstruction construction(parts_.tree, parts_.status, count);
    const auto advance = [this](std::int64_t read) {
        if (read % kRowsTold == 0) parts_.status.Advance(read);
    };
    ASSIGN_OR_RETURN(TableSnapshot tables, TableSnapshot::Read(rows, advance));
    rows.Close();
    parts_.model.Show(std::move(tables), RootText(parts_.filter_bar.FilterText(), selection),
                      IconOfKind(selection.filter_key));
    shown_ = selection;
    parts_.tree.expand(parts_.model.RootIndex());
    return {};
}

}  // namespace browser
