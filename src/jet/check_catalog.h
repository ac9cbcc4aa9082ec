// The catalogue (MSysObjects): which tables there are, and whether its rows agree with each other.
#pragma once

#include "jet/check_run.h"

#include <cstdint>
#include <string>
#include <vector>

namespace jet::check {

struct TableEntry {
    std::u16string name;
    PageNumber definition = 0;
};

// Checks MSysObjects as a table and its rows as a catalogue. The answer: the other tables.
std::vector<TableEntry> CheckCatalog(CheckRun& run);

}  // namespace jet::check
