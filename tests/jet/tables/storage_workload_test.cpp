// Ten thousand random operations on copies of every real file that can be written, and on files of
// the test's own with all kinds of relations, against a model in memory.
#include "jet/tables/storage_support.h"
#include "jet/tables/table_fixture.h"
#include "jet/tables/workload.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace jet::test {
namespace {

constexpr int kOperations = 10000;

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

void CreateGames(Database& database) {
    ASSERT_TRUE(database.Begin().ok());
    ASSERT_TRUE(database.CreateTable(GamesDesign()).ok());
    ASSERT_TRUE(database.Commit().ok());
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
    WorkOnRelatedTables(NewFile(3));
}

}  // namespace
}  // namespace jet::test
