// HeldRows: the values of some fields in all rows of a Recordset, as they were at one moment. They
// are kept in the form in which the file stores them and made when asked for, which costs a
// fraction of the memory and time of keeping values. Independent of the recordset and of the
// connection, which may be gone. Copies share what they hold; any thread may read it.
#pragma once

#include "jet/values/value.h"

#include <cstddef>
#include <memory>

namespace jet {

class HeldRows {
public:
    struct Content;  // held_rows_content.h

    // No rows.
    HeldRows() = default;
    explicit HeldRows(std::shared_ptr<const Content> content) : content_(std::move(content)) {}

    std::size_t size() const;
    // `field`: its place among those that were asked for. Requires: row < size(); the field was
    // asked for.
    Value Field(std::size_t row, std::size_t field) const;
    // A row that will be asked for soon: has its bytes brought near, as sorted rows lie all over
    // the memory. Who reads all rows tells the one that is kAhead of the current one. Any `row`.
    void Expect(std::size_t row) const;
    static constexpr std::size_t kAhead = 8;

private:
    std::shared_ptr<const Content> content_;  // nullptr: no rows
};

}  // namespace jet
