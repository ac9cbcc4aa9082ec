// Changes of many rows at once: each page once, each index once. Only where nothing has to be
// checked row by row; otherwise the rows are changed one after the other.
#include "jet/errors.h"
#include "jet/pages/data_page.h"
#include "jet/rows/field_codec.h"
#include "jet/rows/row_fetch.h"
#include "jet/tables/stored_table.h"

#include <algorithm>
#include <tuple>

namespace jet {

// A pass looks at each entry of each index; a single removal takes as long as some sixty of these
// looks.
bool StoredTable::AreMany(std::size_t rows) const {
    constexpr std::size_t kFewest = 8;
    constexpr std::size_t kLooksPerRemoval = 64;
    return rows >= kFewest && rows >= row_count() / kLooksPerRemoval;
}

bool StoredTable::IsReferredTo() const {
    return std::ranges::any_of(definition_.logical_indexes, [](const LogicalIndex& index) {
        return index.kind == IndexKind::kRelation && index.side == RelationSide::kPrimary;
    });
}

base::Status StoredTable::Delete(std::span<const RowId> rows) {
    RETURN_IF_ERROR(CheckWritable());
    if (IsReferredTo() || !AreMany(rows.size())) {
        for (const RowId row : rows) {
            base::Status deleted = Delete(row);
            if (!deleted.ok() && !Is(deleted, ErrorNumber::kRecordDeleted)) return deleted;
        }
        return {};
    }
    const RowSet gone(rows);
    RecordRows(gone);
    for (std::size_t index = 0; index < indexes_.size(); ++index)
        RETURN_IF_ERROR(indexes_.tree(index).Remove(gone));
    ASSIGN_OR_RETURN(const std::size_t count, rows_.Delete(gone));
    return CountRows(-static_cast<std::int64_t>(count), {});
}

// ---------------------------------------------------------------------------------- updating

// The state of such an update.
struct StoredTable::BulkUpdate {
    struct ChangedIndex {
        struct Entry {
            std::optional<Bytes> key;  // nullopt: the row has no entry
            RowId row;
        };
        std::size_t index = 0;
        std::vector<Entry> before;
        std::vector<Entry> after;
    };
    std::vector<std::size_t> columns;  // positions in definition_.columns
    std::vector<Value> new_values;     // of `columns`, for the current row
    std::vector<ChangedIndex> indexes;
    // Of the current row, the columns of `indexes`, by their positions in definition_.columns.
    std::vector<std::size_t> key_columns;
    std::vector<Value> key_values;
    bool reads_other_pages = false;  // a long value is read
};

std::optional<StoredTable::BulkUpdate> StoredTable::PlanBulk(std::span<const RowId> rows,
                                                             const RowUpdate& update) const {
    if (rules_ != nullptr) return std::nullopt;
    BulkUpdate bulk;
    for (const std::size_t shown : update.columns) {
        if (design_.columns[shown].autonumber) return std::nullopt;
        bulk.columns.push_back(positions_[shown]);
    }
    bulk.new_values.resize(bulk.columns.size());
    bulk.key_values.resize(definition_.columns.size());
    for (std::size_t index = 0; index < indexes_.size(); ++index) {
        const auto& columns = indexes_.ColumnsOf(index);
        if (std::ranges::find_first_of(columns, bulk.columns) == columns.end()) continue;
        const bool is_checked =
            definition_.real_indexes[index].unique() ||
            definition_.real_indexes[index].required() ||
            std::ranges::any_of(definition_.logical_indexes, [&](const LogicalIndex& logical) {
                return logical.real == index && logical.kind != IndexKind::kPlain;
            });
        if (is_checked || !AreMany(rows.size())) return std::nullopt;
        bulk.indexes.push_back({index, {}, {}});
        bulk.key_columns.insert(bulk.key_columns.end(), columns.begin(), columns.end());
    }
    // A row that is changed twice would leave the entry of its first change behind.
    if (!bulk.indexes.empty() && RowSet(rows).rows().size() != rows.size()) return std::nullopt;
    const auto is_long = [&](std::size_t position) {
        return definition_.columns[position].is_long_value();
    };
    bulk.reads_other_pages = std::ranges::any_of(bulk.key_columns, is_long) ||
                             std::ranges::any_of(update.read, [&](std::size_t shown) {
                                 return is_long(positions_[shown]);
                             });
    return bulk;
}

base::Status StoredTable::UpdateOneByOne(std::span<const RowId> rows, const RowUpdate& update) {
    std::vector<Value> new_values(update.columns.size());
    std::vector<ColumnChange> changes;
    for (const RowId row : rows) {
        if (!update.read.empty()) RETURN_IF_ERROR(Read(row, update.read, update.values));
        RETURN_IF_ERROR(update.make(new_values));
        changes.clear();
        for (std::size_t i = 0; i < new_values.size(); ++i)
            changes.push_back({update.columns[i], std::move(new_values[i])});
        RETURN_IF_ERROR(Update(row, changes));
    }
    return {};
}

base::Status StoredTable::Update(std::span<const RowId> rows, const RowUpdate& update) {
    RETURN_IF_ERROR(CheckWritable());
    std::optional<BulkUpdate> bulk = PlanBulk(rows, update);
    if (!bulk) return UpdateOneByOne(rows, update);
    while (!rows.empty()) {
        const auto end = std::ranges::find_if(
            rows, [page = rows.front().page](RowId row) { return row.page != page; });
        const auto on_page = rows.first(static_cast<std::size_t>(end - rows.begin()));
        RETURN_IF_ERROR(UpdateOnPage(on_page, update, *bulk));
        rows = rows.subspan(on_page.size());
    }
    return ChangeEntries(*bulk);
}

base::Status StoredTable::UpdateOnPage(std::span<const RowId> rows, const RowUpdate& update,
                                       BulkUpdate& bulk) {
    const PageNumber number = rows.front().page;
    std::span<std::byte> bytes;  // empty: to be asked for
    for (const RowId at : rows) {
        if (bytes.empty() || bulk.reads_other_pages) {
            ASSIGN_OR_RETURN(bytes, file_.store.Change(number));
        }
        const auto page = DataPage::Parse(bytes, file_.format);
        const bool is_home = page && page->owner() == definition_.page &&
                             at.slot < page->slot_count() && page->Flags(at.slot) == 0;
        const auto place = is_home ? page->Bytes(at.slot) : std::nullopt;
        const auto row = place ? RowView::Parse(*place, file_.format) : std::nullopt;
        RETURN_IF_ERROR(MakeValues(at, row, update, bulk));
        NoteKeys(at, bulk);
        if (recorder_ != nullptr && row)
            recorder_->BeginUpdate(Recorded(), *row, bulk.columns);
        else
            RecordBefore(at, bulk.columns);
        bool is_done = false;
        if (row && !bulk.reads_other_pages) {
            const auto start = static_cast<std::size_t>(place->data() - bytes.data());
            ASSIGN_OR_RETURN(is_done, rows_.Patch(bytes.subspan(start, place->size()), bulk.columns,
                                                  bulk.new_values));
        }
        if (is_done) {
            // `row` shows what its bytes are now.
            if (recorder_ != nullptr) recorder_->FinishUpdate(Recorded(), *row, bulk.columns);
            continue;
        }
        std::vector<Value> values(definition_.columns.size());
        std::vector<bool> changed(values.size());
        for (std::size_t i = 0; i < bulk.columns.size(); ++i) {
            values[bulk.columns[i]] = bulk.new_values[i];
            changed[bulk.columns[i]] = true;
        }
        RETURN_IF_ERROR(rows_.Update(at, values, changed));
        RecordAfter(at, bulk.columns);
        bytes = {};
    }
    return {};
}

base::Status StoredTable::MakeValues(RowId at, const std::optional<RowView>& row,
                                     const RowUpdate& update, BulkUpdate& bulk) {
    std::optional<RowView> view = row;
    StoredRow fetched;  // keeps the bytes of `view`
    if (!view) {
        ASSIGN_OR_RETURN(fetched, FetchRow(file_, definition_.page, at));
        view = RowView::Parse(fetched.bytes, file_.format);
        if (!view) return DamagedPage(at.page, "a row is unreadable");
    }
    for (const std::size_t column : bulk.key_columns)
        RETURN_IF_ERROR(
            DecodeField(file_, definition_.columns[column], *view, bulk.key_values[column]));
    RETURN_IF_ERROR(DecodeFields(Source(), *view, update.read, update.values));
    RETURN_IF_ERROR(update.make(bulk.new_values));
    for (std::size_t i = 0; i < bulk.columns.size(); ++i)
        RETURN_IF_ERROR(Prepare(update.columns[i], bulk.new_values[i]));
    return {};
}

// What becomes of the row's entries, for when all rows are changed.
void StoredTable::NoteKeys(RowId at, BulkUpdate& bulk) {
    for (BulkUpdate::ChangedIndex& changed : bulk.indexes)
        changed.before.push_back({indexes_.RowKeyOf(changed.index, bulk.key_values), at});
    for (std::size_t i = 0; i < bulk.columns.size(); ++i)
        bulk.key_values[bulk.columns[i]] = bulk.new_values[i];
    for (BulkUpdate::ChangedIndex& changed : bulk.indexes) {
        std::optional<Bytes> key = indexes_.RowKeyOf(changed.index, bulk.key_values);
        if (key == changed.before.back().key)
            changed.before.pop_back();
        else
            changed.after.push_back({std::move(key), at});
    }
}

base::Status StoredTable::ChangeEntries(BulkUpdate& bulk) {
    using Entry = BulkUpdate::ChangedIndex::Entry;
    for (BulkUpdate::ChangedIndex& changed : bulk.indexes) {
        if (AreMany(changed.before.size())) {
            std::vector<RowId> rows;
            for (const Entry& entry : changed.before)
                rows.push_back(entry.row);
            RETURN_IF_ERROR(indexes_.tree(changed.index).Remove(RowSet(rows)));
        } else {
            for (const Entry& entry : changed.before)
                RETURN_IF_ERROR(indexes_.Remove(changed.index, entry.key, entry.row));
        }
        std::ranges::sort(changed.after, [](const Entry& a, const Entry& b) {
            return std::tie(a.key, a.row) < std::tie(b.key, b.row);
        });
        for (const Entry& entry : changed.after)
            RETURN_IF_ERROR(indexes_.Insert(changed.index, entry.key, entry.row));
    }
    return {};
}

}  // namespace jet
