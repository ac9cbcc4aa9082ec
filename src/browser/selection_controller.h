// SelectionController: shows in the tree what the filter and order bars select, restores the saved
// selection, and marks the tree as out of date when the bars change.
#pragma once

#include "base/status.h"
#include "browser/filter_bar.h"
#include "browser/order_bar.h"
#include "browser/status_panels.h"
#include "browser/table_tree_model.h"
#include "browser/table_tree_view.h"
#include "browser/tree_place.h"
#include "browser/tree_query.h"
#include "catalogue/catalogue.h"
#include "jet/recordset.h"

#include <functional>
#include <optional>

namespace browser {

// The filter of the tree's current content; saved in the settings.
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

    // Everything in `parts` is borrowed and outlives the controller. `clear_details` clears the
    // detail panel.
    SelectionController(const Parts& parts, std::function<void()> clear_details);

    // Shows the selection of the controls, with the same table selected as before; where the
    // question is the same and the table is gone, its neighbour. For an invalid value the user gets
    // a message, for a failure of the database the status bar shows it; the tree is empty then.
    void RefreshTree();
    // Sets applied() without showing anything.
    void Remember(const AppliedSelection& saved) { applied_ = saved; }
    // Sets the controls to a saved selection, without showing it.
    void RestoreFilter(const AppliedSelection& saved);
    const AppliedSelection& applied() const { return applied_; }
    // What the tree shows; nullopt: it is empty.
    const std::optional<Selection>& shown() const { return shown_; }

Q_SIGNALS:
    // The tree shows its new content, and `node` has been selected as the table from before.
    void PlaceKept(const QModelIndex& node);

private:
    Selection Current() const;
    void Apply(const Selection& selection);
    base::Status ShowSelection(const Selection& selection);
    base::Status BuildTree(jet::Recordset& rows, const Selection& selection);
    void KeepPlace(const std::optional<Selection>& before);
    void ReportNothingFound();
    void ShowFailure(const base::Status& failure);
    void TellFailure(const QString& what, const base::Status& failure);
    void ReportWrongValue(const QString& message);

    Parts parts_;
    std::function<void()> clear_details_;
    AppliedSelection applied_;
    std::optional<Selection> shown_;
    TreePlace place_;
};

}  // namespace browser
