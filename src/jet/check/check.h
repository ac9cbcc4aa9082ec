// CheckIntegrity: whether a database file keeps every rule of its format: pages owned once, maps,
// definitions, rows, long values, index order, index entries = rows, catalogue. It reads the bytes
// with code of its own, apart from what the engine writes and reads them with, so that it finds the
// engine's mistakes too. It changes nothing and takes any bytes: damage is reported, never a crash
// or a loop.
#pragma once

#include "jet/pages/page_store.h"

#include <cstdint>
#include <string>
#include <vector>

namespace jet {

enum class Severity : std::uint8_t {
    kWarning,  // costs only space or speed, or was written by a later engine; stops no change
    kFault,    // contradicts the format: something cannot be read, or a change may cost data
};

struct Finding {
    Severity severity = Severity::kFault;
    PageNumber page = 0;
    int row = -1;       // slot of that page; -1: the page as a whole
    std::string table;  // UTF-8; empty: none in particular
    std::string text;   // what is wrong, one line
};

struct CheckReport {
    std::vector<Finding> findings;  // at most kMaxFindings
    std::uint64_t faults = 0;
    std::uint64_t warnings = 0;
    // What was looked at.
    std::uint64_t pages = 0;
    std::uint64_t tables = 0;
    std::uint64_t rows = 0;
    std::uint64_t long_values = 0;
    std::uint64_t index_entries = 0;

    static constexpr std::size_t kMaxFindings = 1000;
    bool sound() const { return faults == 0; }
};

struct CheckOptions {
    // What every engine reads, but not every one leaves behind, is a warning, as nothing in a file
    // says who wrote it last. These make it a fault:
    // each key of a node is the last entry below its child;
    bool exact_node_keys = false;
    // each level byte of an index page is its height above the leaves, and no leaf or node is
    // empty.
    bool exact_levels = false;
};

CheckReport CheckIntegrity(PageStore& store, CheckOptions options = {});

// "page 17, row 3, table Tables: ..."
std::string Describe(const Finding& finding);

}  // namespace jet
