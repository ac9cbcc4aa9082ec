// Session: what the statements of one connection share.
#pragma once

#include <cstdint>
#include <functional>

namespace jet {
class Database;
}

namespace jet::sql {

struct Session {
    Database* database = nullptr;
    std::function<double()> clock;  // days since 1899-12-30
    double now = 0;                 // when the running statement began
    std::int32_t identity = 0;      // the last autonumber that an INSERT took; 0: none yet
    std::uint32_t random =
        0x50000;  // state of Rnd; the sequence is the same after each start, as Rnd's is

    int current_year() const;
    // To be called when a statement begins.
    void StartStatement() { now = clock(); }
};

}  // namespace jet::sql
