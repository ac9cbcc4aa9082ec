// What a command has changed in the catalogue. The summary goes to the messages; with --dry-run or
// --verbose every changed cell is a line of the results. ChangeReport finds it out by comparing the
// rows before and after.
#pragma once

#include "base/status.h"
#include "cli/program.h"
#include "jet/connection.h"

#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace cli {

// Whether the program is to tell the changed cells.
bool TellsCells(const Program& program);
// "2 added, 1 changed".
void TellSummary(Program& program, std::int64_t added, std::int64_t changed);

class ChangeReport {
public:
    // Reads the rows as they are now. `program` is borrowed.
    static base::Result<ChangeReport> Begin(Program& program, jet::Connection& connection);
    // Reads them again and tells the difference.
    base::Status Finish(jet::Connection& connection);

private:
    struct Row {
        std::size_t hash = 0;
        std::vector<std::string> cells;  // as JSON; empty: not asked for
    };
    using Rows = std::map<std::int64_t, Row>;

    explicit ChangeReport(Program& program);
    base::Result<Rows> Read(jet::Connection& connection);
    void TellCells(std::int64_t id, const Row* before, const Row& after);

    Program& program_;
    bool tells_cells_;
    std::vector<std::string> names_;
    Rows before_;
};

}  // namespace cli
