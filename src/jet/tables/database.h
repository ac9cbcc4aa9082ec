// Database and Table: tables, rows and indexes of one Jet 3 or Jet 4 file, below SQL.
// Every changing call happens inside a transaction (Begin ... Commit/Rollback) that the caller
// opens, one per statement; after a failed call the caller rolls back. Reading needs none. Errors
// carry the engine's error number and text (3022 duplicate key, 3047 record too large, 3163 field
// too small, 3314 required, 3315 zero length, 3027 read only, 3078 no such table, ...). Threads: a
// Database and what it hands out belong to one thread.
#pragma once

#include "base/status.h"
#include "jet/ids.h"
#include "jet/pages/page_store.h"
#include "jet/tables/change_note.h"
#include "jet/tables/row_rules.h"
#include "jet/values/schema.h"
#include "jet/values/value.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace jet {

class FieldBytes;
struct ColumnDefinition;
class TextCodec;

// Reads the fields that StoredFields::Append or Table::VisitStored has given. Belongs to the
// table and lives as long.
class StoredFieldReader {
public:
    virtual ~StoredFieldReader() = default;
    // The value of the column that was `place`th among those given to Append; `fields` is what that
    // appended. Requires: Database::changes() is as it was then, outside of a transaction.
    virtual base::Status ReadStored(std::span<const std::byte> fields, std::size_t place,
                                    std::size_t column, Value& value) const = 0;
    // What StoredFieldDecoder needs to give the same values when the table is gone.
    virtual const ColumnDefinition& stored_column(std::size_t column) const = 0;
    virtual const TextCodec& text() const = 0;
};

// The fields of the row that a cursor met last, as they are stored: cheaper to look at and smaller
// to keep than their values. Belongs to the cursor.
class StoredFields {
public:
    virtual ~StoredFields() = default;
    // The characters of a text column where they are stored one byte each (U+0001 to U+00FF); valid
    // until the next call of Next. nullopt: they are not, or the field is Null.
    virtual std::optional<std::string_view> NarrowText(std::size_t column) = 0;
    // Appends the fields `columns` (positions in TableDesign::columns) for reader().
    virtual base::Status Append(std::span<const std::size_t> columns, FieldBytes& fields) = 0;
    virtual const StoredFieldReader& reader() const = 0;
};

// Rows of a table, one after the other: all of them in physical order (page, slot), or those of an
// index range in key order. Rows inserted or deleted meanwhile may or may not be met.
class RowCursor {
public:
    virtual ~RowCursor() = default;
    // The next live row; nullopt: the end.
    virtual base::Result<std::optional<RowId>> Next() = 0;
    // The row met last, decoded from the page that the cursor stands on (cheaper than Table::Read).
    // `columns` are positions in TableDesign::columns; `values` has the same size and is filled in
    // that order.
    virtual base::Status Read(std::span<const std::size_t> columns, std::span<Value> values) = 0;
    // nullptr: the rows have no stored form. The same for the cursor's whole life, and null for
    // all cursors of a table or for none, except that one without rows may have none.
    virtual StoredFields* stored_fields() = 0;
};

// One end of a range of index keys: values for the first columns of the index. An empty `values` is
// no bound.
struct KeyBound {
    std::vector<Value> values;
    bool inclusive = true;
    // The last value is a text of plain ASCII characters, no hyphen or apostrophe among them, that
    // stands for all texts that begin with it, letter case apart. Requires: inclusive.
    bool prefix = false;
};

struct ColumnChange {
    std::size_t column = 0;
    Value value;
};

// A change of many rows: which columns of each row are read, and what comes of them.
struct RowUpdate {
    std::span<const std::size_t> read;     // positions in TableDesign::columns
    std::span<Value> values;               // as many; receives those of one row after the other
    std::span<const std::size_t> columns;  // that are changed, each once
    // Makes the new values of `columns` out of `values`; called once for each row, in their order.
    std::function<base::Status(std::span<Value> new_values)> make;
};

class Table {
public:
    virtual ~Table() = default;
    virtual const TableDesign& design() const = 0;
    // As counted in the definition; a file that was damaged once may be off. Never use it to end a
    // loop.
    virtual std::uint32_t row_count() const = 0;
    // Why rows cannot be changed (an index of a foreign sort order, a relation that would be
    // violated is another matter: that fails the statement); nullopt: they can.
    virtual std::optional<base::Status> read_only_reason() const = 0;

    virtual base::Result<std::unique_ptr<RowCursor>> Scan() = 0;
    // Rows of an index range in key order, or against it: `from` and `to` are its ends in the order
    // of the index, so in a descending column `from` has the larger value. Row ids only. Requires:
    // index < design().indexes.size(), and that index is maintainable.
    virtual base::Result<std::unique_ptr<RowCursor>> Range(std::size_t index, const KeyBound& from,
                                                           const KeyBound& to, bool backwards) = 0;
    // kNotFound with number 3167 ("Record is deleted."): no live row there.
    virtual base::Status Read(RowId row, std::span<const std::size_t> columns,
                              std::span<Value> values) = 0;
    // nullptr: the rows have no stored form.
    virtual const StoredFieldReader* stored_reader() const { return nullptr; }
    // Gives the fields `columns` of many rows as they are stored, for stored_reader(), page by page
    // and not in the order of `rows`; `take` gets a row's place in that and bytes that are valid
    // during the call. Requires that there is a stored_reader(). 3167: no live row there.
    using TakeStored = std::function<void(std::size_t row, std::span<const std::byte> fields)>;
    virtual base::Status VisitStored(std::span<const RowId> /*rows*/,
                                     std::span<const std::size_t> /*columns*/,
                                     const TakeStored& /*take*/) {
        return {};
    }

    // `values` has one entry per column, already of the column's type or convertible to it by
    // Coerce (jet/coerce.h). An autonumber column given as Null takes the next number. `inserted`
    // (may be null) receives the stored values of autonumber columns in place.
    virtual base::Result<RowId> Insert(std::span<Value> values) = 0;
    virtual base::Status Update(RowId row, std::span<const ColumnChange> changes) = 0;
    // Updates rows one after the other. Many at once are cheaper than as many single calls.
    virtual base::Status Update(std::span<const RowId> rows, const RowUpdate& update) = 0;
    virtual base::Status Delete(RowId row) = 0;
    // Deletes rows one after the other, as far as they are still there: a cascade may have taken
    // one. Many at once are cheaper than as many single calls.
    virtual base::Status Delete(std::span<const RowId> rows) = 0;
};

class Database {
public:
    virtual ~Database() = default;

    virtual bool read_only() const = 0;
    virtual int jet_version() const = 0;  // 3 or 4
    // User tables, in the catalog's order; system, hidden and deleted ones are left out.
    virtual base::Result<std::vector<std::u16string>> TableNames() = 0;
    // Name without regard to case. 3078: no such table. The table belongs to the database and lives
    // until the table is altered or dropped, or a transaction that altered or created it is rolled
    // back.
    virtual base::Result<Table*> FindTable(std::u16string_view name) = 0;

    virtual base::Status Begin() = 0;
    virtual base::Status Commit() = 0;
    virtual void Rollback() = 0;
    virtual bool in_transaction() const = 0;
    // The date that new and changed objects get, in days since 1899-12-30. Without one the
    // system's.
    virtual void UseClock(const std::function<double()>&) {}
    // Who names the changes that are recorded (only where the page store takes notes); asked at the
    // commit of each transaction. Without one they have no label.
    virtual void UseLabels(const std::function<ChangeLabel()>&) {}
    // How many rows the open transaction has changed so far, and what it has recorded of them: rows
    // as in a note, without its head. Empty where nothing is recorded.
    virtual std::size_t recorded_rows() const { return 0; }
    virtual std::span<const std::byte> recorded() const { return {}; }

    // Goes up with every transaction: what was read at the same number, outside of transactions, is
    // what is stored.
    virtual std::uint64_t changes() const = 0;

    virtual base::Status CreateTable(const TableDesign& design) = 0;
    virtual base::Status DropTable(std::u16string_view table) = 0;
    virtual base::Status AddColumn(std::u16string_view table, const ColumnDesign& column) = 0;
    // Changes type, size and rules of the column named in `column`; values are converted, what
    // cannot be becomes null.
    virtual base::Status AlterColumn(std::u16string_view table, const ColumnDesign& column) = 0;
    virtual base::Status DropColumn(std::u16string_view table, std::u16string_view column) = 0;
    virtual base::Status CreateIndex(std::u16string_view table, const IndexDesign& index) = 0;
    virtual base::Status DropIndex(std::u16string_view table, std::u16string_view index) = 0;
    // 3012: there is a relation of this name; 3366: the referenced columns have no unique index;
    // 3368: columns of other types; 3201: a row refers to none.
    virtual base::Status CreateRelation(const RelationDesign& relation) = 0;
    // `table`: the one that refers. 3372: it has no such relation.
    virtual base::Status DropRelation(std::u16string_view table, std::u16string_view relation) = 0;

    // Who makes the tests of validation rules. Until then, tables that have rules can only be read.
    // To be called before the first FindTable.
    virtual void UseRowRules(std::unique_ptr<const RowRuleMaker> maker) = 0;

    virtual base::Status Flush() = 0;
    virtual base::Status Close() = 0;
    virtual PageStore& pages() = 0;
};

// Takes the store over. Refuses newer and password-protected files with a message that says what
// the file is.
base::Result<std::unique_ptr<Database>> OpenDatabase(std::unique_ptr<PageStore> pages,
                                                     std::string_view path_for_messages);

// The pages of a new, empty database of version 4 or 3, in memory (`now`: the creation date, days
// since 1899-12-30). The same arguments give the same bytes.
base::Result<std::unique_ptr<PageStore>> MakeEmptyDatabase(double now, int version = 4);
// Writes all pages as a new file. kAlreadyExists (3204): there is such a file. After another
// failure there is none.
base::Status WriteDatabaseFile(FileSystem& files, const std::filesystem::path& path,
                               PageStore& pages);
// Both.
base::Status CreateDatabaseFile(FileSystem& files, const std::filesystem::path& path, double now,
                                int version = 4);

}  // namespace jet
