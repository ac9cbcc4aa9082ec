// SortedRow: a row of a result with what it is sorted by; sorting, DISTINCT and TOP for lists of
// them.
#pragma once

#include "base/status.h"
#include "jet/sql/expressions/prepared_select.h"
#include "jet/sql/syntax/ast.h"

#include <string>
#include <utility>
#include <vector>

namespace jet::sql {

struct SortedRow {
    ResultRow values;
    std::string key;
    std::vector<std::pair<std::size_t, base::Status>> failures;  // by output
};

// Rows are equal when their keys are.
std::string KeyOfAll(const ResultRow& values);

// Sorts by all columns from left to right and drops repeated rows.
void SortDistinct(std::vector<SortedRow>& rows);
// Sorts by SortedRow::key; rows of equal keys keep their order.
void SortByKey(std::vector<SortedRow>& rows);

// How many of `rows` rows TOP lets through, ties of the last one left out.
std::size_t TopCount(const SelectStatement& select, std::size_t rows);

// The same with the ties. `is_tie(i)`: row `i` is equal to the one before, in the order asked for.
template <typename IsTie>
std::size_t TopCountWithTies(const SelectStatement& select, std::size_t rows, IsTie is_tie) {
    std::size_t count = TopCount(select, rows);
    while (count > 0 && count < rows && is_tie(count))
        ++count;
    return count;
}

}  // namespace jet::sql
