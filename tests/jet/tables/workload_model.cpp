#include "jet/tables/workload_model.h"

#include "base/unicode.h"
#include "jet/text/collation.h"
#include "jet/text/text_codec.h"
#include "jet/text/text_key.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace jet::test {
namespace {

bool AnyNull(const WorkloadModel::Row& row, const std::vector<std::size_t>& columns) {
    return std::ranges::any_of(columns, [&](std::size_t c) { return row[c].is_null(); });
}

bool AllNull(const WorkloadModel::Row& row, const std::vector<std::size_t>& columns) {
    return std::ranges::all_of(columns, [&](std::size_t c) { return row[c].is_null(); });
}

WorkloadModel::Row Pick(const WorkloadModel::Row& row, const std::vector<std::size_t>& columns) {
    WorkloadModel::Row picked;
    for (const std::size_t column : columns)
        picked.push_back(row[column]);
    return picked;
}

template <typename T>
void AppendRaw(std::string& key, const T& value) {
    const auto* first = reinterpret_cast<const char*>(&value);
    key.append(first, sizeof(T));
}

double NumberOf(const Value& value) {
    if (const auto* number = value.get_if<std::uint8_t>()) return *number;
    if (const auto* number = value.get_if<std::int16_t>()) return *number;
    if (const auto* number = value.get_if<std::int32_t>()) return *number;
    if (const auto* number = value.get_if<float>()) return static_cast<double>(*number);
    if (const auto* number = value.get_if<double>()) return *number;
    if (const auto* money = value.get_if<Money>()) return static_cast<double>(money->units) / 1e4;
    if (const auto* date = value.get_if<Date>()) return date->days;
    ADD_FAILURE() << "a rule over a value that is no number";
    return 0;
}

// The rules that the files have.
bool KeepsRule(std::u16string_view rule, const Value& value) {
    if (value.is_null()) return true;
    if (rule == u">0") return NumberOf(value) > 0;
    if (rule == u">=0") return NumberOf(value) >= 0;
    if (rule == u"Between 0 And 1") return NumberOf(value) >= 0 && NumberOf(value) <= 1;
    if (rule == u"<Date()") return true;  // the dates of the workload are all past
    ADD_FAILURE() << "a rule that the model does not know: " << base::ToUtf8(std::u16string(rule));
    return true;
}

// More than a row of this content takes.
std::size_t RowBound(const TableDesign& design, const WorkloadModel::Row& row, bool jet3) {
    std::size_t bytes = 64 + 4 * design.columns.size();
    for (std::size_t c = 0; c < row.size(); ++c) {
        const std::size_t unit = jet3 ? 1 : 2;
        std::size_t content = 17;
        if (const auto* text = row[c].get_if<std::u16string>()) content = unit * text->size();
        if (const auto* binary = row[c].get_if<Bytes>()) content = binary->size();
        const bool leaves_row = design.columns[c].type == ColumnType::kMemo ||
                                design.columns[c].type == ColumnType::kOle;
        bytes += leaves_row ? 12 : content;
    }
    return bytes;
}

std::size_t KeyBound(const IndexDesign& index, const WorkloadModel::Row& row) {
    std::size_t bytes = 0;
    for (const IndexColumn& column : index.columns) {
        bytes += 20;
        if (const auto* text = row[column.column].get_if<std::u16string>())
            bytes += 4 * std::min<std::size_t>(text->size(), 255);
        if (const auto* binary = row[column.column].get_if<Bytes>()) bytes += 2 * binary->size();
    }
    return bytes;
}

}  // namespace

std::string WorkloadModel::KeyOf(const Row& row, const Columns& columns) const {
    std::string key;
    for (const std::size_t column : columns) {
        const Value& value = row[column];
        Bytes bytes;
        std::string part;
        if (const auto* text = value.get_if<std::u16string>()) {
            if (jet3_)
                AppendTextKeyJet3(TextCodec(3, 1252).EncodeValue(*text, false).value(), bytes);
            else
                AppendTextKey(*text, bytes);
        } else if (const auto* binary = value.get_if<Bytes>()) {
            bytes = *binary;
        } else {
            std::visit(
                [&](const auto& content) {
                    using T = std::decay_t<decltype(content)>;
                    if constexpr (std::is_same_v<T, Numeric>) {
                        part += content.negative ? '-' : '+';
                        AppendRaw(part, content.magnitude);
                    } else if constexpr (std::is_trivially_copyable_v<T> &&
                                         !std::is_same_v<T, std::monostate>) {
                        AppendRaw(part, content);
                    }
                },
                value.content());
        }
        for (const std::byte byte : bytes)
            part += static_cast<char>(byte);
        key += std::to_string(value.content().index()) + ":" + std::to_string(part.size()) + ":" +
               part;
    }
    return key;
}

void WorkloadModel::Index(Table& table, RowId id, const Row& row, bool add) const {
    for (auto* group : {&table.indexes, &table.relations, &table.referenced})
        for (KeyTable& keys : *group) {
            if (keys.columns.empty() ||
                (keys.nulls ? AllNull(row, keys.columns) : AnyNull(row, keys.columns)))
                continue;
            const std::string key = KeyOf(row, keys.columns);
            if (add)
                keys.rows[key].insert(id);
            else if (auto& rows = keys.rows[key]; rows.erase(id) == 1 && rows.empty())
                keys.rows.erase(key);
        }
}

void WorkloadModel::AddTable(const TableDesign& design, Rows rows) {
    Table& table = tables_[design.name];
    table.design = design;
    for (const IndexDesign& index : design.indexes) {
        KeyTable& keys = table.indexes.emplace_back();
        keys.nulls = true;
        for (const IndexColumn& column : index.columns)
            keys.columns.push_back(column.column);
    }
    for (const auto& [id, row] : rows)
        Index(table, id, row, true);
    table.rows = std::move(rows);
}

void WorkloadModel::AddRelation(ModelRelation relation) {
    for (auto& [name, table] : tables_) {
        KeyTable& keys = table.relations.emplace_back();
        KeyTable& referenced = table.referenced.emplace_back();
        if (name == relation.table) keys.columns = relation.columns;
        if (name == relation.referenced) referenced.columns = relation.referenced_columns;
        for (KeyTable* added : {&keys, &referenced})
            for (const auto& [id, row] : table.rows)
                if (!added->columns.empty() && !AnyNull(row, added->columns))
                    added->rows[KeyOf(row, added->columns)].insert(id);
    }
    relations_.push_back(std::move(relation));
}

void WorkloadModel::Put(const Place& place, std::optional<Row> row) {
    Table& table = tables_.at(place.table);
    const auto known = table.rows.find(place.row);
    undo_.emplace_back(place, std::nullopt);
    if (known != table.rows.end()) {
        undo_.back().second = known->second;
        Index(table, place.row, known->second, false);
        table.rows.erase(known);
    }
    if (!row) return;
    Index(table, place.row, *row, true);
    table.rows.emplace(place.row, std::move(*row));
}

void WorkloadModel::Apply(const Plan& plan) {
    for (const auto& [place, row] : plan.updates)
        if (!plan.deletes.contains(place)) Put(place, row);
    for (const Place& place : plan.deletes)
        Put(place, std::nullopt);
}

void WorkloadModel::Rollback() {
    auto undo = std::move(undo_);
    for (auto step = undo.rbegin(); step != undo.rend(); ++step)
        Put(step->first, step->second);
    undo_.clear();
}

void WorkloadModel::CheckColumns(const Table& table, const Row& row,
                                 const std::vector<bool>& changed, Plan& plan) const {
    for (std::size_t c = 0; c < row.size(); ++c) {
        const ColumnDesign& column = table.design.columns[c];
        if (!changed[c]) continue;
        if (row[c].is_null()) {
            if (column.required && !column.autonumber) plan.refusals.insert(3314);
            continue;
        }
        if (const auto* text = row[c].get_if<std::u16string>()) {
            if (text->empty() && !column.allow_zero_length) plan.refusals.insert(3315);
            if (column.type == ColumnType::kText && text->size() > column.size)
                plan.refusals.insert(3163);
        }
        if (column.validation_rule && !KeepsRule(*column.validation_rule, row[c]))
            plan.refusals.insert(3317);
    }
    if (table.design.validation_rule) ADD_FAILURE() << "the model knows no rules of tables";
    const std::size_t limit = jet3_ ? 2012 : 4060;
    if (RowBound(table.design, row, jet3_) > limit) plan.may_be_too_large = true;
    for (const IndexDesign& index : table.design.indexes)
        if (KeyBound(index, row) > (jet3_ ? 700 : 1600)) plan.may_be_too_large = true;
}

void WorkloadModel::CheckIndexes(const Table& table, const Row& row, const Row* before, RowId id,
                                 Plan& plan) const {
    for (std::size_t i = 0; i < table.design.indexes.size(); ++i) {
        const IndexDesign& index = table.design.indexes[i];
        const KeyTable& keys = table.indexes[i];
        // An autonumber that is still to be given out differs from all others.
        const bool open = std::ranges::any_of(keys.columns, [&](std::size_t c) {
            return table.design.columns[c].autonumber && row[c].is_null();
        });
        if (open) continue;
        const std::string key = KeyOf(row, keys.columns);
        if (before != nullptr && key == KeyOf(*before, keys.columns)) continue;
        if ((index.required || index.primary) && AnyNull(row, keys.columns))
            plan.refusals.insert(3058);
        const auto found = keys.rows.find(key);
        const bool taken = found != keys.rows.end() &&
                           std::ranges::any_of(found->second, [&](RowId r) { return r != id; });
        if ((index.unique || index.primary) && taken) plan.refusals.insert(3022);
    }
}

void WorkloadModel::CheckReferences(const Table& table, const Row& row,
                                    const std::vector<bool>& changed, RowId id,
                                    const ModelRelation* cause, Plan& plan) const {
    for (std::size_t r = 0; r < relations_.size(); ++r) {
        const ModelRelation& relation = relations_[r];
        if (&relation == cause || relation.table != table.design.name) continue;
        if (AnyNull(row, relation.columns) ||
            std::ranges::none_of(relation.columns, [&](std::size_t c) { return changed[c]; }))
            continue;
        const std::string key = KeyOf(row, relation.columns);
        const bool to_itself = relation.referenced == relation.table;
        if (to_itself && !AnyNull(row, relation.referenced_columns) &&
            KeyOf(row, relation.referenced_columns) == key)
            continue;
        const auto& known = tables_.at(relation.referenced).referenced[r].rows;
        const auto found = known.find(key);
        const bool there =
            found != known.end() && std::ranges::any_of(found->second, [&](RowId other) {
                return !to_itself || other != id;
            });
        if (!there) plan.refusals.insert(3201);
    }
}

WorkloadModel::Plan WorkloadModel::PlanInsert(const std::u16string& name, const Row& row) const {
    const Table& table = tables_.at(name);
    Plan plan;
    const std::vector<bool> all(row.size(), true);
    CheckColumns(table, row, all, plan);
    CheckIndexes(table, row, nullptr, {}, plan);
    CheckReferences(table, row, all, {}, nullptr, plan);
    return plan;
}

WorkloadModel::Plan WorkloadModel::PlanUpdate(const Place& place,
                                              const std::vector<ColumnChange>& changes) const {
    Row row = tables_.at(place.table).rows.at(place.row);
    std::vector<bool> changed(row.size());
    for (const ColumnChange& change : changes) {
        row[change.column] = change.value;
        changed[change.column] = true;
    }
    Plan plan;
    PlanRow(place, std::move(row), changed, nullptr, plan);
    return plan;
}

void WorkloadModel::PlanRow(const Place& place, Row row, const std::vector<bool>& changed,
                            const ModelRelation* cause, Plan& plan) const {
    const Table& table = tables_.at(place.table);
    const auto pending = plan.updates.find(place);
    const Row before = pending == plan.updates.end() ? table.rows.at(place.row) : pending->second;
    CheckColumns(table, row, changed, plan);
    CheckIndexes(table, row, &before, place.row, plan);
    CheckReferences(table, row, changed, place.row, cause, plan);
    plan.updates[place] = row;
    PassOn(place, before, row, plan);
}

// Rows that refer to one whose key changes.
void WorkloadModel::PassOn(const Place& place, const Row& before, const Row& row,
                           Plan& plan) const {
    for (std::size_t r = 0; r < relations_.size(); ++r) {
        const ModelRelation& relation = relations_[r];
        if (relation.referenced != place.table || AnyNull(before, relation.referenced_columns))
            continue;
        const Row key = Pick(row, relation.referenced_columns);
        if (key == Pick(before, relation.referenced_columns)) continue;
        const std::string old_key = KeyOf(before, relation.referenced_columns);
        const auto& referring = tables_.at(relation.table).relations[r].rows;
        const auto found = referring.find(old_key);
        if (found == referring.end()) continue;
        for (const RowId id : found->second) {
            const Place other{relation.table, id};
            const bool frees_itself = other == place && KeyOf(row, relation.columns) != old_key;
            if (frees_itself) continue;
            if (relation.cascade_updates)
                SetForeignKey(other, relation, key, plan);
            else if (KeyOf(row, relation.referenced_columns) != old_key)
                plan.refusals.insert(3200);
        }
    }
}

void WorkloadModel::SetForeignKey(const Place& place, const ModelRelation& relation, const Row& key,
                                  Plan& plan) const {
    const auto pending = plan.updates.find(place);
    Row row = pending == plan.updates.end() ? tables_.at(place.table).rows.at(place.row)
                                            : pending->second;
    std::vector<bool> changed(row.size());
    for (std::size_t i = 0; i < relation.columns.size(); ++i) {
        row[relation.columns[i]] = key[i];
        changed[relation.columns[i]] = true;
    }
    PlanRow(place, std::move(row), changed, &relation, plan);
}

WorkloadModel::Plan WorkloadModel::PlanDelete(const Place& place) const {
    Plan plan;
    std::vector<Place> work{place};
    plan.deletes.insert(place);
    while (!work.empty()) {
        const Place gone = work.back();
        work.pop_back();
        const Row& row = tables_.at(gone.table).rows.at(gone.row);
        for (std::size_t r = 0; r < relations_.size(); ++r) {
            const ModelRelation& relation = relations_[r];
            if (relation.referenced != gone.table || AnyNull(row, relation.referenced_columns))
                continue;
            const auto& referring = tables_.at(relation.table).relations[r].rows;
            const auto found = referring.find(KeyOf(row, relation.referenced_columns));
            if (found == referring.end()) continue;
            for (const RowId id : found->second) {
                const Place other{relation.table, id};
                if (plan.deletes.contains(other)) continue;
                if (relation.cascade_deletes) {
                    plan.deletes.insert(other);
                    work.push_back(other);
                } else if (relation.nulls_on_delete) {
                    SetForeignKey(other, relation, Row(relation.columns.size()), plan);
                } else {
                    plan.refusals.insert(3200);
                }
            }
        }
    }
    return plan;
}

}  // namespace jet::test
