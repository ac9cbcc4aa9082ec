// ImportRows: puts the rows of a file into the catalogue. Rows that are there get the cells that
// differ; others are added. All of it is one transaction: a single row that cannot be taken, and
// nothing is changed.
#pragma once

#include "base/run_steps.h"
#include "exchange/row_source.h"
#include "jet/connection.h"

#include <cstdint>
#include <string>
#include <vector>

namespace exchange {

// By which column a row of the file finds its row of the catalogue.
enum class MatchBy : std::uint8_t {
    kId,    // ID; a row without one is added
    kFile,  // FileName: as it is written, else in any letter case; a new one may differ from
            // others of the file in letter case only
    kCrc,   // CRC, in any letter case
};

struct ImportOptions {
    MatchBy match = MatchBy::kId;
    bool update_only = false;     // rows that find none are passed over and counted
    bool ignore_unknown = false;  // columns that the catalogue does not have are left out
    bool dry_run = false;         // nothing is changed
    std::int64_t lines = 0;       // of the file, for who watches the steps
};

struct RowProblem {
    std::int64_t line = 0;  // 0: the file as a whole
    std::string text;       // UTF-8
};

struct ImportReport {
    std::int64_t added = 0;
    std::int64_t changed = 0;
    std::int64_t unchanged = 0;
    std::int64_t passed_over = 0;
    std::vector<std::u16string> unknown_columns;
    // At most kMaxProblems; problem_count counts them all. With any of them nothing was changed.
    std::vector<RowProblem> problems;
    std::int64_t problem_count = 0;

    static constexpr std::size_t kMaxProblems = 100;
    bool accepted() const { return problem_count == 0; }
};

// Errors: those of the database that are no row's fault. What is wrong with the file is in the
// report. An added row that matched by FileName or CRC gets an ID of its own, whatever the file
// says; one with an ID keeps it.
// Stopped, it changes nothing. `steps` are lines of the file.
base::Result<ImportReport> ImportRows(jet::Connection& connection, RowSource& source,
                                      const ImportOptions& options,
                                      const base::RunSteps& steps = {});

}  // namespace exchange
