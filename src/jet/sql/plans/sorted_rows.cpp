#include "jet/sql/plans/sorted_rows.h"

#include "jet/sql/functions/sort_key.h"
#include "jet/sql/plans/key_sorter.h"

#include <algorithm>
#include <span>

namespace jet::sql {
namespace {

// Row `order[i]` becomes row `i`; the others are dropped.
void Arrange(std::vector<SortedRow>& rows, std::span<const std::uint32_t> order) {
    std::vector<SortedRow> arranged;
    arranged.reserve(order.size());
    for (const std::uint32_t row : order)
        arranged.push_back(std::move(rows[row]));
    rows = std::move(arranged);
}

}  // namespace

std::string KeyOfAll(const ResultRow& values) {
    std::string key;
    for (const Value& value : values)
        AppendSortKey(value, false, key);
    return key;
}

void SortDistinct(std::vector<SortedRow>& rows) {
    KeySorter keys;
    for (const SortedRow& row : rows)
        keys.Add(KeyOfAll(row.values));
    std::vector<std::uint32_t> order = keys.Order();
    const auto same = [&](std::uint32_t a, std::uint32_t b) { return keys.AreEqual(a, b); };
    order.erase(std::unique(order.begin(), order.end(), same), order.end());
    Arrange(rows, order);
}

void SortByKey(std::vector<SortedRow>& rows) {
    KeySorter keys;
    for (const SortedRow& row : rows)
        keys.Add(row.key);
    Arrange(rows, keys.Order());
}

std::size_t TopCount(const SelectStatement& select, std::size_t rows) {
    if (!select.top) return rows;
    const auto top = static_cast<std::size_t>(*select.top);
    return std::min(rows, select.top_percent ? (rows * top + 99) / 100 : top);
}

}  // namespace jet::sql
