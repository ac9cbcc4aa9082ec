// Node numbers identify nodes of the tree in the settings: nodes are counted from 1 in the order
// root, then each table followed by its detail lines.
#pragma once

#include "browser/table_snapshot.h"

#include <cstdint>
#include <optional>

namespace browser {

inline constexpr std::int64_t kRootNode = 1;
inline constexpr std::int64_t kNodesPerTable = 1 + kDetailCount;

// A node of the tree: the root, a table, or a detail line of a table.
struct Node {
    std::optional<std::size_t> table;  // from 0; nullopt: the root
    std::optional<int> detail;         // 0..5; nullopt: the table itself
    bool operator==(const Node&) const = default;
};

constexpr std::int64_t NumberOf(const Node& node) {
    if (!node.table) return kRootNode;
    const std::int64_t table =
        kRootNode + 1 + static_cast<std::int64_t>(*node.table) * kNodesPerTable;
    return node.detail ? table + 1 + *node.detail : table;
}

// nullopt if a tree of `tables` tables has no such node.
constexpr std::optional<Node> NodeAt(std::int64_t number, std::size_t tables) {
    if (number == kRootNode) return Node{};
    if (number < kRootNode) return std::nullopt;
    const auto offset = static_cast<std::uint64_t>(number - kRootNode - 1);
    const std::uint64_t table = offset / kNodesPerTable;
    if (table >= tables) return std::nullopt;
    const int place = static_cast<int>(offset % kNodesPerTable);
    if (place == 0) return Node{static_cast<std::size_t>(table), std::nullopt};
    return Node{static_cast<std::size_t>(table), place - 1};
}

}  // namespace browser
