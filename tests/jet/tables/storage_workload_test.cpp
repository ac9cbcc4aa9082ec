// Ten thousand random operations on copies of every whole file that can be written, on new files,
// and on files of the test's own with all kinds of relations, against a model in memory.
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

void WorkOn(std::vector<std::byte> bytes, const std::string& name) {
    Workload workload(std::move(bytes), name);
    workload.Run(kOperations);
    if (testing::Test::HasFailure()) return;
    EXPECT_THAT(workload.left_out(), testing::IsEmpty());
    ExpectABitOfEverything(workload);
    if (workload.has_relations()) {
        EXPECT_GT(workload.refused[3200], 20);
        EXPECT_GT(workload.refused[3201], 20);
        EXPECT_GT(workload.passed_on, 20);
    }
    CompareWithExports(workload);
}

class StorageWorkloadTest : public testing::TestWithParam<std::filesystem::path> {};

TEST_P(StorageWorkloadTest, TenThousandOperationsComeToWhatTheModelHolds) {
    std::vector<std::byte> bytes = ReadWholeFile(GetParam());
    // Files without a table get one.
    if (GetParam().stem().string().ends_with("fresh"))
        bytes = WithTables(std::move(bytes), CreateGames);
    WorkOn(std::move(bytes), GetParam().filename().string());
}

INSTANTIATE_TEST_SUITE_P(Files, StorageWorkloadTest, testing::ValuesIn(DatabasesWithoutPassword()),
                         NameOfFile);

class NewFileWorkloadTest : public testing::TestWithParam<int> {};

TEST_P(NewFileWorkloadTest, TenThousandOperationsComeToWhatTheModelHolds) {
    WorkOn(WithTables(NewFile(GetParam()), CreateGames), "new.mdb");
}

INSTANTIATE_TEST_SUITE_P(Versions, NewFileWorkloadTest, testing::Values(4, 3),
                         [](const auto& version) { return "Jet" + std::to_string(version.param); });

TEST(StorageWorkloadSamplesTest, NoFileButThoseWithAPasswordIsLeftOut) {
    EXPECT_EQ(DatabasesWithoutPassword().size(), SampleFolder() ? 4U + 11U : 4U);
    EXPECT_EQ(WholeDatabases().size() - DatabasesWithoutPassword().size(),
              SampleFolder() ? 2U : 1U);
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
