#include "jet/index/index_set.h"

#include "jet/errors.h"
#include "jet/index/key_encoder.h"

#include <algorithm>

namespace jet {
namespace {

constexpr std::size_t kRoomOfNumbers = 16;  // bytes of a key that need not grow for one or two

}  // namespace

IndexSet::IndexSet(FileContext& file, const TableDefinition& definition)
    : file_(file), definition_(definition) {
    for (const RealIndex& index : definition.real_indexes) {
        trees_.push_back(std::make_unique<IndexTree>(file, definition.page, index.root, index.map));
        auto& columns = columns_.emplace_back();
        for (const RealIndexColumn& column : index.columns)
            columns.push_back(static_cast<std::size_t>(definition.FindColumn(column.column) -
                                                       definition.columns.data()));
    }
}

bool IndexSet::IsPrimary(std::size_t index) const {
    return std::ranges::any_of(definition_.logical_indexes, [&](const LogicalIndex& logical) {
        return logical.real == index && logical.kind == IndexKind::kPrimary;
    });
}

Bytes IndexSet::KeyOf(std::size_t index, std::span<const Value> values) const {
    const RealIndex& real = definition_.real_indexes[index];
    Bytes key;
    key.reserve(kRoomOfNumbers);
    for (std::size_t i = 0; i < values.size() && i < columns_[index].size(); ++i)
        AppendKeyPart(file_, definition_.columns[columns_[index][i]], real.columns[i].ascending,
                      values[i], key);
    return key;
}

std::optional<Bytes> IndexSet::RowKeyOf(std::size_t index, std::span<const Value> values) const {
    const RealIndex& real = definition_.real_indexes[index];
    const std::vector<std::size_t>& columns = columns_[index];
    const auto is_null = [&](std::size_t column) { return values[column].is_null(); };
    if (real.ignore_nulls() && std::ranges::all_of(columns, is_null)) return std::nullopt;
    Bytes key;
    key.reserve(kRoomOfNumbers);
    for (std::size_t i = 0; i < columns.size(); ++i)
        AppendKeyPart(file_, definition_.columns[columns[i]], real.columns[i].ascending,
                      values[columns[i]], key);
    return key;
}

IndexSet::Keys IndexSet::KeysOf(std::span<const Value> values) const {
    Keys keys;
    for (std::size_t index = 0; index < trees_.size(); ++index)
        keys.push_back(RowKeyOf(index, values));
    return keys;
}

base::Status IndexSet::Check(std::size_t index, const std::optional<Bytes>& key,
                             std::span<const Value> values, RowId row) const {
    const RealIndex& real = definition_.real_indexes[index];
    const auto is_null = [&](std::size_t column) { return values[column].is_null(); };
    if ((real.required() || IsPrimary(index)) && std::ranges::any_of(columns_[index], is_null))
        return JetError(ErrorNumber::kNullInIndex);
    if (!real.unique() || !key || std::ranges::all_of(columns_[index], is_null)) return {};
    ASSIGN_OR_RETURN(const bool taken, trees_[index]->HasOther(*key, row));
    return taken ? JetError(ErrorNumber::kDuplicateKey) : base::Status();
}

base::Status IndexSet::Insert(std::size_t index, const std::optional<Bytes>& key, RowId row) {
    if (!key) return {};
    ASSIGN_OR_RETURN(const bool new_key, trees_[index]->Insert(*key, row));
    if (!new_key) return {};
    // The optimizer's statistics: how many different keys there are.
    ASSIGN_OR_RETURN(const std::span<std::byte> page, file_.store.Change(definition_.page));
    WriteDistinctKeys(page, file_.format, index, ReadDistinctKeys(page, file_.format, index) + 1);
    return {};
}

base::Status IndexSet::Remove(std::size_t index, const std::optional<Bytes>& key, RowId row) {
    if (!key) return {};
    ASSIGN_OR_RETURN(const bool found, trees_[index]->Remove(*key, row));
    if (found) return {};
    // Other engines make some keys by slightly other rules; a missing entry needs no removal.
    return trees_[index]->RemoveByScan(row).status();
}

}  // namespace jet
