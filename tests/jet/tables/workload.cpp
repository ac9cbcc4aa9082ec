#include "jet/tables/workload.h"

#include "base/unicode.h"
#include "jet/errors.h"
#include "jet/sql/statements/rule_maker.h"
#include "jet/tables/storage_checks.h"
#include "jet/tables/storage_support.h"
#include "jet/tables/table_fixture.h"
#include "platform/file_system.h"
#include "support/check_database.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <numeric>

namespace jet::test {
namespace {

constexpr int kBetweenComparisons = 2500;
constexpr int kBetweenReopenings = 1500;

// The same every time, unless somebody asks for another.
unsigned Seed() {
    const char* wanted = std::getenv("TAVOLO_WORKLOAD_SEED");
    return wanted == nullptr ? 20261120 : static_cast<unsigned>(std::strtoul(wanted, nullptr, 10));
}

std::size_t PositionOf(const TableDesign& design, std::u16string_view column) {
    const auto found = std::ranges::find(design.columns, column, &ColumnDesign::name);
    EXPECT_NE(found, design.columns.end()) << base::ToUtf8(std::u16string(column));
    return static_cast<std::size_t>(found - design.columns.begin());
}

}  // namespace

Workload::Workload(std::vector<std::byte> bytes, std::string name, std::vector<std::u16string> only)
    : name_(std::move(name)), only_(std::move(only)) {
    Open(std::move(bytes));
}

void Workload::KeepRowsWithin(std::size_t least, std::size_t most) {
    least_rows_ = least;
    most_rows_ = most;
}

void Workload::Interrupt(int transactions, Interlude interlude) {
    between_interludes_ = transactions;
    interlude_ = std::move(interlude);
}

void Workload::Run(int operations) {
    LoadModel();
    ASSERT_FALSE(tables_.empty());
    for (int i = 0; i < operations && !testing::Test::HasFailure();) {
        i += Transaction();
        if (++transactions_ % kBetweenReopenings == 0) Reopen({});
        if (transactions_ % kBetweenComparisons == 0) Compare();
        if (interlude_ && transactions_ % between_interludes_ == 0) {
            Reopen(interlude_);
            Compare();
        }
    }
    Compare();
    Reopen({});
    Compare();
}

// Whether rows of the tables worked on refer to each other.
bool Workload::has_relations() const {
    return std::ranges::any_of(model_->relations(), [&](const ModelRelation& relation) {
        return std::ranges::find(tables_, relation.table) != tables_.end();
    });
}

void Workload::Open(std::vector<std::byte> bytes) {
    const bool jet3 = bytes.size() > 0x14 && bytes[0x14] == std::byte{0};
    auto opened = OpenDatabase(MakeMemoryPageStore(jet3 ? 2048 : 4096, std::move(bytes)), name_);
    ASSERT_TRUE(opened.ok()) << opened.status().message();
    database_ = std::move(opened).value();
    database_->UseRowRules(std::make_unique<sql::RuleMaker>([] { return 46000.5; }));
}

void Workload::Reopen(const Interlude& interlude) {
    std::vector<std::byte> bytes = AllBytes(database_->pages());
    database_.reset();
    Open(interlude ? interlude(std::move(bytes)) : std::move(bytes));
}

void Workload::LoadModel() {
    model_ = std::make_unique<WorkloadModel>(database_->jet_version());
    values_ = std::make_unique<WorkloadValues>(Seed(), database_->jet_version());
    if (long_texts_) values_->MakeTextsLong();
    const auto names = database_->TableNames();
    ASSERT_TRUE(names.ok()) << names.status().message();
    for (const std::u16string& name : names.value()) {
        if (!only_.empty() && std::ranges::find(only_, name) == only_.end()) continue;
        Table& table = TableOf(name);
        (table.read_only_reason() ? left_out_ : tables_).push_back(name);
        model_->AddTable(table.design(), ReadAll(name));
    }
    LoadRelations();
}

// From the catalogue, which the engine itself does not read to keep relations.
void Workload::LoadRelations() {
    Table& catalogue = TableOf(u"MSysRelationships");
    std::map<std::u16string, ModelRelation> relations;
    for (const Row& row : AllRows(catalogue)) {
        const auto text = [&](std::u16string_view column) {
            return row[PositionOf(catalogue.design(), column)].as<std::u16string>();
        };
        const auto flags = row[PositionOf(catalogue.design(), u"grbit")].as<std::int32_t>();
        ModelRelation& relation = relations[text(u"szRelationship")];
        relation.name = text(u"szRelationship");
        relation.table = text(u"szObject");
        relation.referenced = text(u"szReferencedObject");
        relation.columns.push_back(PositionOf(TableOf(relation.table).design(), text(u"szColumn")));
        relation.referenced_columns.push_back(
            PositionOf(TableOf(relation.referenced).design(), text(u"szReferencedColumn")));
        relation.cascade_updates = (flags & 0x100) != 0;
        relation.cascade_deletes = (flags & 0x1000) != 0;
        relation.nulls_on_delete = relation.name.ends_with(u"Nulls");
    }
    for (auto& [name, relation] : relations)
        model_->AddRelation(std::move(relation));
}

// A few operations that are committed or taken back together; the number of them.
int Workload::Transaction() {
    const std::size_t length = values_->OneIn(4) ? 1 + values_->Pick(6) : 1;
    EXPECT_TRUE(database_->Begin().ok());
    model_->Begin();
    int done = 0;
    bool failed = false;
    while (!failed && done < static_cast<int>(length)) {
        ++done;
        failed = !Operation();
    }
    if (failed || values_->OneIn(12)) {
        rolled_back += failed ? 0 : 1;
        database_->Rollback();
        model_->Rollback();
    } else {
        const base::Status committed = database_->Commit();
        EXPECT_TRUE(committed.ok()) << committed.message();
    }
    return done;
}

Workload::Kind Workload::NextKind(const Rows& rows) {
    const std::size_t number = values_->Pick(20);
    if (rows.empty()) return Kind::kInsert;
    if (most_rows_ == 0)
        return number < 8 ? Kind::kInsert : number < 14 ? Kind::kUpdate : Kind::kDelete;
    if (rows.size() >= most_rows_) is_growing_ = false;
    if (rows.size() <= least_rows_) is_growing_ = true;
    if (number < 5) return Kind::kUpdate;
    return (number < 15) == is_growing_ ? Kind::kInsert : Kind::kDelete;
}

// False: the operation was refused.
bool Workload::Operation() {
    const std::u16string& name = tables_[values_->Pick(tables_.size())];
    const Rows& rows = model_->rows(name);
    const Kind kind = NextKind(rows);
    if (kind == Kind::kInsert) return Insert(name);
    // Somewhere in the file, not always at its begin.
    auto row = rows.lower_bound(
        {static_cast<PageNumber>(values_->Pick(database_->pages().page_count())), 0});
    if (row == rows.end()) row = rows.begin();
    const auto left = static_cast<std::size_t>(std::distance(row, rows.end()));
    std::advance(row, values_->Pick(std::min<std::size_t>(8, left)));
    const Place place{name, row->first};
    return kind == Kind::kUpdate ? Update(place) : Delete(place);
}

// A value for a column that may refer to another table: mostly one that is there.
Value Workload::NewValue(const std::u16string& table, std::size_t column) {
    const auto& columns = model_->design(table).columns;
    const ColumnDesign& design = columns[column];
    if (values_->OneIn(8 + 4 * columns.size())) return values_->Refused(design);
    for (const ModelRelation& relation : model_->relations()) {
        const auto at = std::ranges::find(relation.columns, column);
        if (relation.table != table || at == relation.columns.end() || values_->OneIn(8)) continue;
        const Rows& others = model_->rows(relation.referenced);
        if (others.empty()) return {};
        auto row = others.begin();
        std::advance(row, values_->Pick(others.size()));
        const std::size_t other =
            relation.referenced_columns[static_cast<std::size_t>(at - relation.columns.begin())];
        return values_->OtherSpelling(row->second[other], design);
    }
    return values_->Of(design);
}

// Some values of a row that is there, so that keys come twice.
void Workload::Repeat(const std::u16string& table, const std::vector<std::size_t>& columns,
                      Row& row) {
    const Rows& rows = model_->rows(table);
    if (rows.empty() || !values_->OneIn(15)) return;
    auto other = rows.begin();
    std::advance(other, values_->Pick(rows.size()));
    for (const std::size_t column : columns)
        row[column] =
            values_->OtherSpelling(other->second[column], model_->design(table).columns[column]);
}

std::vector<std::size_t> Workload::SomeKey(const TableDesign& design) {
    std::vector<std::size_t> columns;
    if (design.indexes.empty()) return columns;
    for (const IndexColumn& column : design.indexes[values_->Pick(design.indexes.size())].columns)
        columns.push_back(column.column);
    return columns;
}

bool Workload::Insert(const std::u16string& name) {
    const TableDesign& design = model_->design(name);
    Row row(design.columns.size());
    for (std::size_t c = 0; c < row.size(); ++c)
        if (!design.columns[c].autonumber) row[c] = NewValue(name, c);
    Repeat(name, SomeKey(design), row);
    const auto plan = model_->PlanInsert(name, row);
    const Row given = row;
    const auto id = TableOf(name).Insert(row);
    if (!Expected(plan, id.status(), "insert into " + base::ToUtf8(name))) return false;
    CheckAutonumbers(design, given, row);
    EXPECT_FALSE(model_->rows(name).contains(id.value())) << "a slot was given out twice";
    model_->Insert({name, id.value()}, std::move(row));
    ++inserted;
    return true;
}

// A number that the engine gave out is larger than all that are there.
void Workload::CheckAutonumbers(const TableDesign& design, const Row& given, const Row& stored) {
    for (std::size_t c = 0; c < given.size(); ++c) {
        if (!design.columns[c].autonumber || !given[c].is_null()) {
            EXPECT_EQ(stored[c], given[c]);
            continue;
        }
        for (const auto& [id, row] : model_->rows(design.name)) {
            if (const auto* number = row[c].get_if<std::int32_t>())
                EXPECT_LT(*number, stored[c].as<std::int32_t>());
            else
                EXPECT_NE(row[c], stored[c]);
        }
    }
}

bool Workload::Update(const Place& place) {
    const TableDesign& design = model_->design(place.table);
    Row row = model_->rows(place.table).at(place.row);
    const Row before = row;
    std::vector<bool> named(row.size());
    for (std::size_t c = 0; c < row.size(); ++c) {
        if (design.columns[c].autonumber || !values_->OneIn(3)) continue;
        row[c] = NewValue(place.table, c);
        named[c] = true;
    }
    const auto key = SomeKey(design);
    if (std::ranges::none_of(key, [&](auto c) { return design.columns[c].autonumber; }))
        Repeat(place.table, key, row);
    std::vector<ColumnChange> changes;
    for (std::size_t c = 0; c < row.size(); ++c)
        if (named[c] || row[c] != before[c]) changes.push_back({c, row[c]});
    const auto plan = model_->PlanUpdate(place, changes);
    const base::Status status = TableOf(place.table).Update(place.row, changes);
    if (!Expected(plan, status, "update of " + base::ToUtf8(place.table))) return false;
    model_->Apply(plan);
    passed_on += plan.updates.size() > 1 ? 1 : 0;
    ++updated;
    return true;
}

bool Workload::Delete(const Place& place) {
    const auto plan = model_->PlanDelete(place);
    const base::Status status = TableOf(place.table).Delete(place.row);
    if (!Expected(plan, status, "delete from " + base::ToUtf8(place.table))) return false;
    model_->Apply(plan);
    passed_on += plan.updates.size() + plan.deletes.size() > 1 ? 1 : 0;
    ++deleted;
    return true;
}

// Both sides agree whether and why a change is refused. True: it was done.
bool Workload::Expected(const WorkloadModel::Plan& plan, const base::Status& status,
                        const std::string& what) {
    if (status.ok()) {
        EXPECT_THAT(plan.refusals, testing::IsEmpty()) << what << " was not refused";
        return true;
    }
    ++refused[status.number()];
    const bool too_large =
        jet::Is(status, jet::ErrorNumber::kRecordTooLarge) && plan.may_be_too_large;
    EXPECT_TRUE(plan.refusals.contains(status.number()) || too_large)
        << what << ": " << status.number() << " " << status.message() << ", expected "
        << testing::PrintToString(plan.refusals);
    return false;
}

Workload::Rows Workload::ReadAll(const std::u16string& name) {
    Rows rows;
    Table& table = TableOf(name);
    std::vector<std::size_t> columns(table.design().columns.size());
    std::iota(columns.begin(), columns.end(), std::size_t{0});
    auto cursor = table.Scan();
    EXPECT_TRUE(cursor.ok()) << cursor.status().message();
    while (cursor.ok()) {
        const auto row = cursor.value()->Next();
        EXPECT_TRUE(row.ok()) << row.status().message();
        if (!row.ok() || !row.value()) break;
        auto& values = rows[*row.value()];
        values.resize(columns.size());
        const auto read = cursor.value()->Read(columns, values);
        EXPECT_TRUE(read.ok()) << read.message();
    }
    return rows;
}

void Workload::Compare() {
    for (const std::u16string& name : tables_)
        EXPECT_TRUE(ReadAll(name) == model_->rows(name)) << base::ToUtf8(name);
    const StorageFaults found = CheckStorage(database_->pages());
    for (const std::string& fault : found.faults)
        if (fault.find("wrong key at page 55 slot 7") == std::string::npos &&
            !(interlude_ && fault.ends_with(" is lost")))
            ADD_FAILURE() << fault;
    EXPECT_TRUE(test_support::PagesAreSound(database_->pages()));
}

void CompareWithExports(Workload& workload, std::size_t left_behind) {
    const TemporaryFolder folder;
    const auto path = folder.path() / "worked.mdb";
    WriteWholeFile(path, AllBytes(workload.database().pages()));
    for (const std::u16string& table : workload.tables())
        CompareWithExport(path, workload.TableOf(table), left_behind);
}

void ExpectABitOfEverything(const Workload& workload) {
    EXPECT_GT(workload.inserted, 500);
    EXPECT_GT(workload.updated, 500);
    EXPECT_GT(workload.deleted, 500);
    EXPECT_GT(workload.rolled_back, 200);
    std::string refused;
    for (const auto& [number, count] : workload.refused)
        refused += " " + std::to_string(number) + ":" + std::to_string(count);
    testing::Test::RecordProperty("refused", refused);
}

std::vector<std::byte> NewFile(int version) {
    const TemporaryFolder folder;
    const auto path = folder.path() / "new.mdb";
    const auto files = platform::MakeFileSystem();
    const base::Status created = CreateDatabaseFile(*files, path, 45000.5, version);
    EXPECT_TRUE(created.ok()) << created.message();
    return ReadWholeFile(path);
}

std::vector<std::byte> WithTables(std::vector<std::byte> bytes,
                                  const std::function<void(Database&)>& create) {
    const bool jet3 = bytes[0x14] == std::byte{0};
    auto database = OpenDatabase(MakeMemoryPageStore(jet3 ? 2048 : 4096, std::move(bytes)), "new");
    EXPECT_TRUE(database.ok()) << database.status().message();
    create(*database.value());
    return AllBytes(database.value()->pages());
}

ColumnDesign Required(ColumnDesign column) {
    column.required = true;
    return column;
}

IndexDesign PrimaryKey(std::vector<IndexColumn> columns) {
    IndexDesign index = Index(u"PrimaryKey", std::move(columns));
    index.primary = true;
    return index;
}

}  // namespace jet::test
