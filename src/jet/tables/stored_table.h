// StoredTable: Table over the pages of a file. Rows go through RowWriter, entries through IndexSet;
// this class checks what a program gives, keeps relations whole, and keeps the order of the steps.
#pragma once

#include "jet/index/index_set.h"
#include "jet/rows/row_writer.h"
#include "jet/tables/change_recorder.h"
#include "jet/tables/database.h"
#include "jet/tables/property_blob.h"
#include "jet/tables/table_cursors.h"

namespace jet {

class StoredTable;

// Finds the tables on the other side of relations.
class TableSource {
public:
    virtual ~TableSource() = default;
    virtual base::Result<StoredTable*> TableAt(PageNumber definition) = 0;
};

class StoredTable final : public Table, private StoredFieldReader {
public:
    // `file` and `tables` must outlive the table.
    static base::Result<std::unique_ptr<StoredTable>> Open(FileContext& file, TableSource& tables,
                                                           PageNumber page, std::u16string name,
                                                           const PropertyBlob& properties);

    const TableDesign& design() const override { return design_; }
    std::uint32_t row_count() const override;
    std::optional<base::Status> read_only_reason() const override { return read_only_reason_; }

    base::Result<std::unique_ptr<RowCursor>> Scan() override;
    base::Result<std::unique_ptr<RowCursor>> Range(std::size_t index, const KeyBound& from,
                                                   const KeyBound& to, bool backwards) override;
    base::Status Read(RowId row, std::span<const std::size_t> columns,
                      std::span<Value> values) override;
    base::Status VisitStored(std::span<const RowId> rows, std::span<const std::size_t> columns,
                             const TakeStored& take) override;
    const StoredFieldReader* stored_reader() const override { return this; }
    base::Result<RowId> Insert(std::span<Value> values) override;
    base::Status Update(RowId row, std::span<const ColumnChange> changes) override;
    base::Status Update(std::span<const RowId> rows, const RowUpdate& update) override;
    base::Status Delete(RowId row) override;
    base::Status Delete(std::span<const RowId> rows) override;

    const TableDefinition& definition() const { return definition_; }
    const IndexSet& indexes() const { return indexes_; }
    // Position among the shown columns. Requires: there is such a column number.
    std::size_t ShownPosition(std::uint16_t column_number) const;
    // `maker` makes the tests of the design's validation rules; nullptr: there is no maker. A rule
    // that cannot be tested makes the table read only.
    void UseRules(const RowRuleMaker* maker);
    // Who is told of each row that changes; nullptr: nobody. Borrowed.
    void UseRecorder(ChangeRecorder* recorder) { recorder_ = recorder; }
    // 3201: one of `rows` refers by the relation `name` to a row that is not there.
    base::Status CheckRelation(std::u16string_view name, const std::vector<RowId>& rows);
    // Drops what is cached of pages; to be called after a rollback.
    void Forget() {
        rows_.Forget();
        counter_is_checked_ = false;
    }

private:
    StoredTable(FileContext& file, TableSource& tables, TableDefinition definition)
        : file_(file), tables_(tables), definition_(std::move(definition)),
          indexes_(file, definition_), rows_(file, definition_) {}
    CursorSource Source() const { return {&file_, &definition_, &positions_, this}; }
    base::Status ReadStored(std::span<const std::byte> fields, std::size_t place,
                            std::size_t column, Value& value) const override;
    const ColumnDefinition& stored_column(std::size_t column) const override {
        return definition_.columns[positions_[column]];
    }
    const TextCodec& text() const override { return file_.text; }
    base::Result<Bytes> BoundKey(const LogicalIndex& index, const KeyBound& bound) const;

    base::Status CheckWritable() const;
    // The value as the column stores it, by the column's own rules.
    base::Status Prepare(std::size_t shown, Value& value) const;
    // 3317. `values` and `changed` go with definition_.columns; those that did not change are read
    // from the row as it is stored.
    base::Status CheckRules(RowId row, std::span<const Value> values,
                            const std::vector<bool>& changed);
    base::Status FillAutonumbers(std::span<Value> shown_values);
    base::Result<std::int32_t> LastAutonumber(std::size_t shown);
    base::Status CountRows(std::int64_t change, std::span<const Value> shown_values);
    // Whether a change of so many rows costs less in a pass over all of them.
    bool AreMany(std::size_t rows) const;
    // Whether rows of other tables, or of this one, may refer to rows here.
    bool IsReferredTo() const;

    // What is told to the recorder. Nothing without one.
    RecordedTable Recorded() const { return {file_, definition_, design_.name}; }
    void RecordRow(RowChange change, RowId row);
    void RecordRows(const RowSet& gone);
    void RecordBefore(RowId row, std::span<const std::size_t> columns);
    void RecordAfter(RowId row, std::span<const std::size_t> columns);

    // An update of many rows, page by page.
    struct BulkUpdate;
    // nullopt: something must be checked row by row, or a pass does not pay.
    std::optional<BulkUpdate> PlanBulk(std::span<const RowId> rows, const RowUpdate& update) const;
    base::Status UpdateOneByOne(std::span<const RowId> rows, const RowUpdate& update);
    base::Status UpdateOnPage(std::span<const RowId> rows, const RowUpdate& update,
                              BulkUpdate& bulk);
    // The row's new values, by the columns' own rules. `row` is its bytes, if it is at home.
    base::Status MakeValues(RowId at, const std::optional<RowView>& row, const RowUpdate& update,
                            BulkUpdate& bulk);
    void NoteKeys(RowId at, BulkUpdate& bulk);
    base::Status ChangeEntries(BulkUpdate& bulk);
    // All columns of a row, in the order of definition_.columns; long values only where an index
    // needs them.
    base::Result<std::vector<Value>> ReadKeyColumns(RowId row);

    // Relations. `values` as in ReadKeyColumns.
    struct Dependants {
        StoredTable* table;
        std::vector<std::size_t> columns;  // of the foreign key, among its definition().columns
        std::vector<Value> new_key;        // empty: the row goes away
        std::vector<RowId> rows;
    };
    // `row`: the one that has or is to have the values; {} for a new one.
    base::Status CheckParents(RowId row, std::span<const Value> values,
                              const std::vector<bool>* changed);
    base::Status CheckKeysFrom(const StoredTable& from, const std::vector<std::size_t>& columns,
                               std::size_t real) const;
    base::Status CheckParent(const LogicalIndex& index, RowId row, std::span<const Value> values);
    // 3200, or the rows that follow the change. `after` empty: the row is to be deleted.
    base::Result<std::vector<Dependants>> FindDependants(RowId row, std::span<const Value> before,
                                                         std::span<const Value> after);
    // Those by one relation, this table being the referenced one; nullopt: the change does not
    // concern any.
    base::Result<std::optional<Dependants>> DependantsBy(const LogicalIndex& index, RowId row,
                                                         std::span<const Value> before,
                                                         std::span<const Value> after);
    // The rows that have exactly this key in the index `real`.
    base::Result<std::vector<RowId>> RowsWithKey(std::size_t real, const Bytes& key) const;
    base::Status SetForeignKey(RowId row, std::vector<Value> values, const Dependants& dependants);
    base::Status ChangeDependants(const std::vector<Dependants>& dependants);
    base::Status UpdateColumns(RowId row, std::vector<Value> values, std::vector<bool> changed);

    FileContext& file_;
    TableSource& tables_;
    TableDefinition definition_;
    IndexSet indexes_;
    RowWriter rows_;
    std::vector<std::size_t> positions_;  // of the shown columns among definition_.columns
    TableDesign design_;
    std::optional<base::Status> read_only_reason_;
    std::unique_ptr<const RowRules> rules_;  // nullptr: none
    ChangeRecorder* recorder_ = nullptr;     // nullptr: nobody records
    int cascade_depth_ = 0;
    bool counter_is_checked_ = false;  // the autonumber's counter is not behind its values
};

}  // namespace jet
