#include "jet/table_cursors.h"

#include "jet/field_codec.h"
#include "jet/storage_errors.h"

#include <algorithm>
#include <cstring>

namespace jet {
namespace {

class ScanCursor final : public RowCursor {
public:
    ScanCursor(const CursorSource& source, TableScan scan)
        : source_(source), scan_(std::move(scan)) {}

    base::Result<std::optional<RowId>> Next() override {
        ASSIGN_OR_RETURN(const bool found, scan_.Next());
        if (!found) return std::optional<RowId>();
        return std::optional<RowId>(scan_.row());
    }

    base::Status Read(std::span<const std::size_t> columns, std::span<Value> values) override {
        return DecodeFields(source_, scan_.bytes(), columns, values);
    }

private:
    CursorSource source_;
    TableScan scan_;
};

// Bytes greater than every entry that starts with `key`, and than `key` itself.
Bytes After(Bytes key) {
    key.insert(key.end(), 16, std::byte{0xFF});
    return key;
}

class RangeCursor final : public RowCursor {
public:
    RangeCursor(const CursorSource& source, const IndexTree& tree, KeyRange range, bool backwards)
        : source_(source), tree_(tree), range_(std::move(range)), backwards_(backwards) {}

    base::Result<std::optional<RowId>> Next() override {
        if (done_) return std::optional<RowId>();
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
        ASSIGN_OR_RETURN(const StoredRow row,
                         FetchRow(*source_.file, source_.definition->page, row_));
        return DecodeFields(source_, row.bytes, columns, values);
    }

private:
    base::Status StepForwards() {
        if (place_.at_end())
            return Assign(tree_.Seek(range_.from_inclusive ? range_.from : After(range_.from)));
        if (tree_.changes() == changes_) return tree_.Next(place_);
        // The tree changed under the walk: go on behind the last entry.
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

    CursorSource source_;
    const IndexTree& tree_;
    KeyRange range_;
    bool backwards_;
    bool done_ = false;
    IndexTree::Place place_;
    std::uint64_t changes_ = 0;
    Bytes entry_;
    RowId row_;
};

}  // namespace

base::Status DecodeFields(const CursorSource& source, std::span<const std::byte> row,
                          std::span<const std::size_t> columns, std::span<Value> values) {
    const auto view = RowView::Parse(row, source.file->format);
    if (!view) return errors::Damaged("a row is unreadable");
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const std::size_t position = (*source.positions)[columns[i]];
        RETURN_IF_ERROR(
            DecodeField(*source.file, source.definition->columns[position], *view, values[i]));
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
