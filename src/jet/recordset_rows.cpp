#include "jet/recordset_rows.h"

#include "jet/errors.h"

namespace jet {

using base::Result;
using base::Status;

void RecordsetRows::StandOn(std::int64_t position) {
    position_ = position;
    at_end_ = position_ >= count();
}

Status RecordsetRows::MoveFirst() {
    StandOn(0);
    return Status::Ok();
}

Status RecordsetRows::MoveLast() {
    StandOn(count() - 1);
    return Status::Ok();
}

Status RecordsetRows::MoveNext() {
    if (at_end_) return JetError(ErrorNumber::kNoCurrentRecord);
    StandOn(position_ + 1);
    return Status::Ok();
}

Status RecordsetRows::MovePrevious() {
    if (position_ < 0) return JetError(ErrorNumber::kNoCurrentRecord);
    StandOn(position_ - 1);
    return Status::Ok();
}

Status RecordsetRows::MoveTo(std::int64_t row) {
    if (row < 0 || row >= count()) return JetError(ErrorNumber::kNoCurrentRecord);
    StandOn(row);
    return Status::Ok();
}

Result<HeldRows> RecordsetRows::Hold(std::span<const std::size_t> fields,
                                     const RowProgress& progress) {
    if (count() < 0) return JetError(ErrorNumber::kNotAllowedHere);
    const auto held = std::make_shared<HeldRows::Content>();
    held->rows = static_cast<std::size_t>(count());
    const std::int64_t position = position_;
    const Status done = HoldFields(fields, *held, progress);
    StandOn(position);
    RETURN_IF_ERROR(done);
    return HeldRows(held);
}

Status RecordsetRows::HoldFields(std::span<const std::size_t> fields, HeldRows::Content& held,
                                 const RowProgress& progress) {
    for (std::size_t i = 0; i < fields.size(); ++i)
        held.places.push_back({false, i});
    return HoldLoose(fields, held, progress);
}

Status RecordsetRows::HoldLoose(std::span<const std::size_t> loose, HeldRows::Content& held,
                                const RowProgress& progress) {
    held.loose.resize(loose.size());
    for (std::int64_t row = 0; row < count(); ++row) {
        StandOn(row);
        for (std::size_t i = 0; i < loose.size(); ++i) {
            ASSIGN_OR_RETURN(Value value, Field(loose[i]));
            held.loose[i].push_back(std::move(value));
        }
        if (progress) progress(row + 1);
    }
    return Status::Ok();
}

Result<Value> TableRows::Field(std::size_t field) {
    RETURN_IF_ERROR(FillCache(field));
    const std::size_t place = place_in_cache_[field];
    RETURN_IF_ERROR(cache_failures_[place]);
    return cache_[place];
}

// After it the cache has the field of the current row.
Status TableRows::FillCache(std::size_t field) {
    const bool known = field < place_in_cache_.size() && place_in_cache_[field] != kNotCached;
    const bool fresh = cache_valid_ && cache_changes_ == changes_.count() && cache_row_ == id();
    if (known && fresh) return Status::Ok();
    if (!known) AddToCache(field);
    cache_valid_ = false;
    RETURN_IF_ERROR(ReadCachedFields());
    cache_valid_ = true;
    cache_row_ = id();
    cache_changes_ = changes_.count();
    return Status::Ok();
}

void TableRows::AddToCache(std::size_t field) {
    place_in_cache_.resize(query_->names().size(), kNotCached);
    place_in_cache_[field] = cached_fields_.size();
    cached_fields_.push_back(field);
    cache_.resize(cached_fields_.size());
    cache_failures_.resize(cached_fields_.size());
    const auto column = query_->TableColumn(field);
    const bool all_plain = cached_columns_.size() + 1 == cached_fields_.size() && column;
    if (all_plain)
        cached_columns_.push_back(*column);
    else
        cached_columns_.clear();
}

Status TableRows::ReadCachedFields() {
    if (cached_columns_.empty())
        return query_->ReadRow(id(), cached_fields_, cache_, cache_failures_);
    return ReadColumns(cached_columns_, cache_);
}

Status TableRows::ReadColumns(std::span<const std::size_t> columns, std::span<Value> values) {
    return query_->table()->Read(id(), columns, values);
}

void TableRows::AfterDesignChange(sql::TableQuery* query) {
    query_ = query;
    cached_fields_.clear();
    cached_columns_.clear();
    place_in_cache_.clear();
    cache_.clear();
    cache_failures_.clear();
    cache_valid_ = false;
}

KeysetRows::KeysetRows(sql::TableQuery& query, const ChangeCounter& changes, sql::FoundRows found)
    : TableRows(query, changes), found_(std::move(found)) {
    has_rows_ = !found_.ids.empty();
    StandOn(0);
}

KeysetRows::KeysetRows(sql::TableQuery& query, const ChangeCounter& changes, std::vector<RowId> ids,
                       bool had_rows)
    : TableRows(query, changes), found_{std::move(ids), {}} {
    has_rows_ = had_rows;
    StandOn(0);
}

Result<Value> KeysetRows::Field(std::size_t field) {
    if (!found_.stored.are_fresh()) return TableRows::Field(field);
    Result<Value> value{Value()};
    RETURN_IF_ERROR(found_.stored.Read(static_cast<std::size_t>(position_), field, *value));
    return value;
}

KeysetRows::HoldPlan KeysetRows::PlanHolding(std::span<const std::size_t> fields,
                                             HeldRows::Content& held) const {
    HoldPlan plan;
    const bool are_here = found_.stored.are_fresh();
    for (const std::size_t field : fields) {
        const auto column = query_ != nullptr ? query_->TableColumn(field) : std::nullopt;
        const StoredFieldReader* const reader = column ? query_->table()->stored_reader() : nullptr;
        if (reader == nullptr || !StoredFieldDecoder::CanDecode(reader->stored_column(*column))) {
            held.places.push_back({false, plan.loose.size()});
            plan.loose.push_back(field);
            continue;
        }
        if (!held.decoder) held.decoder.emplace(reader->text());
        held.decoder->Add(reader->stored_column(*column), are_here ? field : plan.columns.size());
        held.places.push_back({true, plan.columns.size()});
        plan.columns.push_back(*column);
    }
    return plan;
}

// Fields that the question has put away already are shared, others are put away now.
Status KeysetRows::HoldFields(std::span<const std::size_t> fields, HeldRows::Content& held,
                              const RowProgress& progress) {
    const HoldPlan plan = PlanHolding(fields, held);
    if (!plan.columns.empty() && found_.stored.are_fresh())
        held.stored = found_.stored.store();
    else if (!plan.columns.empty())
        RETURN_IF_ERROR(PutAway(plan.columns, held, plan.loose.empty() ? progress : RowProgress()));
    return plan.loose.empty() ? Status::Ok() : HoldLoose(plan.loose, held, progress);
}

Status KeysetRows::PutAway(std::span<const std::size_t> columns, HeldRows::Content& held,
                           const RowProgress& progress) const {
    const auto store = std::make_shared<sql::FieldStore>(held.rows);
    held.stored = store;
    std::int64_t done = 0;
    return query_->table()->VisitStored(found_.ids, columns,
                                        [&](std::size_t row, std::span<const std::byte> fields) {
                                            store->Set(row, fields);
                                            if (progress) progress(++done);
                                        });
}

void KeysetRows::AfterDesignChange(sql::TableQuery* query) {
    TableRows::AfterDesignChange(query);
    found_.stored = {};
}

Result<std::unique_ptr<RecordsetRows>>
ForwardRows::Start(sql::TableQuery& query, const ChangeCounter& changes,
                   std::unique_ptr<sql::FilteredCursor> cursor) {
    auto rows = std::unique_ptr<ForwardRows>(new ForwardRows(query, changes, std::move(cursor)));
    RETURN_IF_ERROR(rows->Step());
    rows->has_rows_ = !rows->at_end_;
    return std::unique_ptr<RecordsetRows>(std::move(rows));
}

// At the end `met_` stays the row met last.
Status ForwardRows::Step() {
    ASSIGN_OR_RETURN(const std::optional<RowId> row, cursor_->Next());
    at_end_ = !row.has_value();
    if (row) met_ = *row;
    met_changes_ = changes_.count();
    ++position_;
    return Status::Ok();
}

Status ForwardRows::MoveFirst() {
    if (position_ == 0) return Status::Ok();
    ASSIGN_OR_RETURN(cursor_, query_->OpenCursor());
    position_ = -1;
    cache_valid_ = false;
    RETURN_IF_ERROR(Step());
    return at_end_ ? JetError(ErrorNumber::kNoCurrentRecord) : Status::Ok();
}

Status ForwardRows::MoveLast() {
    while (!at_end_)
        RETURN_IF_ERROR(Step());
    --position_;
    at_end_ = false;
    met_changes_ = kPassed;
    return Status::Ok();
}

Status ForwardRows::MoveNext() {
    return at_end_ ? JetError(ErrorNumber::kNoCurrentRecord) : Step();
}

Status ForwardRows::MovePrevious() {
    return JetError(ErrorNumber::kNotAllowedHere);
}

Status ForwardRows::MoveTo(std::int64_t) {
    return JetError(ErrorNumber::kNotAllowedHere);
}

std::unique_ptr<RecordsetRows> ForwardRows::BeforeDesignChange() {
    std::vector<RowId> ids;
    while (!at_end_) {
        ids.push_back(met_);
        if (!Step().ok()) break;
    }
    return std::make_unique<KeysetRows>(*query_, changes_, std::move(ids), has_rows_);
}

// The cursor shows the row as it was met; one that may have changed since is read again.
Status ForwardRows::ReadColumns(std::span<const std::size_t> columns, std::span<Value> values) {
    if (met_changes_ != changes_.count()) return TableRows::ReadColumns(columns, values);
    return cursor_->Read(columns, values);
}

ValueRows::ValueRows(std::vector<sql::ResultRow> values, sql::FieldFailures failures,
                     std::vector<RowId> ids)
    : values_(std::move(values)), failures_(std::move(failures)), ids_(std::move(ids)) {
    has_rows_ = !values_.empty();
    StandOn(0);
}

Result<Value> ValueRows::Field(std::size_t field) {
    const auto row = static_cast<std::size_t>(position_);
    const auto failed = failures_.find({row, field});
    if (failed != failures_.end()) return failed->second;
    return values_[row][field];
}

void ValueRows::NoteWritten(std::size_t field, const Value& value) {
    values_[static_cast<std::size_t>(position_)][field] = value;
}

}  // namespace jet
