// The catalogue (MSysObjects): which tables there are, and whether its rows agree with each other.
#pragma once

#include "jet/check/check_run.h"

#include <cstdint>
#include <set>
#include <string>
#include <vector>

namespace jet::check {

struct TableEntry {
    std::u16string name;
    PageNumber definition = 0;
};

struct Catalogue {
    std::vector<TableEntry> tables;  // MSysObjects apart
    std::set<std::uint32_t> ids;     // of all objects
};

// Checks MSysObjects as a table and its rows as a catalogue.
Catalogue CheckCatalog(CheckRun& run);

}  // namespace jet::check
