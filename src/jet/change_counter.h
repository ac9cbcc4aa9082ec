// ChangeCounter: grows with every change of rows or designs through a connection, so that what was
// read before can be told from what is there now.
#pragma once

#include <cstdint>

namespace jet {

class ChangeCounter {
public:
    std::uint64_t count() const { return count_; }
    void NoteChange() { ++count_; }

private:
    std::uint64_t count_ = 0;
};

}  // namespace jet
