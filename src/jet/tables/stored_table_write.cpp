// Inserting, updating and deleting rows. Checks come first, so that a refused change leaves nothing
// behind.
#include "jet/errors.h"
#include "jet/rows/field_codec.h"
#include "jet/rows/row_fetch.h"
#include "jet/tables/stored_table.h"
#include "jet/values/coerce.h"
#include "jet/values/guid_source.h"

#include <algorithm>

namespace jet {

base::Status StoredTable::CheckWritable() const {
    if (file_.store.read_only()) return JetError(ErrorNumber::kReadOnly);
    return read_only_reason_.value_or(base::Status());
}

base::Status StoredTable::Prepare(std::size_t shown, Value& value) const {
    const ColumnDesign& column = design_.columns[shown];
    if (!IsOfType(value, column.type)) {
        ASSIGN_OR_RETURN(value, Coerce(value, column));
    }
    if (value.is_null())
        return column.required ? JetError(ErrorNumber::kValueRequired, column.name)
                               : base::Status();
    if (const auto* text = value.get_if<std::u16string>()) {
        if (text->empty() && !column.allow_zero_length)
            return JetError(ErrorNumber::kZeroLength, column.name);
        if (column.type == ColumnType::kText && text->size() > column.size)
            return JetError(ErrorNumber::kFieldTooSmall);
    }
    return {};
}

base::Status StoredTable::CheckRules(RowId row, std::span<const Value> values,
                                     const std::vector<bool>& changed) {
    if (rules_ == nullptr) return {};
    std::vector<Value> shown(design_.columns.size());
    std::vector<bool> shown_changed(shown.size());
    for (std::size_t i = 0; i < shown.size(); ++i)
        shown_changed[i] = changed[positions_[i]];
    for (const std::size_t column : rules_->columns()) {
        if (shown_changed[column])
            shown[column] = values[positions_[column]];
        else
            RETURN_IF_ERROR(Read(row, std::span(&column, 1), std::span(shown).subspan(column, 1)));
    }
    return rules_->Check(shown, shown_changed);
}

base::Status StoredTable::FillAutonumbers(std::span<Value> values) {
    for (std::size_t i = 0; i < values.size(); ++i) {
        const ColumnDesign& column = design_.columns[i];
        if (!column.autonumber || !values[i].is_null()) continue;
        if (column.type == ColumnType::kGuid) {
            values[i] = Value::OfGuid(MakeRandomGuid());
            continue;
        }
        ASSIGN_OR_RETURN(const std::int32_t last, LastAutonumber(i));
        values[i] = Value::Long(static_cast<std::int32_t>(static_cast<std::uint32_t>(last) + 1));
    }
    return {};
}

// The counter, unless other programs have left it behind the values that there are.
base::Result<std::int32_t> StoredTable::LastAutonumber(std::size_t shown) {
    std::int32_t last = 0;
    {
        ASSIGN_OR_RETURN(const PageView page, file_.store.Read(definition_.page));
        const auto counters = ReadDefinitionCounters(page.bytes(), file_.format);
        last = static_cast<std::int32_t>(counters.last_autonumber);
    }
    if (counter_is_checked_) return last;
    counter_is_checked_ = true;
    for (std::size_t index = 0; index < design_.indexes.size(); ++index) {
        const IndexDesign& design = design_.indexes[index];
        if (!design.maintainable || design.columns.front().column != shown) continue;
        ASSIGN_OR_RETURN(const auto cursor, Range(index, {}, {}, design.columns.front().ascending));
        ASSIGN_OR_RETURN(const auto row, cursor->Next());
        if (!row) break;
        Value greatest;
        RETURN_IF_ERROR(Read(*row, std::span(&shown, 1), std::span(&greatest, 1)));
        if (const auto* number = greatest.get_if<std::int32_t>()) last = std::max(last, *number);
        break;
    }
    return last;
}

// Rows, and the last autonumber when the row has a larger one.
base::Status StoredTable::CountRows(std::int64_t change, std::span<const Value> values) {
    ASSIGN_OR_RETURN(const std::span<std::byte> page, file_.store.Change(definition_.page));
    DefinitionCounters counters = ReadDefinitionCounters(page, file_.format);
    // Never below 0: what others have counted may be off.
    counters.rows = static_cast<std::uint32_t>(std::max<std::int64_t>(0, counters.rows + change));
    for (std::size_t i = 0; i < values.size(); ++i) {
        const auto* number = values[i].get_if<std::int32_t>();
        if (!design_.columns[i].autonumber || number == nullptr) continue;
        if (*number > static_cast<std::int32_t>(counters.last_autonumber))
            counters.last_autonumber = static_cast<std::uint32_t>(*number);
    }
    WriteDefinitionCounters(page, file_.format, counters);
    return {};
}

base::Result<RowId> StoredTable::Insert(std::span<Value> values) {
    RETURN_IF_ERROR(CheckWritable());
    if (values.size() != design_.columns.size()) return JetError(ErrorNumber::kValueCountDiffers);
    RETURN_IF_ERROR(FillAutonumbers(values));
    for (std::size_t i = 0; i < values.size(); ++i)
        RETURN_IF_ERROR(Prepare(i, values[i]));
    std::vector<Value> stored(values.size());
    for (std::size_t i = 0; i < values.size(); ++i)
        stored[positions_[i]] = values[i];
    RETURN_IF_ERROR(CheckRules({}, stored, std::vector<bool>(stored.size(), true)));

    const IndexSet::Keys keys = indexes_.KeysOf(stored);
    for (std::size_t index = 0; index < keys.size(); ++index)
        RETURN_IF_ERROR(indexes_.Check(index, keys[index], stored, {}));
    RETURN_IF_ERROR(CheckParents({}, stored, nullptr));

    ASSIGN_OR_RETURN(const RowId row, rows_.Insert(stored));
    for (std::size_t index = 0; index < keys.size(); ++index)
        RETURN_IF_ERROR(indexes_.Insert(index, keys[index], row));
    RETURN_IF_ERROR(CountRows(1, values));
    RecordRow(RowChange::kInserted, row);
    return row;
}

base::Result<std::vector<Value>> StoredTable::ReadKeyColumns(RowId row) {
    ASSIGN_OR_RETURN(const StoredRow stored, FetchRow(file_, definition_.page, row));
    const auto view = RowView::Parse(stored.bytes, file_.format);
    if (!view) return DamagedPage(row.page, "a row is unreadable");
    std::vector<Value> values(definition_.columns.size());
    for (std::size_t index = 0; index < indexes_.size(); ++index)
        for (const std::size_t column : indexes_.ColumnsOf(index))
            RETURN_IF_ERROR(DecodeField(file_, definition_.columns[column], *view, values[column]));
    return values;
}

base::Status StoredTable::Update(RowId row, std::span<const ColumnChange> changes) {
    RETURN_IF_ERROR(CheckWritable());
    ASSIGN_OR_RETURN(std::vector<Value> values, ReadKeyColumns(row));
    std::vector<bool> changed(definition_.columns.size());
    for (const ColumnChange& change : changes) {
        Value value = change.value;
        if (design_.columns[change.column].autonumber && value.is_null())
            return JetError(ErrorNumber::kValueRequired, design_.columns[change.column].name);
        RETURN_IF_ERROR(Prepare(change.column, value));
        const std::size_t position = positions_[change.column];
        values[position] = std::move(value);
        changed[position] = true;
    }
    return UpdateColumns(row, std::move(values), std::move(changed));
}

// `values`: those of the index columns, and the new ones. Requires: each fits its column.
base::Status StoredTable::UpdateColumns(RowId row, std::vector<Value> values,
                                        std::vector<bool> changed) {
    RETURN_IF_ERROR(CheckRules(row, values, changed));
    ASSIGN_OR_RETURN(const std::vector<Value> before, ReadKeyColumns(row));
    const IndexSet::Keys old_keys = indexes_.KeysOf(before);
    const IndexSet::Keys keys = indexes_.KeysOf(values);
    for (std::size_t index = 0; index < keys.size(); ++index)
        if (keys[index] != old_keys[index])
            RETURN_IF_ERROR(indexes_.Check(index, keys[index], values, row));
    RETURN_IF_ERROR(CheckParents(row, values, &changed));
    ASSIGN_OR_RETURN(const auto dependants, FindDependants(row, before, values));

    std::vector<std::size_t> recorded;
    for (std::size_t i = 0; recorder_ != nullptr && i < changed.size(); ++i)
        if (changed[i]) recorded.push_back(i);
    RecordBefore(row, recorded);
    RETURN_IF_ERROR(rows_.Update(row, values, changed));
    RecordAfter(row, recorded);
    for (std::size_t index = 0; index < keys.size(); ++index) {
        if (keys[index] == old_keys[index]) continue;
        RETURN_IF_ERROR(indexes_.Remove(index, old_keys[index], row));
        RETURN_IF_ERROR(indexes_.Insert(index, keys[index], row));
    }
    std::vector<Value> shown(values.size());
    bool has_autonumber = false;
    for (std::size_t i = 0; i < shown.size(); ++i) {
        if (!changed[positions_[i]] || !design_.columns[i].autonumber) continue;
        shown[i] = values[positions_[i]];
        has_autonumber = true;
    }
    if (has_autonumber) RETURN_IF_ERROR(CountRows(0, shown));
    return ChangeDependants(dependants);
}

base::Status StoredTable::Delete(RowId row) {
    RETURN_IF_ERROR(CheckWritable());
    ASSIGN_OR_RETURN(const std::vector<Value> values, ReadKeyColumns(row));
    ASSIGN_OR_RETURN(const auto dependants, FindDependants(row, values, {}));
    RecordRow(RowChange::kDeleted, row);
    const IndexSet::Keys keys = indexes_.KeysOf(values);
    for (std::size_t index = 0; index < keys.size(); ++index)
        RETURN_IF_ERROR(indexes_.Remove(index, keys[index], row));
    RETURN_IF_ERROR(rows_.Delete(row));
    RETURN_IF_ERROR(CountRows(-1, {}));
    return ChangeDependants(dependants);
}

// ---------------------------------------------------------------------------------- recording

void StoredTable::RecordRow(RowChange change, RowId row) {
    if (recorder_ == nullptr) return;
    const auto stored = FetchRow(file_, definition_.page, row);
    const auto view = stored.ok() ? RowView::Parse(stored->bytes, file_.format) : std::nullopt;
    view ? recorder_->AddRow(Recorded(), change, *view) : recorder_->Miss();
}

void StoredTable::RecordRows(const RowSet& gone) {
    if (recorder_ == nullptr) return;
    RowFetcher fetcher(file_, definition_.page);
    for (const RowId row : gone.rows()) {
        const auto stored = fetcher.Fetch(row);
        if (Is(stored.status(), ErrorNumber::kRecordDeleted)) continue;
        const auto view = stored.ok() ? RowView::Parse(stored->bytes, file_.format) : std::nullopt;
        view ? recorder_->AddRow(Recorded(), RowChange::kDeleted, *view) : recorder_->Miss();
    }
}

void StoredTable::RecordBefore(RowId row, std::span<const std::size_t> columns) {
    if (recorder_ == nullptr) return;
    const auto stored = FetchRow(file_, definition_.page, row);
    const auto view = stored.ok() ? RowView::Parse(stored->bytes, file_.format) : std::nullopt;
    if (view) recorder_->BeginUpdate(Recorded(), *view, columns);
}

void StoredTable::RecordAfter(RowId row, std::span<const std::size_t> columns) {
    if (recorder_ == nullptr) return;
    const auto stored = FetchRow(file_, definition_.page, row);
    const auto view = stored.ok() ? RowView::Parse(stored->bytes, file_.format) : std::nullopt;
    view ? recorder_->FinishUpdate(Recorded(), *view, columns) : recorder_->Miss();
}

}  // namespace jet
