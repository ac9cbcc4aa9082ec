// Relations between tables: a foreign key must have its row on the primary side; a row there that
// is still referred to is not deleted or renamed, unless the relation says that the change is
// passed on.
#include "jet/storage_errors.h"
#include "jet/stored_table.h"

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

const LogicalIndex* FindPartner(const StoredTable& table, std::int32_t number) {
    for (const LogicalIndex& index : table.definition().logical_indexes)
        if (static_cast<std::int32_t>(index.number) == number) return &index;
    return nullptr;
}

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

base::Status StoredTable::CheckParents(std::span<const Value> values,
                                       const std::vector<bool>* changed) {
    for (const LogicalIndex& index : definition_.logical_indexes) {
        if (index.kind != IndexKind::kRelation || index.side != RelationSide::kForeign) continue;
        const auto& columns = indexes_.ColumnsOf(index.real);
        const auto touched = [&](std::size_t column) { return (*changed)[column]; };
        if (changed != nullptr && std::ranges::none_of(columns, touched)) continue;
        const std::vector<Value> key_values = Pick(values, columns);
        if (AnyNull(key_values)) continue;
        ASSIGN_OR_RETURN(StoredTable * parent, tables_.TableAt(index.other_table));
        const LogicalIndex* partner = FindPartner(*parent, index.partner);
        if (partner == nullptr) continue;
        const auto& parent_columns = parent->indexes_.ColumnsOf(partner->real);
        if (parent_columns.size() != columns.size()) continue;
        const Bytes key = parent->indexes_.KeyOf(partner->real, key_values);
        if (parent == this && key == indexes_.KeyOf(partner->real, Pick(values, parent_columns)))
            continue;  // the row refers to itself
        ASSIGN_OR_RETURN(const bool found, parent->indexes_.tree(partner->real).HasOther(key, {}));
        if (!found) return errors::NeedsRelatedRecord(parent->design_.name);
    }
    return {};
}

base::Result<std::vector<StoredTable::Dependants>>
StoredTable::FindDependants(std::span<const Value> before, std::span<const Value> after) {
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
        const LogicalIndex* partner = FindPartner(*found.table, index.partner);
        if (partner == nullptr) continue;
        found.columns = found.table->indexes_.ColumnsOf(partner->real);
        if (found.columns.size() != columns.size()) continue;
        const Bytes key = found.table->indexes_.KeyOf(partner->real, old_key);
        const IndexTree& tree = found.table->indexes_.tree(partner->real);
        ASSIGN_OR_RETURN(IndexTree::Place place, tree.Seek(key));
        while (!place.at_end() && place.view.StartsWith(place.entry, key)) {
            if (place.view.EntryBytes(place.entry) == key.size() + kRowIdBytes)
                found.rows.push_back(place.view.Row(place.entry));
            RETURN_IF_ERROR(tree.Next(place));
        }
        if (found.rows.empty()) continue;
        const std::uint8_t cascade = after.empty() ? index.cascade_deletes : index.cascade_updates;
        if (cascade != 1 && !(after.empty() && cascade == 2))
            return errors::HasRelatedRecords(found.table->design_.name);
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
            StoredTable& table = *dependants.table;
            auto values = table.ReadKeyColumns(row);
            if (values.status().number() == 3167) continue;  // gone by another way
            if (!values.ok()) return values.status();
            if (dependants.new_key.empty()) {
                RETURN_IF_ERROR(table.Delete(row));
                continue;
            }
            RETURN_IF_ERROR(table.CheckWritable());
            std::vector<bool> changed(table.definition_.columns.size());
            for (std::size_t i = 0; i < dependants.columns.size(); ++i) {
                values.value()[dependants.columns[i]] = dependants.new_key[i];
                changed[dependants.columns[i]] = true;
            }
            RETURN_IF_ERROR(
                table.UpdateColumns(row, std::move(values).value(), std::move(changed)));
        }
    }
    return {};
}

}  // namespace jet
