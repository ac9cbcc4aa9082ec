// IntervalOf: the range of a column's values that a comparison with a constant leaves.
#pragma once

#include "jet/sql/plans/column_bounds.h"
#include "jet/values/schema.h"

namespace jet::sql {

// Values that may equal the constant, as comparisons see it (operators.h): a number in a text is a
// number, dates are equal within a second. nullopt: the keys of the column's type do not tell.
struct EqualValues {
    Interval interval;
    bool exact = false;  // all of them are equal to each other
};
std::optional<EqualValues> ValuesEqualTo(const ColumnDesign& column, const Value& constant);

// The texts that a pattern of Like lets through begin with this; empty: nothing is known.
std::u16string PrefixOfPattern(std::u16string_view pattern);

// The intervals in ascending order; those that touch become one.
void SortIntervals(std::vector<Interval>& intervals);
// What lies in both. Requires: both have one interval's form.
Interval Intersection(const Interval& a, const Interval& b);

}  // namespace jet::sql
