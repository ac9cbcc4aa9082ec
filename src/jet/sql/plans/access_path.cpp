#include "jet/sql/plans/access_path.h"

#include "base/letter_case.h"
#include "jet/sql/plans/column_bounds.h"
#include "jet/text/plain_text.h"

#include <algorithm>

namespace jet::sql {
namespace {

using base::Result;
using base::Status;

// Jet 3 files sort texts by another table than expressions do.
bool SortsAlike(const ColumnDesign& column, int jet_version) {
    return !IsTextType(column.type) || jet_version >= 4;
}

// In a descending column of decimals the keys of negative numbers come first.
bool OneSign(const Interval& interval) {
    const auto negative = [](const std::optional<IntervalEnd>& end, bool wanted) {
        const auto* number = end ? end->value.get_if<Numeric>() : nullptr;
        if (number == nullptr || number->negative != wanted) return false;
        return std::any_of(number->magnitude.begin(), number->magnitude.end(),
                           [](std::uint32_t word) { return word != 0; });
    };
    return (negative(interval.low, true) && negative(interval.high, true)) ||
           (negative(interval.low, false) && negative(interval.high, false));
}

class Candidate {
public:
    Candidate(const TableDesign& design, std::size_t number, int jet_version)
        : design_(design), index_(design.indexes[number]), jet_version_(jet_version) {
        path.index = number;
    }

    // Takes up what the condition says about the index's first columns.
    void Narrow(const std::vector<ColumnBounds>& facts) {
        path.ranges.resize(1);
        for (const IndexColumn& part : index_.columns) {
            const auto known =
                std::find_if(facts.begin(), facts.end(), [&](const ColumnBounds& bounds) {
                    return bounds.column == part.column;
                });
            if (known == facts.end() || !CanUse(*known, part)) break;
            AddColumn(*known, part);
            if (!known->exact) break;
            ++exact;
        }
        if (exact == index_.columns.size() && (index_.unique || index_.primary)) score += 100;
    }

    AccessPath path;
    std::size_t exact = 0;  // how many first columns of the index have one value only
    int score = 0;

private:
    bool CanUse(const ColumnBounds& bounds, const IndexColumn& part) const {
        const ColumnDesign& column = design_.columns[part.column];
        if (bounds.null && index_.ignore_nulls) return false;
        if (column.type == ColumnType::kNumeric && !part.ascending)
            return std::all_of(bounds.intervals.begin(), bounds.intervals.end(), OneSign);
        if (SortsAlike(column, jet_version_)) return true;
        return std::all_of(bounds.intervals.begin(), bounds.intervals.end(),
                           [&](const Interval& interval) {
                               return IsAlikeInJet3(interval, bounds.intervals.size() > 1);
                           });
    }

    // Texts of a Jet 3 file: a point or a prefix. Both tables of weights agree about what equals a
    // text, but for the thorn, which only one of them takes for "th"; about which texts are
    // different they agree where these are plain. `several` must be plain, so that no row is met
    // twice.
    static bool IsAlikeInJet3(const Interval& interval, bool several) {
        if (!interval.low || !interval.high || interval.low->value != interval.high->value ||
            interval.low->prefix != interval.high->prefix)
            return false;
        const auto* text = interval.low->value.get_if<std::u16string>();
        if (text == nullptr || interval.low->prefix) return true;
        constexpr char16_t kThorn = 0x00FE;
        const std::u16string lower = base::ToLower(*text);
        if (lower.find(u"th") != std::u16string::npos || lower.find(kThorn) != std::u16string::npos)
            return false;
        std::string key;
        if (several) return AppendPlainKey(*text, key);
        return std::all_of(text->begin(), text->end(), [](char16_t c) {
            return (c >= 0x20 && c < 0x7F) || (c >= 0xA0 && c <= 0xFF);
        });
    }

    void AddColumn(const ColumnBounds& bounds, const IndexColumn& part) {
        const IndexRange before = path.ranges[0];
        path.ranges.clear();
        for (const Interval& interval : bounds.intervals) {
            IndexRange range = before;
            AddEnd(part.ascending ? interval.low : interval.high, range.from);
            AddEnd(part.ascending ? interval.high : interval.low, range.to);
            path.ranges.push_back(std::move(range));
        }
        if (!part.ascending) std::reverse(path.ranges.begin(), path.ranges.end());
        score += ScoreOf(bounds, part);
    }

    static void AddEnd(const std::optional<IntervalEnd>& end, KeyBound& bound) {
        if (!end) return;
        bound.values.push_back(end->value);
        bound.prefix = end->prefix;
    }

    int ScoreOf(const ColumnBounds& bounds, const IndexColumn& part) const {
        if (design_.columns[part.column].type == ColumnType::kBoolean) return 2;
        if (bounds.exact) return 10;
        if (bounds.intervals.size() != 1) return 8;
        return bounds.intervals[0].low && bounds.intervals[0].high ? 6 : 3;
    }

    const TableDesign& design_;
    const IndexDesign& index_;
    int jet_version_;
};

// Whether an index brings rows in the order that was asked for.
class OrderCheck {
public:
    OrderCheck(const Source& source, const IndexDesign& index, std::size_t number,
               const Candidate& candidate, int jet_version)
        : source_(source), index_(index), number_(number), candidate_(candidate),
          jet_version_(jet_version) {}

    // `backwards`: the index has to be read from its end.
    Result<bool> Holds(const std::vector<OrderItem>& order, bool& backwards) const {
        if (order.empty()) return false;
        std::size_t at = candidate_.exact;  // columns of one value are in any order
        bool directed = false;
        for (std::size_t i = 0; i < order.size(); ++i) {
            if (!IsColumn(*order[i].expression)) return false;
            const std::size_t column = source_.columns[order[i].expression->slot];
            if (HasOneValue(column)) continue;
            if (at == index_.columns.size() || index_.columns[at].column != column) return false;
            ASSIGN_OR_RETURN(const bool sorted, IsSorted(at, i + 1 == order.size()));
            if (!sorted) return false;
            const bool against = order[i].descending == index_.columns[at].ascending;
            if (directed && against != backwards) return false;
            backwards = against;
            directed = true;
            ++at;
        }
        return true;
    }

private:
    bool HasOneValue(std::size_t column) const {
        return std::any_of(index_.columns.begin(),
                           index_.columns.begin() + static_cast<std::ptrdiff_t>(candidate_.exact),
                           [&](const IndexColumn& part) { return part.column == column; });
    }

    // Whether the keys of the index's column are in the order of its values. `last`: where values
    // are equal no other column decides, so that keys may tell them apart.
    Result<bool> IsSorted(std::size_t at, bool last) const {
        const IndexColumn& part = index_.columns[at];
        const ColumnDesign& column = source_.table->design().columns[part.column];
        switch (column.type) {
        case ColumnType::kText:
        case ColumnType::kMemo:
            return SortsAlike(column, jet_version_);
        case ColumnType::kSingle:
        case ColumnType::kDouble:  // minus zero has a key of its own
        case ColumnType::kMoney:   // keys are exact, sorting compares amounts as doubles
            return last;
        case ColumnType::kNumeric:
            return last && part.ascending;
        case ColumnType::kDate:
            // Dates of the same second have keys of their own.
            if (!last || at != candidate_.exact) return false;
            return HasNoEarlyDates(part);
        case ColumnType::kBoolean:
        case ColumnType::kByte:
        case ColumnType::kShort:
        case ColumnType::kLong:
        case ColumnType::kGuid:
            return true;
        default:
            return false;
        }
    }

    // Before day 1 the order of keys is not that of dates: the time of day counts forward there.
    Result<bool> HasNoEarlyDates(const IndexColumn& part) const {
        constexpr double kBeforeAll = -1e6;
        IndexRange early;
        for (std::size_t i = 0; i < candidate_.exact; ++i)
            early.from.values.push_back(candidate_.path.ranges[0].from.values[i]);
        early.to = early.from;
        early.from.values.push_back(Value::DateTime(part.ascending ? kBeforeAll : 1));
        early.to.values.push_back(Value::DateTime(part.ascending ? 1 : kBeforeAll));
        ASSIGN_OR_RETURN(const auto cursor,
                         source_.table->Range(number_, early.from, early.to, false));
        ASSIGN_OR_RETURN(const std::optional<RowId> row, cursor->Next());
        return !row.has_value();
    }

    const Source& source_;
    const IndexDesign& index_;
    std::size_t number_;
    const Candidate& candidate_;
    int jet_version_;
};

// One range after the other.
class RangesCursor final : public RowCursor, private StoredFields {
public:
    static Result<std::unique_ptr<RowCursor>> Open(Table& table, AccessPath path) {
        auto cursor = std::unique_ptr<RangesCursor>(new RangesCursor(table, std::move(path)));
        if (!cursor->path_.ranges.empty()) RETURN_IF_ERROR(cursor->OpenNext());
        return std::unique_ptr<RowCursor>(std::move(cursor));
    }

    Result<std::optional<RowId>> Next() override {
        while (cursor_ != nullptr) {
            ASSIGN_OR_RETURN(const std::optional<RowId> row, cursor_->Next());
            if (row) return row;
            if (opened_ == path_.ranges.size()) break;
            RETURN_IF_ERROR(OpenNext());
        }
        return std::optional<RowId>();
    }

    Status Read(std::span<const std::size_t> columns, std::span<Value> values) override {
        return cursor_->Read(columns, values);
    }

    StoredFields* stored_fields() override { return stored_ != nullptr ? this : nullptr; }

private:
    RangesCursor(Table& table, AccessPath path) : table_(table), path_(std::move(path)) {}

    Status OpenNext() {
        const std::size_t at = path_.backwards ? path_.ranges.size() - 1 - opened_ : opened_;
        ++opened_;
        const IndexRange& range = path_.ranges[at];
        ASSIGN_OR_RETURN(cursor_,
                         table_.Range(*path_.index, range.from, range.to, path_.backwards));
        stored_ = cursor_->stored_fields();
        return Status::Ok();
    }

    std::optional<std::string_view> NarrowText(std::size_t column) override {
        return stored_->NarrowText(column);
    }
    Status Append(std::span<const std::size_t> columns, FieldBytes& fields) override {
        return stored_->Append(columns, fields);
    }
    const StoredFieldReader& reader() const override { return stored_->reader(); }

    Table& table_;
    AccessPath path_;
    std::unique_ptr<RowCursor> cursor_;  // of the range opened last; nullptr: there is no range
    StoredFields* stored_ = nullptr;     // of cursor_
    std::size_t opened_ = 0;             // ranges
};

}  // namespace

namespace {

// Whether anything is known of what the index is sorted by first.
bool IsAbout(const std::vector<ColumnBounds>& facts, const std::vector<IndexColumn>& columns) {
    return !columns.empty() && std::ranges::any_of(facts, [&](const ColumnBounds& bounds) {
        return bounds.column == columns.front().column;
    });
}

}  // namespace

Result<AccessPath> ChoosePath(const Scope& scope, const Expression* where,
                              const std::vector<OrderItem>& order, Session& session,
                              bool outer_known) {
    const Source& source = scope.sources()[0];
    const TableDesign& design = source.table->design();
    const int version = session.database->jet_version();
    std::vector<ColumnBounds> facts;
    if (where != nullptr && !design.indexes.empty())
        facts = FindBounds(*where, source, session, outer_known);
    AccessPath best;
    int best_score = 0;
    for (std::size_t i = 0; i < design.indexes.size(); ++i) {
        const IndexDesign& index = design.indexes[i];
        if (!index.maintainable || (order.empty() && !IsAbout(facts, index.columns))) continue;
        Candidate candidate(design, i, version);
        candidate.Narrow(facts);
        const bool narrowed = candidate.score > 0;
        // A scan of the whole index would miss rows without a key.
        if (!narrowed && (index.ignore_nulls || where != nullptr)) continue;
        bool backwards = false;
        ASSIGN_OR_RETURN(const bool ordered,
                         OrderCheck(source, index, i, candidate, version).Holds(order, backwards));
        if (!narrowed && !ordered) continue;
        candidate.path.in_order = ordered;
        candidate.path.backwards = ordered && backwards;
        if (ordered) candidate.score += 1;
        if (candidate.score <= best_score) continue;
        best_score = candidate.score;
        best = std::move(candidate.path);
    }
    return best;
}

Result<std::unique_ptr<RowCursor>> OpenPath(Table& table, const AccessPath& path) {
    if (!path.index) return table.Scan();
    if (path.ranges.size() == 1)
        return table.Range(*path.index, path.ranges[0].from, path.ranges[0].to, path.backwards);
    return RangesCursor::Open(table, path);
}

}  // namespace jet::sql
