// Index keys, computed anew from the bytes of a row.
#pragma once

#include "jet/check/check_definition.h"

#include <span>

namespace jet::check {

// Whether the checker knows how keys of this column are made.
bool KnowsKeysOf(const CheckRun& run, const Column& column);

// Part of a key: the flag byte and the value's bytes. `field`: the stored bytes (of a memo: its
// content); nullopt: null. `bit`: the value of a boolean column.
void AppendKey(const CheckRun& run, const Column& column, bool ascending,
               std::optional<std::span<const std::byte>> field, bool bit, Bytes& key);

// Whether two text keys agree in the letters. Engines later than this format count letters such as
// the German sharp s once, not twice, in the sections behind.
bool SamePrimaryWeights(std::span<const std::byte> a, std::span<const std::byte> b);

}  // namespace jet::check
