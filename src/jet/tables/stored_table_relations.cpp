// Relations between tables: a foreign key must have its row on the primary side; a row there that
// is still referred to is not deleted and keeps its key, unless the relation passes the change on.
#include "jet/errors.h"
#include "jet/tables/stored_table.h"
#include "jet/tables/table_designer.h"

#include <algorithm>

namespace jet {
namespace {

// Changes are passed on from row to row so many times at most.
constexpr int kMaxCascadeDepth = 200;

class CascadeStep {
public:
    explicit CascadeStep(int& depth) : depth_(depth) { ++depth_; }
    ~CascadeStep() { --depth_; }
    CascadeStep(const CascadeStep&) = delete;
    CascadeStep& operator=(const CascadeStep&) = delete;

private:
    int& depth_;
};

// What the definition stores of a relation's rules; any other number stands for kRefuse.
RelationRule RuleForUpdates(const LogicalIndex& index) {
    const bool cascades =
        index.cascade_updates == static_cast<std::uint8_t>(RelationRule::kCascade);
    return cascades ? RelationRule::kCascade : RelationRule::kRefuse;
}

RelationRule RuleForDeletes(const LogicalIndex& index) {
    for (const RelationRule rule : {RelationRule::kCascade, RelationRule::kSetNull})
        if (index.cascade_deletes == static_cast<std::uint8_t>(rule)) return rule;
    return RelationRule::kRefuse;
}

std::vector<Value> Pick(std::span<const Value> values, const std::vector<std::size_t>& columns) {
    std::vector<Value> picked;
    picked.reserve(columns.size());
    for (const std::size_t column : columns)
        picked.push_back(values[column]);
    return picked;
}

bool AnyNull(const std::vector<Value>& values) {
    return std::ranges::any_of(values, [](const Value& value) { return value.is_null(); });
}

}  // namespace

base::Status StoredTable::CheckParents(RowId row, std::span<const Value> values,
                                       const std::vector<bool>* changed) {
    for (const LogicalIndex& index : definition_.logical_indexes) {
        if (index.kind != IndexKind::kRelation || index.side != RelationSide::kForeign) continue;
        const auto touched = [&](std::size_t column) { return (*changed)[column]; };
        if (changed == nullptr || std::ranges::any_of(indexes_.ColumnsOf(index.real), touched))
            RETURN_IF_ERROR(CheckParent(index, row, values));
    }
    return {};
}

base::Status StoredTable::CheckParent(const LogicalIndex& index, RowId row,
                                      std::span<const Value> values) {
    const auto& columns = indexes_.ColumnsOf(index.real);
    const std::vector<Value> key_values = Pick(values, columns);
    if (AnyNull(key_values)) return {};
    ASSIGN_OR_RETURN(StoredTable * parent, tables_.TableAt(index.other_table));
    const LogicalIndex* partner = parent->definition_.FindIndex(index.partner);
    if (partner == nullptr) return {};
    const auto& parent_columns = parent->indexes_.ColumnsOf(partner->real);
    if (parent_columns.size() != columns.size()) return {};
    RETURN_IF_ERROR(parent->CheckKeysFrom(*this, columns, partner->real));
    const Bytes key = parent->indexes_.KeyOf(partner->real, key_values);
    const bool to_itself = parent == this;
    // A row may refer to itself, by the key that it is to have.
    if (to_itself && key == indexes_.KeyOf(partner->real, Pick(values, parent_columns))) return {};
    ASSIGN_OR_RETURN(const bool found,
                     parent->indexes_.tree(partner->real).HasOther(key, to_itself ? row : RowId{}));
    return found ? base::Status()
                 : JetError(ErrorNumber::kNeedsRelatedRecord, parent->design_.name);
}

// Whether values of `columns` of the table `from` make keys of the index `real` here, as they do
// unless the file is damaged or the index cannot be maintained.
base::Status StoredTable::CheckKeysFrom(const StoredTable& from,
                                        const std::vector<std::size_t>& columns,
                                        std::size_t real) const {
    const auto& own = indexes_.ColumnsOf(real);
    for (std::size_t i = 0; i < own.size(); ++i)
        if (definition_.columns[own[i]].type != from.definition_.columns[columns[i]].type)
            return DamagedPage(definition_.page, "a relation has columns of two types");
    if (IsMaintainable(file_, definition_, definition_.real_indexes[real])) return {};
    return read_only_reason_.value_or(JetError(ErrorNumber::kReadOnly));
}

base::Status StoredTable::CheckRelation(std::u16string_view name, const std::vector<RowId>& rows) {
    for (const LogicalIndex& index : definition_.logical_indexes) {
        if (index.side != RelationSide::kForeign || index.name != name) continue;
        for (const RowId row : rows) {
            ASSIGN_OR_RETURN(const std::vector<Value> values, ReadKeyColumns(row));
            RETURN_IF_ERROR(CheckParent(index, row, values));
        }
    }
    return {};
}

base::Result<std::vector<StoredTable::Dependants>>
StoredTable::FindDependants(RowId row, std::span<const Value> before,
                            std::span<const Value> after) {
    std::vector<Dependants> all;
    for (const LogicalIndex& index : definition_.logical_indexes) {
        if (index.kind != IndexKind::kRelation || index.side != RelationSide::kPrimary) continue;
        ASSIGN_OR_RETURN(auto found, DependantsBy(index, row, before, after));
        if (found) all.push_back(std::move(*found));
    }
    return all;
}

base::Result<std::optional<StoredTable::Dependants>>
StoredTable::DependantsBy(const LogicalIndex& index, RowId row, std::span<const Value> before,
                          std::span<const Value> after) {
    const std::optional<Dependants> none;
    const bool is_delete = after.empty();
    const auto& columns = indexes_.ColumnsOf(index.real);
    const std::vector<Value> old_key = Pick(before, columns);
    if (AnyNull(old_key)) return none;
    Dependants found;
    if (!is_delete) {
        found.new_key = Pick(after, columns);
        if (found.new_key == old_key) return none;
    }
    ASSIGN_OR_RETURN(found.table, tables_.TableAt(index.other_table));
    const LogicalIndex* const partner = found.table->definition_.FindIndex(index.partner);
    if (partner == nullptr) return none;
    const IndexSet& indexes = found.table->indexes_;
    found.columns = indexes.ColumnsOf(partner->real);
    if (found.columns.size() != columns.size()) return none;
    RETURN_IF_ERROR(found.table->CheckKeysFrom(*this, columns, partner->real));

    const Bytes key = indexes.KeyOf(partner->real, old_key);
    ASSIGN_OR_RETURN(found.rows, found.table->RowsWithKey(partner->real, key));
    // A row that refers to itself does not prevent its own deletion, nor a new key that comes with
    // another reference.
    const bool frees_itself =
        found.table == this &&
        (is_delete || indexes_.KeyOf(partner->real, Pick(after, found.columns)) != key);
    if (frees_itself) std::erase(found.rows, row);
    if (found.rows.empty()) return none;

    switch (is_delete ? RuleForDeletes(index) : RuleForUpdates(index)) {
    case RelationRule::kCascade:
        break;
    case RelationRule::kSetNull:
        found.new_key.assign(columns.size(), Value::Null());
        break;
    case RelationRule::kRefuse:
        // Another spelling of the same key leaves the rows related.
        if (!is_delete && indexes.KeyOf(partner->real, found.new_key) == key) return none;
        return JetError(ErrorNumber::kHasRelatedRecords, found.table->design_.name);
    }
    return std::optional(std::move(found));
}

base::Result<std::vector<RowId>> StoredTable::RowsWithKey(std::size_t real,
                                                          const Bytes& key) const {
    std::vector<RowId> rows;
    const IndexTree& tree = indexes_.tree(real);
    ASSIGN_OR_RETURN(IndexTree::Place place, tree.Seek(key));
    while (!place.at_end() && place.view.StartsWith(place.entry, key)) {
        if (place.view.EntryBytes(place.entry) == key.size() + kRowIdBytes)
            rows.push_back(place.view.Row(place.entry));
        RETURN_IF_ERROR(tree.Next(place));
    }
    return rows;
}

base::Status StoredTable::ChangeDependants(const std::vector<Dependants>& all) {
    if (all.empty()) return {};
    if (cascade_depth_ >= kMaxCascadeDepth)
        return JetError(ErrorNumber::kHasRelatedRecords, design_.name);
    const CascadeStep deeper(cascade_depth_);
    for (const Dependants& dependants : all) {
        for (const RowId row : dependants.rows) {
            auto values = dependants.table->ReadKeyColumns(row);
            if (Is(values.status(), ErrorNumber::kRecordDeleted))
                continue;  // deleted by another cascade
            if (!values.ok()) return values.status();
            RETURN_IF_ERROR(
                dependants.new_key.empty()
                    ? dependants.table->Delete(row)
                    : dependants.table->SetForeignKey(row, std::move(values).value(), dependants));
        }
    }
    return {};
}

base::Status StoredTable::SetForeignKey(RowId row, std::vector<Value> values,
                                        const Dependants& dependants) {
    RETURN_IF_ERROR(CheckWritable());
    std::vector<bool> changed(definition_.columns.size());
    for (std::size_t i = 0; i < dependants.columns.size(); ++i) {
        const std::size_t position = dependants.columns[i];
        values[position] = dependants.new_key[i];
        changed[position] = true;
        // The rules of this side may be stricter.
        RETURN_IF_ERROR(
            Prepare(ShownPosition(definition_.columns[position].number), values[position]));
    }
    return UpdateColumns(row, std::move(values), std::move(changed));
}

}  // namespace jet
