// Ten thousand random operations on copies of every real file that can be written, and on files of
// the test's own with all kinds of relations, against a model in memory: what is refused and why,
// what a rollback leaves, and every cell after reopening.
#include "base/unicode.h"
#include "jet/sql/rule_maker.h"
#include "jet/storage_checks.h"
#include "jet/storage_support.h"
#include "jet/table_fixture.h"
#include "jet/workload_model.h"
#include "jet/workload_values.h"
#include "platform/file_system.h"
#include "support/check_database.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <numeric>

namespace jet::test {
namespace {

constexpr int kOperations = 10000;
constexpr int kBetweenComparisons = 2500;
constexpr int kBetweenReopenings = 1500;

// The same every time, unless somebody asks for another.
unsigned Seed() {
    const char* wanted = std::getenv("TAVOLO_WORKLOAD_SEED");
    return wanted == nullptr ? 20261120 : static_cast<unsigned>(std::strtoul(wanted, nullptr, 10));
}

using Row = WorkloadModel::Row;
using Rows = WorkloadModel::Rows;
using Place = WorkloadModel::Place;

class Workload {
public:
    // `only`: the tables to work on; empty: all.
    Workload(std::vector<std::byte> bytes, std::string name, std::vector<std::u16string> only = {})
        : name_(std::move(name)), only_(std::move(only)) {
        Open(std::move(bytes));
    }

    void Run(int operations) {
        LoadModel();
        ASSERT_FALSE(tables_.empty());
        for (int i = 0; i < operations && !testing::Test::HasFailure();) {
            i += Transaction();
            if (++transactions_ % kBetweenReopenings == 0) Reopen();
            if (transactions_ % kBetweenComparisons == 0) Compare();
        }
        Compare();
        Reopen();
        Compare();
    }

    // Counts of what happened; the numbers of errors that came.
    int inserted = 0, updated = 0, deleted = 0, rolled_back = 0, passed_on = 0;
    std::map<int, int> refused;

    Database& database() { return *database_; }
    const std::vector<std::u16string>& tables() const { return tables_; }
    const std::vector<std::u16string>& left_out() const { return left_out_; }
    // Whether rows of the tables worked on refer to each other.
    bool has_relations() const {
        return std::ranges::any_of(model_->relations(), [&](const ModelRelation& relation) {
            return std::ranges::find(tables_, relation.table) != tables_.end();
        });
    }
    Table& TableOf(const std::u16string& name) { return *database_->FindTable(name).value(); }

private:
    void Open(std::vector<std::byte> bytes) {
        const bool jet3 = bytes.size() > 0x14 && bytes[0x14] == std::byte{0};
        auto opened =
            OpenDatabase(MakeMemoryPageStore(jet3 ? 2048 : 4096, std::move(bytes)), name_);
        ASSERT_TRUE(opened.ok()) << opened.status().message();
        database_ = std::move(opened).value();
        database_->UseRowRules(std::make_unique<sql::RuleMaker>([] { return 46000.5; }));
    }

    void Reopen() {
        std::vector<std::byte> bytes = AllBytes(database_->pages());
        database_.reset();
        Open(std::move(bytes));
    }

    void LoadModel() {
        model_ = std::make_unique<WorkloadModel>(database_->jet_version());
        values_ = std::make_unique<WorkloadValues>(Seed(), database_->jet_version());
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
    void LoadRelations() {
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
            relation.columns.push_back(
                PositionOf(TableOf(relation.table).design(), text(u"szColumn")));
            relation.referenced_columns.push_back(
                PositionOf(TableOf(relation.referenced).design(), text(u"szReferencedColumn")));
            relation.cascade_updates = (flags & 0x100) != 0;
            relation.cascade_deletes = (flags & 0x1000) != 0;
            relation.nulls_on_delete = relation.name.ends_with(u"Nulls");
        }
        for (auto& [name, relation] : relations)
            model_->AddRelation(std::move(relation));
    }

    static std::size_t PositionOf(const TableDesign& design, std::u16string_view column) {
        const auto found = std::ranges::find(design.columns, column, &ColumnDesign::name);
        EXPECT_NE(found, design.columns.end()) << base::ToUtf8(std::u16string(column));
        return static_cast<std::size_t>(found - design.columns.begin());
    }

    // A few operations that are committed or taken back together; the number of them.
    int Transaction() {
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

    // False: the operation was refused.
    bool Operation() {
        const std::u16string& name = tables_[values_->Pick(tables_.size())];
        const Rows& rows = model_->rows(name);
        const std::size_t kind = values_->Pick(20);
        if (kind < 8 || rows.empty()) return Insert(name);
        // Somewhere in the file, not always at its begin.
        auto row = rows.lower_bound(
            {static_cast<PageNumber>(values_->Pick(database_->pages().page_count())), 0});
        if (row == rows.end()) row = rows.begin();
        const auto left = static_cast<std::size_t>(std::distance(row, rows.end()));
        std::advance(row, values_->Pick(std::min<std::size_t>(8, left)));
        const Place place{name, row->first};
        return kind < 14 ? Update(place) : Delete(place);
    }

    // A value for a column that may refer to another table: mostly one that is there.
    Value NewValue(const std::u16string& table, std::size_t column) {
        const auto& columns = model_->design(table).columns;
        const ColumnDesign& design = columns[column];
        if (values_->OneIn(8 + 4 * columns.size())) return values_->Refused(design);
        for (const ModelRelation& relation : model_->relations()) {
            const auto at = std::ranges::find(relation.columns, column);
            if (relation.table != table || at == relation.columns.end() || values_->OneIn(8))
                continue;
            const Rows& others = model_->rows(relation.referenced);
            if (others.empty()) return {};
            auto row = others.begin();
            std::advance(row, values_->Pick(others.size()));
            const std::size_t other =
                relation
                    .referenced_columns[static_cast<std::size_t>(at - relation.columns.begin())];
            return values_->OtherSpelling(row->second[other], design);
        }
        return values_->Of(design);
    }

    // Some values of a row that is there, so that keys come twice.
    void Repeat(const std::u16string& table, const std::vector<std::size_t>& columns, Row& row) {
        const Rows& rows = model_->rows(table);
        if (rows.empty() || !values_->OneIn(15)) return;
        auto other = rows.begin();
        std::advance(other, values_->Pick(rows.size()));
        for (const std::size_t column : columns)
            row[column] = values_->OtherSpelling(other->second[column],
                                                 model_->design(table).columns[column]);
    }

    std::vector<std::size_t> SomeKey(const TableDesign& design) {
        std::vector<std::size_t> columns;
        if (design.indexes.empty()) return columns;
        for (const IndexColumn& column :
             design.indexes[values_->Pick(design.indexes.size())].columns)
            columns.push_back(column.column);
        return columns;
    }

    bool Insert(const std::u16string& name) {
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
    void CheckAutonumbers(const TableDesign& design, const Row& given, const Row& stored) {
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

    bool Update(const Place& place) {
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

    bool Delete(const Place& place) {
        const auto plan = model_->PlanDelete(place);
        const base::Status status = TableOf(place.table).Delete(place.row);
        if (!Expected(plan, status, "delete from " + base::ToUtf8(place.table))) return false;
        model_->Apply(plan);
        passed_on += plan.updates.size() + plan.deletes.size() > 1 ? 1 : 0;
        ++deleted;
        return true;
    }

    // Both sides agree whether and why a change is refused. True: it was done.
    bool Expected(const WorkloadModel::Plan& plan, const base::Status& status,
                  const std::string& what) {
        if (status.ok()) {
            EXPECT_THAT(plan.refusals, testing::IsEmpty()) << what << " was not refused";
            return true;
        }
        ++refused[status.number()];
        const bool too_large = status.number() == 3047 && plan.may_be_too_large;
        EXPECT_TRUE(plan.refusals.contains(status.number()) || too_large)
            << what << ": " << status.number() << " " << status.message() << ", expected "
            << testing::PrintToString(plan.refusals);
        return false;
    }

    Rows ReadAll(const std::u16string& name) {
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

    void Compare() {
        for (const std::u16string& name : tables_)
            EXPECT_TRUE(ReadAll(name) == model_->rows(name)) << base::ToUtf8(name);
        const StorageFaults found = CheckStorage(database_->pages());
        for (const std::string& fault : found.faults)
            if (fault.find("wrong key at page 55 slot 7") == std::string::npos)
                ADD_FAILURE() << fault;
        EXPECT_TRUE(test_support::PagesAreSound(database_->pages()));
    }

    std::string name_;
    std::vector<std::u16string> only_;
    std::unique_ptr<Database> database_;
    std::unique_ptr<WorkloadModel> model_;
    std::unique_ptr<WorkloadValues> values_;
    std::vector<std::u16string> tables_;
    std::vector<std::u16string> left_out_;  // tables that the engine only reads
    int transactions_ = 0;
};

ColumnDesign Required(ColumnDesign column) {
    column.required = true;
    return column;
}

IndexDesign PrimaryKey(std::vector<IndexColumn> columns) {
    IndexDesign index = Index(u"PrimaryKey", std::move(columns));
    index.primary = true;
    return index;
}

// Makers by name, people with a boss, games of a maker and perhaps an owner, and their scores.
void CreateRelatedTables(Database& database) {
    TableDesign makers{
        u"Makers",
        {Column(u"Name", ColumnType::kText, 20), Column(u"Notes", ColumnType::kMemo)},
        {PrimaryKey({{0, true}})},
        {},
        {}};
    TableDesign people{u"People",
                       {Column(u"ID", ColumnType::kShort), Column(u"Boss", ColumnType::kShort),
                        Column(u"Name", ColumnType::kText, 60)},
                       {PrimaryKey({{0, false}})},
                       {},
                       {}};
    TableDesign games{u"Games",
                      {Column(u"Maker", ColumnType::kText, 30), Column(u"No", ColumnType::kByte),
                       Column(u"Owner", ColumnType::kShort),
                       Required(Column(u"Title", ColumnType::kText, 40)),
                       Column(u"Rules", ColumnType::kMemo)},
                      {PrimaryKey({{0, true}, {1, false}}), Index(u"Title", {{3, true}})},
                      {},
                      {}};
    games.columns[3].allow_zero_length = false;
    TableDesign scores{u"Scores",
                       {Column(u"Maker", ColumnType::kText, 30), Column(u"No", ColumnType::kByte),
                        Column(u"Points", ColumnType::kLong),
                        Column(u"Player", ColumnType::kShort)},
                       {Index(u"Points", {{2, false}})},
                       {},
                       {}};
    const auto relate = [&](RelationDesign relation, RelationRule on_update,
                            RelationRule on_delete) {
        relation.on_update = on_update;
        relation.on_delete = on_delete;
        const base::Status created = database.CreateRelation(relation);
        ASSERT_TRUE(created.ok()) << created.message();
    };
    ASSERT_TRUE(database.Begin().ok());
    for (const TableDesign& design : {makers, people, games, scores})
        ASSERT_TRUE(database.CreateTable(design).ok());
    using enum RelationRule;
    relate({u"Bosses", u"People", {u"Boss"}, u"People", {}}, kCascade, kCascade);
    relate({u"MakersGames", u"Games", {u"Maker"}, u"Makers", {}}, kCascade, kCascade);
    relate({u"OwnersNulls", u"Games", {u"Owner"}, u"People", {}}, kCascade, kSetNull);
    relate({u"GamesScores", u"Scores", {u"No", u"Maker"}, u"Games", {u"No", u"Maker"}}, kCascade,
           kCascade);
    relate({u"PlayersNulls", u"Scores", {u"Player"}, u"People", {}}, kRefuse, kSetNull);
    ASSERT_TRUE(database.Commit().ok());
}

std::vector<std::byte> NewFile() {
    const TemporaryFolder folder;
    const auto path = folder.path() / "new.mdb";
    const auto files = platform::MakeFileSystem();
    const base::Status created = CreateDatabaseFile(*files, path, 45000.5);
    EXPECT_TRUE(created.ok()) << created.message();
    return ReadWholeFile(path);
}

// `bytes` with tables of the test's own in it.
template <typename Create>
std::vector<std::byte> WithTables(std::vector<std::byte> bytes, Create create) {
    const bool jet3 = bytes[0x14] == std::byte{0};
    auto database = OpenDatabase(MakeMemoryPageStore(jet3 ? 2048 : 4096, std::move(bytes)), "new");
    EXPECT_TRUE(database.ok()) << database.status().message();
    create(*database.value());
    return AllBytes(database.value()->pages());
}

void CreateGames(Database& database) {
    ASSERT_TRUE(database.Begin().ok());
    ASSERT_TRUE(database.CreateTable(GamesDesign()).ok());
    ASSERT_TRUE(database.Commit().ok());
}

// What other programs read of it.
void CompareWithExports(Workload& workload) {
    if (!HasProgram("mdb-export")) return;
    const TemporaryFolder folder;
    const auto path = folder.path() / "worked.mdb";
    WriteWholeFile(path, AllBytes(workload.database().pages()));
    for (const std::u16string& table : workload.tables())
        CompareWithExport(path, workload.TableOf(table));
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

class StorageWorkloadTest : public testing::TestWithParam<std::string> {};

TEST_P(StorageWorkloadTest, TenThousandOperationsComeToWhatTheModelHolds) {
    const auto samples = SampleFolder();
    if (!samples) GTEST_SKIP() << "no sample files on this machine";
    std::vector<std::byte> bytes = ReadWholeFile(*samples / GetParam());
    // Files without a table get one.
    if (GetParam().ends_with("fresh.mdb")) bytes = WithTables(std::move(bytes), CreateGames);
    Workload workload(std::move(bytes), GetParam());
    workload.Run(kOperations);
    if (HasFailure()) return;
    EXPECT_THAT(workload.left_out(), testing::IsEmpty());
    ExpectABitOfEverything(workload);
    if (workload.has_relations()) {
        EXPECT_GT(workload.refused[3200], 20);
        EXPECT_GT(workload.refused[3201], 20);
        EXPECT_GT(workload.passed_on, 20);
    }
    CompareWithExports(workload);
}

const std::vector<std::string> kWorkedOn = {
    "catalogue/old-base-250.mdb", "catalogue/old-full-1000.mdb", "mdb/a2000-composite-index.mdb",
    "mdb/a2000-fresh.mdb",        "mdb/a2000-wide-table.mdb",    "mdb/a2003-relations.mdb",
    "mdb/a2003-unicode.mdb",      "mdb/a97-collation.mdb",       "mdb/a97-orders.mdb",
    "mdb/a97-tables.mdb",         "mdb/jet4-engine-fresh.mdb"};

INSTANTIATE_TEST_SUITE_P(Samples, StorageWorkloadTest, testing::ValuesIn(kWorkedOn),
                         [](const auto& sample) {
                             std::string name = sample.param.substr(sample.param.find('/') + 1);
                             std::erase_if(name, [](char c) { return std::isalnum(c) == 0; });
                             return name;
                         });

TEST(StorageWorkloadSamplesTest, NoSampleButTheOneWithAPasswordIsLeftOut) {
    const auto files = SampleDatabases();
    if (files.empty()) GTEST_SKIP() << "no sample files on this machine";
    std::vector<std::string> names = {"mdb/a2003-password.mdb"};
    names.insert(names.end(), kWorkedOn.begin(), kWorkedOn.end());
    std::vector<std::string> found;
    for (const auto& file : files)
        found.push_back(file.parent_path().filename().string() + "/" + file.filename().string());
    EXPECT_THAT(found, testing::UnorderedElementsAreArray(names));
}

void WorkOnRelatedTables(std::vector<std::byte> bytes) {
    Workload workload(WithTables(std::move(bytes), CreateRelatedTables), "related.mdb",
                      {u"Makers", u"People", u"Games", u"Scores"});
    workload.Run(kOperations);
    if (testing::Test::HasFailure()) return;
    ExpectABitOfEverything(workload);
    for (const int number : {3022, 3058, 3163, 3200, 3201, 3314, 3315})
        EXPECT_GT(workload.refused[number], 0) << number;
    EXPECT_GT(workload.passed_on, 200);
    CompareWithExports(workload);
}

TEST(RelationWorkloadTest, NewFileWithAllKindsOfRelations) {
    WorkOnRelatedTables(NewFile());
}

TEST(RelationWorkloadTest, OlderFileWithAllKindsOfRelations) {
    const auto samples = SampleFolder();
    if (!samples) GTEST_SKIP() << "no sample files on this machine";
    WorkOnRelatedTables(ReadWholeFile(*samples / "mdb" / "a97-collation.mdb"));
}

}  // namespace
}  // namespace jet::test
