// StoredRowSet: which rows have been met, told by the bytes of their fields as they are stored.
// Rows of the same bytes show the same values; others may, too, as a text has several spellings
// that are equal.
#pragma once

#include "jet/sql/plans/byte_arena.h"

#include <cstddef>
#include <span>
#include <string_view>
#include <unordered_set>

namespace jet::sql {

class StoredRowSet {
public:
    // False: the set has given up, because most rows were new.
    bool is_worth_it() const { return is_worth_it_; }
    // True: such a row was added before. False: it is new, or the set has given up.
    bool Add(std::span<const std::byte> row) {
        if (!is_worth_it_) return false;
        ++added_;
        const std::string_view bytes(reinterpret_cast<const char*>(row.data()), row.size());
        if (rows_.contains(bytes)) return true;
        if (rows_.size() >= kTrial && rows_.size() * 2 > added_) {
            is_worth_it_ = false;
            rows_.clear();
            arena_ = {};
            return false;
        }
        const auto* const kept = reinterpret_cast<const char*>(arena_.Add(row.data(), row.size()));
        rows_.emplace(kept, row.size());
        return false;
    }

private:
    static constexpr std::size_t kTrial = 1024;

    ByteArena arena_;
    std::unordered_set<std::string_view> rows_;
    std::size_t added_ = 0;
    bool is_worth_it_ = true;
};

}  // namespace jet::sql
