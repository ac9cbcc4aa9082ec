#include "history/put_back_run.h"

#include "base/marked_text.h"
#include "jet/errors.h"
#include "jet/tables/change_note.h"
#include "jet/text/names.h"

#include "base/unicode.h"

#include <algorithm>
#include <numeric>

namespace history {
namespace {

using base::Result;
using base::Status;
using jet::RowChange;
using jet::RowId;
using jet::Value;

// What the database's own rules refuse leaves the rest to be put back; anything else ends the run.
bool IsRefusal(const Status& status) {
    return status.code() == base::StatusCode::kConstraint ||
           status.code() == base::StatusCode::kInvalidArgument ||
           status.code() == base::StatusCode::kUnsupported;
}

bool HoldsNothing(const Value& value) {
    const bool* const boolean = value.get_if<bool>();
    return value.is_null() || (boolean != nullptr && !*boolean);
}

constexpr std::u16string_view kChangedSince = MARKED_TEXT("HistoryTexts", "It was changed since.");
constexpr std::u16string_view kColumnIsGone =
    MARKED_TEXT("HistoryTexts", "The field is no longer in the table.");
constexpr std::u16string_view kTableIsGone =
    MARKED_TEXT("HistoryTexts", "The table or its key is not the same any more.");
constexpr std::u16string_view kRowIsGone =
    MARKED_TEXT("HistoryTexts", "The row is no longer there.");
constexpr std::u16string_view kDragsOthers =
    MARKED_TEXT("HistoryTexts", "Rows that others refer to it with would be changed as well.");

}  // namespace

PutBackRun::PutBackRun(jet::Database& database, const FoldedChange& change,
                       const PartOfChange& part, LeftOut& left_out, Mode mode,
                       const base::RunSteps& steps)
    : database_(database), change_(change), part_(part), left_out_(left_out), mode_(mode),
      count_(steps, std::ssize(change.rows())) {}

// Rows that are referred to come back first and go last.
Result<PutBackRun::Outcome> PutBackRun::Run() {
    RETURN_IF_ERROR(FindTargets());
    for (const auto& [row, why] : left_out_)
        Refuse(row, why);
    RETURN_IF_ERROR(InsertDeleted());
    RETURN_IF_ERROR(CollectUpdates());
    RETURN_IF_ERROR(UpdateGroups());
    if (outcome_ == Outcome::kDone) RETURN_IF_ERROR(DeleteInserted());
    if (outcome_ == Outcome::kDone) RETURN_IF_ERROR(RetryDeferred());
    return outcome_;
}

// ------------------------------------------------------------------------------ tables and rows

Status PutBackRun::FindTargets() {
    for (const jet::NoteTable& noted : change_.tables())
        targets_.push_back(TargetOf(noted));
    for (std::size_t row = 0; row < change_.rows().size(); ++row)
        if (IsWanted(row) && targets_[RowAt(row).table].table == nullptr) Refuse(row, kTableIsGone);
    return {};
}

PutBackRun::Target PutBackRun::TargetOf(const jet::NoteTable& noted) const {
    Target target;
    const auto table = database_.FindTable(noted.name);
    if (!table.ok()) return target;
    const jet::TableDesign& design = (*table)->design();
    for (const jet::NoteTable::Column& column : noted.columns) {
        const auto found = std::ranges::find_if(design.columns, [&](const auto& known) {
            return jet::SameName(known.name, column.name) && known.type == column.type;
        });
        target.columns.emplace_back();
        if (found != design.columns.end())
            target.columns.back() = static_cast<std::size_t>(found - design.columns.begin());
    }
    for (std::size_t i = 0; i < design.indexes.size(); ++i) {
        const jet::IndexDesign& index = design.indexes[i];
        if (!index.primary || !index.maintainable) continue;
        std::vector<std::optional<std::size_t>> key;
        for (const jet::IndexColumn& column : index.columns)
            key.emplace_back(column.column);
        std::vector<std::optional<std::size_t>> noted_key;
        for (const std::size_t column : noted.key)
            noted_key.push_back(target.columns[column]);
        if (key == noted_key) target.key_index = i;
    }
    // Rows that are named by a key cannot be found without it.
    if (noted.key.empty() || target.key_index) target.table = *table;
    return target;
}

bool PutBackRun::IsWanted(std::size_t row) const {
    return RowAt(row).change && (!part_.row || *part_.row == row) && !left_out_.contains(row);
}

Result<std::optional<RowId>> PutBackRun::Find(const FoldedRow& row) {
    const Target& target = targets_[row.table];
    if (!target.key_index) return FindByCells(row);
    jet::KeyBound bound;
    const jet::NoteTable& noted = TableOf(row);
    for (std::size_t i = 0; i < noted.key.size(); ++i) {
        ASSIGN_OR_RETURN(Value value, noted.Decode(noted.key[i], row.key_after[i]));
        bound.values.push_back(std::move(value));
    }
    ASSIGN_OR_RETURN(const auto cursor,
                     target.table->Range(*target.key_index, bound, bound, false));
    return cursor->Next();
}

// The first row that holds all cells and was not taken for another one of the change.
Result<std::optional<RowId>> PutBackRun::FindByCells(const FoldedRow& row) {
    ASSIGN_OR_RETURN(const auto cursor, targets_[row.table].table->Scan());
    for (;;) {
        ASSIGN_OR_RETURN(const std::optional<RowId> at, cursor->Next());
        if (!at) return at;
        if (taken_[row.table].contains(*at)) continue;
        ASSIGN_OR_RETURN(const bool holds, HoldsCells(row, *at, nullptr));
        if (!holds) continue;
        taken_[row.table].insert(*at);
        return at;
    }
}

// Whether an inserted row is as the change left it. `differences` (may be null) receives the fields
// that are not.
Result<bool> PutBackRun::HoldsCells(const FoldedRow& row, RowId at,
                                    std::vector<Refusal>* differences) {
    const Target& target = targets_[row.table];
    const jet::NoteTable& noted = TableOf(row);
    const auto position = static_cast<std::size_t>(&row - change_.rows().data());
    std::vector<std::size_t> columns(target.table->design().columns.size());
    std::iota(columns.begin(), columns.end(), std::size_t{0});
    std::vector<Value> now(columns.size());
    RETURN_IF_ERROR(target.table->Read(at, columns, now));
    bool holds = true;
    const auto differs = [&](std::optional<std::size_t> cell, const Value& value) {
        holds = false;
        if (differences == nullptr) return;
        differences->push_back(RefusalOf(position, cell));
        differences->back().now = CellText(value);
        differences->back().reason = kChangedSince;
    };
    for (const FoldedRow::Cell& cell : row.cells) {
        const std::optional<std::size_t> column = target.columns[cell.column];
        if (!column) continue;  // it is gone, whatever it held
        ASSIGN_OR_RETURN(const Value after, noted.Decode(cell.column, cell.after));
        if (now[*column] != after) differs(cell.column, now[*column]);
        now[*column] = Value();
    }
    // Columns that came later.
    for (const Value& value : now)
        if (!HoldsNothing(value)) differs(std::nullopt, value);
    return holds;
}

// ------------------------------------------------------------------------------- deleted rows

Status PutBackRun::InsertDeleted() {
    for (std::size_t row = 0; row < change_.rows().size(); ++row) {
        if (!IsWanted(row) || RowAt(row).change != RowChange::kDeleted ||
            targets_[RowAt(row).table].table == nullptr)
            continue;
        RETURN_IF_ERROR(InsertRow(row).status());
        RETURN_IF_ERROR(count_.Next());
    }
    return {};
}

// False: it is refused for now, and deferred.
Result<bool> PutBackRun::InsertRow(std::size_t row) {
    ASSIGN_OR_RETURN(std::vector<Value> values, ValuesOf(RowAt(row)));
    const auto inserted = targets_[RowAt(row).table].table->Insert(values);
    if (inserted.ok()) return true;
    if (!IsRefusal(inserted.status())) return inserted.status();
    deferred_.push_back({{{}, row}, inserted.status()});
    return false;
}

Result<std::vector<Value>> PutBackRun::ValuesOf(const FoldedRow& row) {
    const Target& target = targets_[row.table];
    std::vector<Value> values(target.table->design().columns.size());
    for (const FoldedRow::Cell& cell : row.cells) {
        const std::optional<std::size_t> column = target.columns[cell.column];
        if (!column) continue;
        ASSIGN_OR_RETURN(values[*column], TableOf(row).Decode(cell.column, cell.before));
    }
    return values;
}

// -------------------------------------------------------------------------------- changed cells

Status PutBackRun::CollectUpdates() {
    std::map<std::pair<std::size_t, std::vector<std::size_t>>, std::size_t> known;
    for (std::size_t row = 0; row < change_.rows().size(); ++row) {
        const FoldedRow& changed = RowAt(row);
        const Target& target = targets_[changed.table];
        if (!IsWanted(row) || changed.change != RowChange::kUpdated || target.table == nullptr)
            continue;
        std::vector<std::size_t> cells;
        for (std::size_t i = 0; i < changed.cells.size(); ++i) {
            const std::size_t column = changed.cells[i].column;
            if (jet::SameCell(changed.cells[i].before, changed.cells[i].after)) continue;
            if (part_.column && *part_.column != column) continue;
            if (target.columns[column]) {
                cells.push_back(column);
                continue;
            }
            refusals_.push_back(RefusalOf(row, column));
            refusals_.back().reason = kColumnIsGone;
        }
        if (cells.empty()) continue;
        std::ranges::sort(cells);
        ASSIGN_OR_RETURN(const std::optional<RowId> at, Find(changed));
        if (!at) {
            Refuse(row, kRowIsGone);
            continue;
        }
        const auto [group, is_new] = known.try_emplace({changed.table, cells}, groups_.size());
        if (is_new) groups_.push_back({changed.table, std::move(cells), {}});
        groups_[group->second].items.push_back({*at, row});
        group_of_[row] = group->second;
    }
    return {};
}

Status PutBackRun::UpdateGroups() {
    for (Group& group : groups_) {
        std::ranges::sort(group.items, {}, &Item::at);
        if (mode_ == Mode::kOneByOne) {
            for (const Item& item : group.items)
                RETURN_IF_ERROR(UpdateRow(group, item));
        } else {
            RETURN_IF_ERROR(UpdateGroup(group));
        }
        if (outcome_ != Outcome::kDone) return {};
    }
    return {};
}

// All rows of a group at once. What fails is done again row by row.
Status PutBackRun::UpdateGroup(const Group& group) {
    const Target& target = targets_[group.table];
    std::vector<std::size_t> columns;
    for (const std::size_t cell : group.cells)
        columns.push_back(*target.columns[cell]);
    std::vector<Value> values(columns.size());
    std::vector<RowId> rows;
    for (const Item& item : group.items)
        rows.push_back(item.at);
    std::size_t next = 0;
    const std::size_t recorded = database_.recorded_rows();
    Status done = target.table->Update(
        rows, {columns, values, columns, [&](std::span<Value> chosen) {
                   return ChooseValues(group, group.items[next++].row, values, chosen, &refusals_);
               }});
    if (done.ok() && database_.recorded_rows() - recorded <= rows.size()) return {};
    if (!done.ok() && !IsRefusal(done)) return done;
    outcome_ = Outcome::kAgainOneByOne;
    return {};
}

Status PutBackRun::UpdateRow(const Group& group, const Item& item) {
    const Target& target = targets_[group.table];
    std::vector<std::size_t> columns;
    for (const std::size_t cell : group.cells)
        columns.push_back(*target.columns[cell]);
    std::vector<Value> now(columns.size());
    std::vector<Value> chosen(columns.size());
    RETURN_IF_ERROR(target.table->Read(item.at, columns, now));
    std::vector<Refusal> refusals;
    RETURN_IF_ERROR(ChooseValues(group, item.row, now, chosen, &refusals));
    std::vector<jet::ColumnChange> changes;
    for (std::size_t i = 0; i < columns.size(); ++i)
        if (chosen[i] != now[i]) changes.push_back({columns[i], chosen[i]});
    const std::size_t recorded = database_.recorded_rows();
    const std::size_t bytes = database_.recorded().size();
    Status done = changes.empty() ? Status() : target.table->Update(item.at, changes);
    const std::size_t touched = database_.recorded_rows() - recorded;
    if (done.ok()) {
        refusals_.insert(refusals_.end(), refusals.begin(), refusals.end());
        if (touched <= 1) return {};
        ASSIGN_OR_RETURN(const bool is_ours, AllBelongToChange(bytes));
        if (!is_ours) LeaveOut(item.row, std::u16string(kDragsOthers));
        return {};
    }
    if (!IsRefusal(done)) return done;
    if (touched == 0)
        deferred_.push_back({item, done});
    else
        LeaveOut(item.row, std::u16string(kDragsOthers));
    return {};
}

// A cell that holds what the change wrote gets what it held before; any other one stays.
Status PutBackRun::ChooseValues(const Group& group, std::size_t row, std::span<const Value> now,
                                std::span<Value> chosen, std::vector<Refusal>* refusals) {
    RETURN_IF_ERROR(count_.Next());
    const FoldedRow& changed = RowAt(row);
    const jet::NoteTable& noted = TableOf(changed);
    for (std::size_t i = 0; i < group.cells.size(); ++i) {
        const auto cell =
            std::ranges::find(changed.cells, group.cells[i], &FoldedRow::Cell::column);
        ASSIGN_OR_RETURN(Value before, noted.Decode(cell->column, cell->before));
        ASSIGN_OR_RETURN(const Value after, noted.Decode(cell->column, cell->after));
        chosen[i] = now[i];
        if (now[i] == after) {
            chosen[i] = std::move(before);
        } else if (now[i] != before) {
            refusals->push_back(RefusalOf(row, cell->column));
            refusals->back().now = CellText(now[i]);
            refusals->back().reason = kChangedSince;
        }
    }
    return {};
}

// ------------------------------------------------------------------------------- inserted rows

// The last one first, as rows may refer to earlier ones. One that is gone already is as wanted.
Status PutBackRun::DeleteInserted() {
    std::map<std::size_t, std::vector<Item>> items;  // by table
    std::vector<Item> all;
    for (std::size_t row = change_.rows().size(); row-- > 0;) {
        const FoldedRow& changed = RowAt(row);
        if (!IsWanted(row) || changed.change != RowChange::kInserted ||
            targets_[changed.table].table == nullptr)
            continue;
        ASSIGN_OR_RETURN(const std::optional<RowId> at, Find(changed));
        RETURN_IF_ERROR(count_.Next());
        if (!at) continue;
        ASSIGN_OR_RETURN(const bool holds, HoldsCells(changed, *at, &refusals_));
        if (!holds) continue;
        items[changed.table].push_back({*at, row});
        all.push_back({*at, row});
    }
    if (mode_ == Mode::kOneByOne) return DeleteOneByOne(all);
    for (const auto& [table, inserted] : items) {
        std::vector<RowId> rows;
        for (const Item& item : inserted)
            rows.push_back(item.at);
        const std::size_t recorded = database_.recorded_rows();
        Status done = targets_[table].table->Delete(rows);
        if (!done.ok() && !IsRefusal(done)) return done;
        if (!done.ok() || database_.recorded_rows() - recorded > rows.size()) {
            outcome_ = Outcome::kAgainOneByOne;
            return {};
        }
    }
    return {};
}

Status PutBackRun::DeleteOneByOne(const std::vector<Item>& items) {
    for (const Item& item : items) {
        const std::size_t recorded = database_.recorded_rows();
        const std::size_t bytes = database_.recorded().size();
        Status done = targets_[RowAt(item.row).table].table->Delete(item.at);
        if (jet::Is(done, jet::ErrorNumber::kRecordDeleted)) continue;  // with another one
        const std::size_t touched = database_.recorded_rows() - recorded;
        if (!done.ok() && !IsRefusal(done)) return done;
        if (!done.ok() && touched == 0) {
            deferred_.push_back({item, done});
            continue;
        }
        if (done.ok() && touched <= 1) continue;
        ASSIGN_OR_RETURN(const bool is_ours, AllBelongToChange(bytes));
        if (done.ok() && is_ours) continue;
        LeaveOut(item.row, std::u16string(kDragsOthers));
        return {};
    }
    return {};
}

// ------------------------------------------------------------------- what stands in the way

// What was refused may go once the rest is done: a row that was referred to, a name that was taken.
Status PutBackRun::RetryDeferred() {
    if (mode_ == Mode::kManyAtOnce && !deferred_.empty()) {
        outcome_ = Outcome::kAgainOneByOne;
        return {};
    }
    for (bool progress = true; progress && !deferred_.empty();) {
        std::vector<Deferred> waiting = std::exchange(deferred_, {});
        // The other way round each time: where each row waits for the next one, one pass does.
        std::ranges::reverse(waiting);
        for (const Deferred& one : waiting) {
            const std::optional<RowChange> change = RowAt(one.item.row).change;
            if (change == RowChange::kDeleted)
                RETURN_IF_ERROR(InsertRow(one.item.row).status());
            else if (change == RowChange::kInserted)
                RETURN_IF_ERROR(DeleteOneByOne({one.item}));
            else
                RETURN_IF_ERROR(UpdateRow(groups_[group_of_.at(one.item.row)], one.item));
            if (outcome_ != Outcome::kDone) return {};
        }
        progress = deferred_.size() < waiting.size();
    }
    for (const Deferred& one : std::exchange(deferred_, {}))
        LeaveOut(one.item.row, base::ToUtf16(one.why.message()));
    return {};
}

Result<bool> PutBackRun::AllBelongToChange(std::size_t bytes_before) {
    jet::Bytes note = jet::NoteHead({}, *change_.tables().front().text, 0);
    const std::size_t head = note.size();
    const std::span<const std::byte> recorded = database_.recorded();
    note.insert(note.end(), recorded.begin(), recorded.end());
    ASSIGN_OR_RETURN(jet::NoteReader reader, jet::NoteReader::Open(note));
    jet::NotedRow row;
    for (;;) {
        ASSIGN_OR_RETURN(const bool more, reader.Next(row));
        if (!more) return true;
        if (reader.position() <= head + bytes_before) continue;
        if (!BelongsToChange(reader.tables()[row.table], row)) return false;
    }
}

bool PutBackRun::BelongsToChange(const jet::NoteTable& table, const jet::NotedRow& noted) const {
    std::vector<jet::NotedCell> key = noted.key;
    if (noted.change == RowChange::kDeleted)
        for (const std::size_t column : table.key)
            key.push_back(noted.cells[column].before);
    if (key.empty()) return false;
    const FoldedRow* const row = change_.FindAfter(table.name, key);
    if (row == nullptr || !IsWanted(static_cast<std::size_t>(row - change_.rows().data())))
        return false;
    if (noted.change == RowChange::kDeleted) return row->change == RowChange::kInserted;
    if (row->change == RowChange::kInserted) return true;  // it goes as a whole
    return std::ranges::all_of(noted.cells, [&](const jet::NotedRow::Cell& cell) {
        return std::ranges::any_of(row->cells, [&](const FoldedRow::Cell& ours) {
            return TableOf(*row).columns[ours.column].name == table.columns[cell.column].name &&
                   (!part_.column || *part_.column == ours.column);
        });
    });
}

void PutBackRun::LeaveOut(std::size_t row, std::u16string why) {
    left_out_[row] = std::move(why);
    outcome_ = Outcome::kAgainWithout;
}

// ---------------------------------------------------------------------------------- refusals

Refusal PutBackRun::RefusalOf(std::size_t row, std::optional<std::size_t> column) const {
    const FoldedRow& changed = RowAt(row);
    const jet::NoteTable& noted = TableOf(changed);
    Refusal refusal;
    refusal.table = noted.name;
    refusal.row = RowName(noted, changed);
    if (!column) return refusal;
    refusal.field = noted.columns[*column].name;
    const auto cell = std::ranges::find(changed.cells, *column, &FoldedRow::Cell::column);
    if (cell != changed.cells.end()) refusal.then = CellText(noted, *column, cell->before);
    return refusal;
}

// An updated row is refused field by field.
void PutBackRun::Refuse(std::size_t row, std::u16string_view reason) {
    const FoldedRow& changed = RowAt(row);
    if (changed.change != RowChange::kUpdated) {
        refusals_.push_back(RefusalOf(row, std::nullopt));
        refusals_.back().reason = reason;
        return;
    }
    for (const FoldedRow::Cell& cell : changed.cells) {
        if (part_.column && *part_.column != cell.column) continue;
        if (jet::SameCell(cell.before, cell.after)) continue;
        refusals_.push_back(RefusalOf(row, cell.column));
        refusals_.back().reason = reason;
    }
}

}  // namespace history
