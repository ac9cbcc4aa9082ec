// Relations between tables: a foreign key must have its row on the primary side; a row there that
// is still referred to is not deleted or renamed, unless the relation says that the change is
// passed on.
#include "jet/storage_errors.h"
#include "jet/tables/stored_table.h"
#include "jet/tables/table_designer.h"

#include <algorithm>

namespace jet {
namespace {

// Rows that follow rows that follow rows ...
constexpr int kMaxCascade = 200;

class CascadeStep {
public:
    explicit CascadeStep(int& depth) : depth_(depth) { ++depth_; }
    ~CascadeStep() { --depth_; }
    CascadeStep(const CascadeStep&) = delete;
    CascadeStep& operator=(const CascadeStep&) = delete;

private:
    int& depth_;
};

std::vector<Value> Pick(std::span<const Value> values, const std::vector<std::size_t>& columns) {
    std::vector<Value> picked;
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
    return found ? base::Status() : errors::NeedsRelatedRecord(parent->design_.name);
}

// Whether values of `columns` of the table `from` make keys of the index `real` here, as they do
// unless the file is damaged or the index cannot be maintained.
base::Status StoredTable::CheckKeysFrom(const StoredTable& from,
                                        const std::vector<std::size_t>& columns,
                                        std::size_t real) const {
    const auto& own = indexes_.ColumnsOf(real);
    for (std::size_t i = 0; i < own.size(); ++i)
        if (definition_.columns[own[i]].type != from.definition_.columns[columns[i]].type)
            return errors::DamagedPage(definition_.page, "a relation has columns of two types");
    if (IsMaintainable(file_, definition_, definition_.real_indexes[real])) return {};
    return read_only_reason_.value_or(errors::ReadOnly());
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
        const auto& columns = indexes_.ColumnsOf(index.real);
        const std::vector<Value> old_key = Pick(before, columns);
        if (AnyNull(old_key)) continue;
        Dependants found;
        if (!after.empty()) {
            found.new_key = Pick(after, columns);
            if (found.new_key == old_key) continue;
        }
        ASSIGN_OR_RETURN(found.table, tables_.TableAt(index.other_table));
        const LogicalIndex* partner = found.table->definition_.FindIndex(index.partner);
        if (partner == nullptr) continue;
        found.columns = found.table->indexes_.ColumnsOf(partner->real);
        if (found.columns.size() != columns.size()) continue;
        RETURN_IF_ERROR(found.table->CheckKeysFrom(*this, columns, partner->real));
        const Bytes key = found.table->indexes_.KeyOf(partner->real, old_key);
        // A row that refers to itself does not hold itself back when it goes, nor when it is given
        // another reference with its new key.
        const bool frees_itself =
            found.table == this &&
            (after.empty() || indexes_.KeyOf(partner->real, Pick(after, found.columns)) != key);
        const IndexTree& tree = found.table->indexes_.tree(partner->real);
        ASSIGN_OR_RETURN(IndexTree::Place place, tree.Seek(key));
        while (!place.at_end() && place.view.StartsWith(place.entry, key)) {
            const RowId dependant = place.view.Row(place.entry);
            if (place.view.EntryBytes(place.entry) == key.size() + kRowIdBytes &&
                !(frees_itself && dependant == row))
                found.rows.push_back(dependant);
            RETURN_IF_ERROR(tree.Next(place));
        }
        if (found.rows.empty()) continue;
        const std::uint8_t cascade = after.empty() ? index.cascade_deletes : index.cascade_updates;
        if (cascade != 1 && !(after.empty() && cascade == 2)) {
            // Another spelling of the same key leaves the rows related.
            if (!after.empty() && found.table->indexes_.KeyOf(partner->real, found.new_key) == key)
                continue;
            return errors::HasRelatedRecords(found.table->design_.name);
        }
        found.set_null = after.empty() && cascade == 2;
        if (found.set_null) found.new_key.assign(columns.size(), Value::Null());
        all.push_back(std::move(found));
    }
    return all;
}

base::Status StoredTable::ChangeDependants(const std::vector<Dependants>& all) {
    if (all.empty()) return {};
    if (cascade_depth_ >= kMaxCascade) return errors::HasRelatedRecords(design_.name);
    const CascadeStep deeper(cascade_depth_);
    for (const Dependants& dependants : all) {
        for (const RowId row : dependants.rows) {
            auto values = dependants.table->ReadKeyColumns(row);
            if (values.status().number() == 3167) continue;  // gone by another way
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
