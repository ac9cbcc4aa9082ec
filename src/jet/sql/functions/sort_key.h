// Keys of values for sorting, grouping and hashing: two values are in the order of their keys, byte
// by byte. Null comes first; texts follow the collation; numbers of all types, dates included,
// share one order.
#pragma once

#include "jet/values/value.h"

#include <string>
#include <string_view>

namespace jet::sql {

// `descending` complements the key, so that one comparison serves lists of mixed directions.
void AppendSortKey(const Value& value, bool descending, std::string& key);

// The same for hashing: values of one family (value_set.h) are equal when these keys are, texts
// behind what is sorted by, too.
void AppendEqualKey(const Value& value, std::string& key);

// The same as AppendSortKey for a text of one byte a character. False: it takes its value to make
// the key, and nothing was appended.
bool AppendNarrowSortKey(std::string_view narrow, bool descending, std::string& key);

// Dates are equal when they are in the same second; this is the number of that second since day 0.
double SecondsOfDate(double days);

}  // namespace jet::sql
