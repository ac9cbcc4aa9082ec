// The inside of HeldRows.
#pragma once

#include "jet/held_rows.h"
#include "jet/rows/stored_fields.h"
#include "jet/sql/plans/stored_rows.h"

#include <optional>
#include <vector>

namespace jet {

struct HeldRows::Content {
    // Where a field is found.
    struct Place {
        bool is_stored = false;
        std::size_t number = 0;  // of `decoder`, or in `loose`
    };

    std::size_t rows = 0;
    std::vector<Place> places;                      // of the fields that were asked for
    std::optional<StoredFieldDecoder> decoder;      // nullopt: all fields are loose
    std::shared_ptr<const sql::FieldStore> stored;  // nullptr: as above
    // Values by field, then row: of fields that the stored bytes alone do not give, such as memos,
    // and of those that are computed.
    std::vector<std::vector<Value>> loose;
};

}  // namespace jet
