// Recordset: the rows of a SELECT, one of them current.
// BOF and EOF are both true when there is no row. A keyset recordset keeps the identity of its rows
// as they were found when it was opened and reads their values when asked; a static one keeps the
// values; a dynamic one behaves as a keyset here; a forward-only one reads rows as it goes and does
// not know their count (-1). Fields given new values with SetField are written by Update, one row
// at a time, all or nothing; moving away writes them, too. Errors are Status values whose number
// and text are the engine's. Requires: the Connection outlives the recordset.
#pragma once

#include "base/status.h"
#include "jet/held_rows.h"
#include "jet/values/value.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace jet {

class Connection;

enum class CursorType : std::uint8_t { kForwardOnly = 0, kKeyset = 1, kDynamic = 2, kStatic = 3 };
enum class LockType : std::uint8_t {
    kReadOnly = 1,
    kPessimistic = 2,
    kOptimistic = 3,
    kBatchOptimistic = 4
};
enum class CursorLocation : std::uint8_t { kServer = 2, kClient = 3 };

class Recordset {
public:
    Recordset();
    ~Recordset();  // closes
    Recordset(Recordset&&) noexcept;
    Recordset& operator=(Recordset&&) noexcept;

    // `sql` is a SELECT or the name of a table. Stands on the first row afterwards, if there is
    // one.
    base::Status Open(std::u16string_view sql, Connection& connection,
                      CursorType cursor = CursorType::kForwardOnly,
                      LockType lock = LockType::kReadOnly,
                      CursorLocation location = CursorLocation::kServer);
    void Close();
    bool is_open() const;

    bool Bof() const;
    bool Eof() const;
    // 3021: there is no row to move to or from.
    base::Status MoveFirst();
    base::Status MoveLast();
    base::Status MoveNext();
    base::Status MovePrevious();
    // Rows in all; -1 when the cursor cannot know.
    std::int64_t RecordCount() const;
    // 0-based position for direct access: Requires 0 <= row < RecordCount().
    base::Status MoveTo(std::int64_t row);

    std::size_t FieldCount() const;
    const std::u16string& FieldName(std::size_t field) const;
    // Of the current row. 3265: no such field; 3021: no current row; 3167: the row was deleted
    // meanwhile.
    base::Result<Value> Fields(std::u16string_view name);
    base::Result<Value> Fields(std::size_t field);

    // The values of `fields` in all rows as they are now, those not yet written by Update left out.
    // The current row stays the one it is. `progress` (may be empty) is called with the number of
    // rows read so far, after each; not at all where sorting them has read what is wanted. 3219: a
    // forward-only recordset; 3167: a row was deleted meanwhile.
    base::Result<HeldRows> Hold(std::span<const std::size_t> fields,
                                const std::function<void(std::int64_t)>& progress = {});

    // 3027: the lock type or the query does not allow changes.
    base::Status SetField(std::u16string_view name, Value value);
    base::Status Update();
    void CancelUpdate();
    // Deletes the current row; it stays current (reading it then fails with 3167) until the next
    // move.
    base::Status Delete();

private:
    friend class Connection;
    class Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace jet
