#include "jet/repair/rebuilt_table.h"

#include "base/unicode.h"
#include "jet/errors.h"

#include <algorithm>
#include <limits>

namespace jet {
namespace {

// Two entries and what a node adds to them must fit an index page.
std::size_t MaxKeyBytes(const Format& format) {
    return (format.page_size - format.index_entries_offset) / 2 - 16;
}

}  // namespace

RebuiltTable::RebuiltTable(FileContext& file, const TableDefinition& source, std::u16string name,
                           PageNumber page, RepairReport& report)
    : file_(file), source_(source), name_(std::move(name)), report_(report), own_maps_(file),
      builder_(file, source, page), seen_(source.real_indexes.size()) {}

base::Status RebuiltTable::Start(MapRows* maps) {
    RETURN_IF_ERROR(builder_.Start(maps != nullptr ? *maps : own_maps_));
    for (std::size_t index = 0; index < seen_.size(); ++index)
        if (!builder_.IsComputed(index)) GiveUpIndex(index, "its sort order is not known");
    return {};
}

void RebuiltTable::Lose(RowId at, const std::string& field, const std::string& reason) {
    report_.Add(
        {base::ToUtf8(name_), at.page, at.page == source_.page ? -1 : at.slot, field, reason});
}

std::string RebuiltTable::NameOf(std::size_t index) {
    for (const LogicalIndex& logical : builder_.definition().logical_indexes)
        if (logical.real == index) return base::ToUtf8(logical.name);
    return std::to_string(index);
}

void RebuiltTable::GiveUpIndex(std::size_t index, const std::string& reason) {
    if (builder_.IsDropped(index)) return;
    Lose({source_.page, 0}, "", "index " + NameOf(index) + " is gone: " + reason);
    builder_.DropIndex(index);
}

// The column whose number may be another one without harm.
std::optional<std::size_t> RebuiltTable::AutonumberOf(std::size_t index) const {
    for (const RealIndexColumn& column : source_.real_indexes[index].columns) {
        const ColumnDefinition* found = source_.FindColumn(column.column);
        if (found->is_autonumber() && found->type == ColumnType::kLong)
            return static_cast<std::size_t>(found - source_.columns.data());
    }
    return std::nullopt;
}

void RebuiltTable::Relax(std::size_t index, RowId at) {
    Lose(at, "", "the row breaks a rule of index " + NameOf(index) + ", which is kept no more");
    TableDefinition& definition = builder_.definition();
    definition.real_indexes[index].flags &=
        static_cast<std::uint8_t>(~(kIndexUnique | kIndexRequired));
    for (LogicalIndex& logical : definition.logical_indexes)
        if (logical.real == index && logical.kind == IndexKind::kPrimary)
            logical.kind = IndexKind::kPlain;
}

bool RebuiltTable::Breaks(std::size_t index, const CopiedRow& row,
                          const std::optional<Bytes>& key) const {
    const RealIndex& real = source_.real_indexes[index];
    bool any_null = false;
    bool all_null = true;
    for (const RealIndexColumn& column : real.columns) {
        const ColumnDefinition* found = source_.FindColumn(column.column);
        const bool is_null = found->type != ColumnType::kBoolean &&
                             !row[static_cast<std::size_t>(found - source_.columns.data())].set;
        any_null = any_null || is_null;
        all_null = all_null && is_null;
    }
    if (any_null && (real.required() || builder_.IsPrimary(index))) return true;
    return real.unique() && key && !all_null && seen_[index].contains(*key);
}

RebuiltTable::Verdict RebuiltTable::Judge(RowId at, const CopiedRow& row, IndexSet::Keys& keys,
                                          bool may_defer) {
    for (std::size_t index = 0; index < keys.size(); ++index) {
        if (keys[index] && keys[index]->size() > MaxKeyBytes(file_.format)) {
            GiveUpIndex(index, "a key is too long");
            keys[index].reset();
        }
        const std::uint8_t flags = builder_.definition().real_indexes[index].flags;
        const bool has_rule =
            (flags & (kIndexUnique | kIndexRequired)) != 0 || builder_.IsPrimary(index);
        if (builder_.IsDropped(index) || !has_rule || !Breaks(index, row, keys[index])) continue;
        if (is_own()) {
            Lose(at, "", "another row has the key of this one in index " + NameOf(index));
            return Verdict::kRefused;
        }
        const auto column = AutonumberOf(index);
        if (column && may_defer) {
            deferred_.push_back({at, row, *column});
            return Verdict::kDeferred;
        }
        Relax(index, at);
    }
    return Verdict::kFine;
}

void RebuiltTable::NoteNumbers(const CopiedRow& row) {
    for (std::size_t i = 0; i < row.size(); ++i)
        if (source_.columns[i].is_autonumber() && source_.columns[i].type == ColumnType::kLong &&
            row[i].set)
            greatest_ = std::max(greatest_, base::LoadLittle<std::int32_t>(row[i].bytes.data()));
}

base::Status RebuiltTable::Add(RowId at, const CopiedRow& row) {
    ASSIGN_OR_RETURN(IndexSet::Keys keys, builder_.KeysOf(row));
    if (Judge(at, row, keys, true) != Verdict::kFine) return {};
    return Store(at, row, std::move(keys));
}

base::Status RebuiltTable::Store(RowId at, const CopiedRow& row, IndexSet::Keys keys) {
    const IndexSet::Keys kept = keys;
    const auto added = builder_.AddRow(row, std::move(keys));
    if (Is(added.status(), ErrorNumber::kRecordTooLarge)) {
        Lose(at, "", "the row is too large for a page");
        return {};
    }
    RETURN_IF_ERROR(added.status());
    for (std::size_t index = 0; index < kept.size(); ++index)
        if (kept[index] && source_.real_indexes[index].unique()) seen_[index].insert(*kept[index]);
    NoteNumbers(row);
    ++report_.rows;
    return {};
}

base::Status RebuiltTable::AddDeferred() {
    const auto counter = static_cast<std::int32_t>(builder_.definition().last_autonumber);
    // A counter near its end is damage rather than two thousand million rows.
    if (counter < std::numeric_limits<std::int32_t>::max() / 2)
        greatest_ = std::max(greatest_, counter);
    for (Deferred& deferred : deferred_) {
        if (greatest_ < std::numeric_limits<std::int32_t>::max()) {
            CopiedField& field = deferred.row[deferred.column];
            field.set = true;
            field.bytes.resize(sizeof greatest_);
            base::StoreLittle(field.bytes.data(), ++greatest_);
            Lose(deferred.at, base::ToUtf8(source_.columns[deferred.column].name),
                 "the number was taken or lost: it is " + std::to_string(greatest_) + " now");
        }
        ASSIGN_OR_RETURN(IndexSet::Keys keys, builder_.KeysOf(deferred.row));
        (void)Judge(deferred.at, deferred.row, keys, false);
        RETURN_IF_ERROR(Store(deferred.at, deferred.row, std::move(keys)));
    }
    deferred_.clear();
    if (greatest_ > static_cast<std::int32_t>(builder_.definition().last_autonumber))
        builder_.definition().last_autonumber = static_cast<std::uint32_t>(greatest_);
    return {};
}

}  // namespace jet
