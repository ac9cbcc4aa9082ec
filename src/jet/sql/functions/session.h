// Session: what the statements of one connection share.
#pragma once

#include "base/status.h"
#include "jet/values/value.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace jet {
class Database;
}

namespace jet::sql {

class PreparedSelect;
class Scope;
struct SelectStatement;
struct Session;

// Binds the SELECT of a subquery; `outer` is the scope of the expression around it.
using PrepareSelect = base::Result<std::unique_ptr<PreparedSelect>> (*)(
    const SelectStatement& select, Session& session, Scope& outer);

// One row of each source, as far as its columns are in use.
using SourceRows = std::vector<std::vector<Value>>;

// The current rows of the statements around a subquery, innermost first.
struct OuterRows {
    const SourceRows* rows = nullptr;
    const OuterRows* next = nullptr;
};

struct Session {
    Database* database = nullptr;
    PrepareSelect prepare_select = nullptr;  // nullptr: no expression holds a subquery
    std::function<double()> clock;           // days since 1899-12-30
    double now = 0;                          // when the running statement began
    // Of a statement that changes rows; empty: nobody asks.
    std::function<void(std::int64_t done, std::int64_t total)> rows_watch;
    std::int32_t identity = 0;  // the last autonumber that an INSERT took; 0: none yet
    std::uint32_t random =
        0x50000;  // state of Rnd; the sequence is the same after each start, as Rnd's is

    int current_year() const;
    std::uint64_t statement = 0;       // grows with each statement
    std::uint64_t subquery_runs = 0;   // of the running statement
    const OuterRows* outer = nullptr;  // where a subquery is being run; nullptr: not in one

    // To be called when a statement begins.
    void StartStatement() {
        now = clock();
        ++statement;
        subquery_runs = 0;
    }
};

}  // namespace jet::sql
