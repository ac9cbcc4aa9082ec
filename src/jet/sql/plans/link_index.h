// LinkIndex: rows by the values that link them to others, so that each finds its partners at once.
#pragma once

#include "base/status.h"
#include "jet/sql/expressions/evaluate.h"

#include <cstdint>
#include <map>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

namespace jet::sql {

// What a row is linked by.
struct LinkKey {
    std::string kinds;    // of its values: only values of one kind have keys that can be compared
    std::string values;   // keys, equal where the values are
    bool null = false;    // one of the values is Null, which equals nothing
    bool failed = false;  // one of them could not be computed
};
LinkKey LinkKeyOf(std::span<const Expression* const> expressions, EvalContext& context);

class LinkIndex {
public:
    // Rows are added in ascending order.
    void Add(std::uint32_t row, const LinkKey& key);
    // The rows that may be partners of one with this key, in ascending order: all that are, and
    // perhaps others. `partners` is overwritten.
    void Find(const LinkKey& key, std::vector<std::uint32_t>& partners) const;

private:
    using Rows = std::vector<std::uint32_t>;
    struct Kind {
        Rows all;
        std::unordered_map<std::string, Rows> by_values;
    };
    std::map<std::string, Kind> kinds_;
    Rows failed_;
};

}  // namespace jet::sql
