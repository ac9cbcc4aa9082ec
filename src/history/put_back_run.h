// PutBackRun: one attempt to put a change back inside an open transaction. Everything at once where
// nothing stands in the way; where a command on many rows fails, the caller rolls back and the next
// attempt goes row by row, and without the rows that have turned out to drag others with them.
#pragma once

#include "history/put_back.h"
#include "jet/tables/database.h"

#include <map>
#include <set>
#include <unordered_map>

namespace history {

// Rows that must be left out, and why; by their positions in FoldedChange::rows().
using LeftOut = std::map<std::size_t, std::u16string>;

class PutBackRun {
public:
    enum class Mode { kManyAtOnce, kOneByOne };
    enum class Outcome {
        kDone,
        kAgainOneByOne,  // roll back; a command on many rows has failed
        kAgainWithout,   // roll back; there is a new row in LeftOut
    };

    // All are borrowed.
    PutBackRun(jet::Database& database, const FoldedChange& change, const PartOfChange& part,
               LeftOut& left_out, Mode mode, const base::RunSteps& steps);

    base::Result<Outcome> Run();
    std::vector<Refusal> TakeRefusals() { return std::move(refusals_); }

private:
    // A table of the change as it is now.
    struct Target {
        jet::Table* table = nullptr;  // null: it is gone
        // Of each column of the note, the position in design().columns; nullopt: it is gone.
        std::vector<std::optional<std::size_t>> columns;
        std::optional<std::size_t> key_index;  // among design().indexes
    };
    // Columns of a table that are put back in a row.
    struct Item {
        jet::RowId at;
        std::size_t row = 0;
    };
    struct Group {
        std::size_t table = 0;
        std::vector<std::size_t> cells;  // columns of the note
        std::vector<Item> items;
    };
    struct Deferred {
        Item item;  // without a place for a row that is to come back
        base::Status why;
    };

    base::Status FindTargets();
    Target TargetOf(const jet::NoteTable& noted) const;
    bool IsWanted(std::size_t row) const;
    const FoldedRow& RowAt(std::size_t row) const { return change_.rows()[row]; }
    const jet::NoteTable& TableOf(const FoldedRow& row) const {
        return change_.tables()[row.table];
    }
    // The row that has the key, or all the cells, that the change left; nullopt: there is none.
    base::Result<std::optional<jet::RowId>> Find(const FoldedRow& row);
    base::Result<std::optional<jet::RowId>> FindByCells(const FoldedRow& row);
    base::Result<bool> HoldsCells(const FoldedRow& row, jet::RowId at,
                                  std::vector<Refusal>* differences);

    base::Status InsertDeleted();
    base::Result<bool> InsertRow(std::size_t row);
    base::Result<std::vector<jet::Value>> ValuesOf(const FoldedRow& row);
    base::Status CollectUpdates();
    base::Status UpdateGroups();
    base::Status UpdateGroup(const Group& group);
    base::Status UpdateRow(const Group& group, const Item& item);
    base::Status ChooseValues(const Group& group, std::size_t row, std::span<const jet::Value> now,
                              std::span<jet::Value> chosen, std::vector<Refusal>* refusals);
    base::Status DeleteInserted();
    base::Status DeleteOneByOne(const std::vector<Item>& items);
    base::Status RetryDeferred();

    // After a call that changed one row and, by relations, perhaps others: whether all of these are
    // rows and cells that this run puts back as well.
    base::Result<bool> AllBelongToChange(std::size_t bytes_before);
    bool BelongsToChange(const jet::NoteTable& table, const jet::NotedRow& noted) const;
    void LeaveOut(std::size_t row, std::u16string why);

    void Refuse(std::size_t row, std::u16string_view reason);
    Refusal RefusalOf(std::size_t row, std::optional<std::size_t> column) const;

    jet::Database& database_;
    const FoldedChange& change_;
    const PartOfChange& part_;
    LeftOut& left_out_;
    Mode mode_;
    base::StepCount count_;  // of rows
    Outcome outcome_ = Outcome::kDone;
    std::vector<Target> targets_;
    std::vector<Group> groups_;
    std::unordered_map<std::size_t, std::size_t> group_of_;  // positions in groups_, by row
    std::vector<Deferred> deferred_;
    std::vector<Refusal> refusals_;
    std::map<std::size_t, std::set<jet::RowId>> taken_;  // rows without a key, by table
};

}  // namespace history
