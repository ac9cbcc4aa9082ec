// SelectionController: brings the filter bar and the order bar together with the tree: RefreshTree,
// the saved selection, and the mark that the tree is out of date.
#pragma once

#include "browser/filter_bar.h"
#include "browser/order_bar.h"
#include "browser/status_panels.h"
#include "browser/table_tree_model.h"
#include "browser/table_tree_view.h"
#include "catalogue/pin_subs.h"

#include <functional>

namespace browser {

// The selection that the tree shows; saved at the end.
struct AppliedSelection {
    QString FilterKey;
    QString FilterValue;
    QString CurrentOperator;
    bool operator==(const AppliedSelection&) const = default;
};

class SelectionController : public QObject {
    Q_OBJECT

public:
    struct Parts {
        catalogue::Catalogue& catalogue;
        platform::UserPrompts& prompts;
        FilterBar& filter_bar;
        OrderBar& order_bar;
        TableTreeModel& model;
        TableTreeView& tree;
        StatusPanels& status;
    };

    // Everything in `parts` is borrowed and outlives the controller. `clear_details` empties the
    // panel of details.
    SelectionController(const Parts& parts, std::function<void()> clear_details);

    // Shows what the controls say. An impossible value is reported and nothing is shown; what goes
    // wrong with the database is said in the status bar, and nothing is shown or counted.
    void RefreshTree();
    // The selection that the settings hold, before anything is shown.
    void Remember(const AppliedSelection& saved) { applied_ = saved; }
    // Puts a saved selection into the controls.
    void RestoreFilter(const AppliedSelection& saved);
    const AppliedSelection& applied() const { return applied_; }

private:
    Selection Current() const;
    void Apply(const Selection& selection);
    base::Status ShowSelection(const Selection& selection);
    base::Status BuildTree(jet::Recordset& rows, const Selection& selection);
    void ReportNothingFound();
    void SayFailure(const base::Status& failure);
    void ReportWrongValue(const QString& message);

    Parts parts_;
    std::function<void()> clear_details_;
    AppliedSelection applied_;
};

}  // namespace browser
