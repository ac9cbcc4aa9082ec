#include "jet/tables/table_cursors.h"

#include "jet/errors.h"
#include "jet/rows/field_codec.h"
#include "jet/rows/stored_fields.h"

#include <algorithm>

namespace jet {
namespace {

base::Status Unreadable() {
    return Damaged("a row is unreadable");
}

// The fields of a row whose bytes the cursor keeps.
class FieldsInRow : public StoredFields {
public:
    std::optional<std::string_view> NarrowText(std::size_t shown) final {
        const ColumnDefinition& column = source_.definition->columns[(*source_.positions)[shown]];
        if (column.type != ColumnType::kText) return std::nullopt;
        const auto row = CurrentRow();
        if (!row.ok() || !(*row)->Bit(column.number)) return std::nullopt;
        const auto field = (*row)->Field(column);
        return field ? source_.file->text.NarrowValue(*field) : std::nullopt;
    }

    base::Status Append(std::span<const std::size_t> columns, FieldBytes& fields) final {
        ASSIGN_OR_RETURN(const RowView* const row, CurrentRow());
        return AppendStoredFields(source_, *row, columns, fields);
    }

    const StoredFieldReader& reader() const final { return *source_.stored_reader; }

protected:
    explicit FieldsInRow(const CursorSource& source) : source_(source) {}
    // The row met last; valid until the next one is met.
    virtual base::Result<const RowView*> CurrentRow() = 0;

    base::Status DecodeCurrent(std::span<const std::size_t> columns, std::span<Value> values) {
        ASSIGN_OR_RETURN(const RowView* const row, CurrentRow());
        return DecodeFields(source_, *row, columns, values);
    }

    CursorSource source_;
};

class ScanCursor final : public RowCursor, private FieldsInRow {
public:
    ScanCursor(const CursorSource& source, TableScan scan)
        : FieldsInRow(source), scan_(std::move(scan)) {}

    base::Result<std::optional<RowId>> Next() override {
        ASSIGN_OR_RETURN(const bool found, scan_.Next());
        if (!found) return std::optional<RowId>();
        row_ = RowView::Parse(scan_.bytes(), source_.file->format);
        return std::optional<RowId>(scan_.row());
    }

    base::Status Read(std::span<const std::size_t> columns, std::span<Value> values) override {
        return DecodeCurrent(columns, values);
    }

    StoredFields* stored_fields() override { return this; }

private:
    base::Result<const RowView*> CurrentRow() override {
        if (!row_) return Unreadable();
        return &*row_;
    }

    TableScan scan_;
    std::optional<RowView> row_;  // the one met last; nullopt: it is unreadable
};

// Bytes greater than every entry that starts with `key`, and than `key` itself.
Bytes After(Bytes key) {
    key.insert(key.end(), 16, std::byte{0xFF});
    return key;
}

class RangeCursor final : public RowCursor, private FieldsInRow {
public:
    RangeCursor(const CursorSource& source, const IndexTree& tree, KeyRange range, bool backwards)
        : FieldsInRow(source), tree_(tree), range_(std::move(range)), backwards_(backwards) {}

    base::Result<std::optional<RowId>> Next() override {
        if (done_) return std::optional<RowId>();
        view_.reset();
        RETURN_IF_ERROR(backwards_ ? StepBackwards() : StepForwards());
        if (place_.at_end() || Passed()) {
            done_ = true;
            place_ = {};
            return std::optional<RowId>();
        }
        row_ = place_.view.Row(place_.entry);
        changes_ = tree_.changes();
        return std::optional<RowId>(row_);
    }

    base::Status Read(std::span<const std::size_t> columns, std::span<Value> values) override {
        return DecodeCurrent(columns, values);
    }

    StoredFields* stored_fields() override { return this; }

private:
    // An index names rows; their bytes are fetched when they are asked for.
    base::Result<const RowView*> CurrentRow() override {
        if (!view_) {
            ASSIGN_OR_RETURN(stored_, FetchRow(*source_.file, source_.definition->page, row_));
            view_ = RowView::Parse(stored_.bytes, source_.file->format);
            if (!view_) return Unreadable();
        }
        return &*view_;
    }

    base::Status StepForwards() {
        if (place_.at_end())
            return Assign(tree_.Seek(range_.from_inclusive ? range_.from : After(range_.from)));
        if (tree_.changes() == changes_) return tree_.Next(place_);
        // The tree changed under the cursor: go on behind the last entry.
        place_.view.CopyEntry(place_.entry, entry_);
        entry_.push_back(std::byte{0});
        return Assign(tree_.Seek(entry_));
    }

    base::Status StepBackwards() {
        if (place_.at_end()) {
            const Bytes start =
                range_.to_inclusive || range_.to.empty() ? After(range_.to) : range_.to;
            return Assign(tree_.SeekBefore(start));
        }
        if (tree_.changes() == changes_) return tree_.Previous(place_);
        place_.view.CopyEntry(place_.entry, entry_);
        return Assign(tree_.SeekBefore(entry_));
    }

    base::Status Assign(base::Result<IndexTree::Place> place) {
        if (!place.ok()) return place.status();
        place_ = std::move(place).value();
        return {};
    }

    bool Passed() const {
        const std::size_t entry = place_.entry;
        if (backwards_) {
            if (range_.from.empty()) return false;
            if (!range_.from_inclusive && place_.view.StartsWith(entry, range_.from)) return true;
            return place_.view.Compare(entry, range_.from) < 0;
        }
        if (range_.to.empty()) return false;
        if (place_.view.StartsWith(entry, range_.to)) return !range_.to_inclusive;
        return place_.view.Compare(entry, range_.to) > 0;
    }

    const IndexTree& tree_;
    KeyRange range_;
    bool backwards_;
    bool done_ = false;
    IndexTree::Place place_;
    std::uint64_t changes_ = 0;
    Bytes entry_;
    RowId row_;
    StoredRow stored_;             // of row_
    std::optional<RowView> view_;  // of stored_; nullopt: not fetched yet
};

}  // namespace

base::Status DecodeFields(const CursorSource& source, std::span<const std::byte> row,
                          std::span<const std::size_t> columns, std::span<Value> values) {
    const auto view = RowView::Parse(row, source.file->format);
    return view ? DecodeFields(source, *view, columns, values) : Unreadable();
}

base::Status DecodeFields(const CursorSource& source, const RowView& row,
                          std::span<const std::size_t> columns, std::span<Value> values) {
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const std::size_t position = (*source.positions)[columns[i]];
        RETURN_IF_ERROR(
            DecodeField(*source.file, source.definition->columns[position], row, values[i]));
    }
    return {};
}

base::Status AppendStoredFields(const CursorSource& source, const RowView& row,
                                std::span<const std::size_t> columns, FieldBytes& fields) {
    for (const std::size_t shown : columns) {
        const ColumnDefinition& column = source.definition->columns[(*source.positions)[shown]];
        RETURN_IF_ERROR(AppendStoredField(column, row, fields));
    }
    return {};
}

base::Status AppendStoredFields(const CursorSource& source, std::span<const std::byte> row,
                                std::span<const std::size_t> columns, FieldBytes& fields) {
    const auto view = RowView::Parse(row, source.file->format);
    return view ? AppendStoredFields(source, *view, columns, fields) : Unreadable();
}

base::Status DecodeStoredField(const CursorSource& source, std::span<const std::byte> fields,
                               std::size_t place, std::size_t column, Value& value) {
    const ColumnDefinition& definition = source.definition->columns[(*source.positions)[column]];
    const auto field = StoredField(fields, place);
    if (definition.type == ColumnType::kBoolean) {
        value = Value::Boolean(field.has_value());
    } else if (!field) {
        value = Value::Null();
    } else {
        return DecodeFieldBytes(*source.file, definition, *field, value);
    }
    return {};
}

std::unique_ptr<RowCursor> MakeScanCursor(const CursorSource& source, TableScan scan) {
    return std::make_unique<ScanCursor>(source, std::move(scan));
}

std::unique_ptr<RowCursor> MakeRangeCursor(const CursorSource& source, const IndexTree& tree,
                                           KeyRange range, bool backwards) {
    return std::make_unique<RangeCursor>(source, tree, std::move(range), backwards);
}

}  // namespace jet
