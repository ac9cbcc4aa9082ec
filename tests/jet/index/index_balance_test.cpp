// How full index pages are: after keys that ascend, after random ones, and after most are gone.
#include "jet/index/index_shape.h"
#include "jet/tables/storage_checks.h"
#include "jet/tables/table_fixture.h"
#include "support/check_database.h"

#include <algorithm>
#include <numeric>
#include <random>

namespace jet::test {
namespace {

constexpr std::size_t kById = 0;
constexpr std::size_t kByName = 1;

// In memory; parameter: the version of the format.
class IndexBalanceTest : public testing::TestWithParam<int> {
protected:
    void SetUp() override {
        const TemporaryFolder folder;
        const auto path = folder.path() / "new.mdb";
        ASSERT_TRUE(
            CreateDatabaseFile(*platform::MakeFileSystem(), path, 45000.5, GetParam()).ok());
        Open(OpenCopy(path));
    }
    void TearDown() override {
        if (database_ == nullptr) return;
        EXPECT_EQ(CheckStorage(database_->pages()).faults, std::vector<std::string>());
        EXPECT_TRUE(test_support::PagesAreSound(database_->pages(), test_support::kOwnFile));
    }

    void Open(base::Result<std::unique_ptr<Database>> opened) {
        ASSERT_TRUE(opened.ok()) << opened.status().message();
        database_ = std::move(opened).value();
        TableDesign design;
        design.name = u"Keys";
        design.columns = {Column(u"ID", ColumnType::kLong),
                          Column(u"Name", ColumnType::kText, 200)};
        design.indexes = {Index(u"PrimaryKey", {{0, true}}), Index(u"Name", {{1, true}})};
        design.indexes[0].primary = true;
        ASSERT_TRUE(database_->Begin().ok());
        const base::Status created = database_->CreateTable(design);
        ASSERT_TRUE(created.ok()) << created.message();
        ASSERT_TRUE(database_->Commit().ok());
        table_ = database_->FindTable(u"Keys").value();
    }

    std::u16string RandomName(std::size_t longest) {
        std::u16string name;
        for (std::size_t i = random_() % longest + 1; i > 0; --i)
            name += static_cast<char16_t>(u'a' + random_() % 26);
        return name;
    }

    void Insert(std::int32_t id, std::u16string name) {
        std::vector<Value> values{Value::Long(id), Value::Text(std::move(name))};
        const auto row = table_->Insert(values);
        ASSERT_TRUE(row.ok()) << row.status().message();
        rows_.push_back(row.value());
    }
    void Delete(RowId row) {
        const base::Status deleted = table_->Delete(row);
        ASSERT_TRUE(deleted.ok()) << deleted.message();
    }
    // In transactions of many steps.
    template <typename Step>
    void Repeat(std::size_t count, Step step) {
        for (std::size_t i = 0; i < count && !HasFailure(); ++i) {
            if (i % 500 == 0) {
                ASSERT_TRUE(database_->Begin().ok());
            }
            step(i);
            if (i % 500 == 499 || i + 1 == count) {
                ASSERT_TRUE(database_->Commit().ok());
            }
        }
    }
    void InsertShuffled(std::size_t count, std::size_t longest_name) {
        std::vector<std::int32_t> ids(count);
        std::iota(ids.begin(), ids.end(), 1);
        std::ranges::shuffle(ids, random_);
        Repeat(count, [&](std::size_t i) { Insert(ids[i], RandomName(longest_name)); });
    }
    IndexShape Shape(std::size_t index) { return ShapeOf(*database_, u"Keys", index); }
    void Report(const char* what, const IndexShape& shape) {
        std::printf("%s: %zu entries, %zu leaves (ideal %zu, factor %.2f), %zu nodes\n", what,
                    shape.entries, shape.leaves, shape.ideal_leaves, shape.factor(), shape.nodes);
    }

    std::unique_ptr<Database> database_;
    Table* table_ = nullptr;
    std::vector<RowId> rows_;
    std::mt19937 random_{20261121};
};

TEST_P(IndexBalanceTest, KeysThatAscendFillTheirPages) {
    Repeat(20000, [&](std::size_t i) { Insert(static_cast<std::int32_t>(i + 1), u"same"); });
    for (const std::size_t index : {kById, kByName}) {
        const IndexShape shape = Shape(index);
        Report("ascending", shape);
        EXPECT_EQ(shape.entries, 20000U);
        EXPECT_LE(shape.factor(), 1.05);
    }
}

TEST_P(IndexBalanceTest, RandomKeysLeavePagesTwoThirdsFull) {
    InsertShuffled(20000, 12);
    for (const std::size_t index : {kById, kByName}) {
        const IndexShape shape = Shape(index);
        Report("random", shape);
        EXPECT_LE(shape.factor(), 1.7);
        EXPECT_EQ(shape.sparse, 0U);
    }
}

TEST_P(IndexBalanceTest, DeletingMostKeysGivesPagesBack) {
    InsertShuffled(50000, 12);
    const IndexShape full[] = {Shape(kById), Shape(kByName)};
    std::ranges::shuffle(rows_, random_);
    Repeat(47500, [&](std::size_t i) { Delete(rows_[i]); });
    for (const std::size_t index : {kById, kByName}) {
        const IndexShape shape = Shape(index);
        Report("before", full[index]);
        Report("after 95 % are gone", shape);
        EXPECT_EQ(shape.entries, 2500U);
        EXPECT_EQ(shape.sparse, 0U);
        EXPECT_LE(shape.factor(), 2.5);
        EXPECT_LE(shape.leaves * 8, full[index].leaves);
        EXPECT_LE(shape.nodes * 4, full[index].nodes + 8);
    }
    Repeat(2500, [&](std::size_t i) { Delete(rows_[47500 + i]); });
    for (const std::size_t index : {kById, kByName}) {
        EXPECT_EQ(Shape(index).leaves, 1U);
        EXPECT_EQ(Shape(index).nodes, 0U);
    }
}

TEST_P(IndexBalanceTest, DeletingFromOneEndGivesPagesBack) {
    for (const bool from_the_front : {true, false}) {
        rows_.clear();
        Repeat(8000,
               [&](std::size_t i) { Insert(static_cast<std::int32_t>(i + 1), RandomName(12)); });
        if (!from_the_front) std::ranges::reverse(rows_);
        Repeat(7000, [&](std::size_t i) { Delete(rows_[i]); });
        const IndexShape shape = Shape(kById);
        Report("from one end", shape);
        EXPECT_LE(shape.leaves, shape.ideal_leaves + 2);
        Repeat(1000, [&](std::size_t i) { Delete(rows_[7000 + i]); });
    }
}

TEST_P(IndexBalanceTest, LongLifeKeepsTheTreeNearItsIdealSize) {
    InsertShuffled(5000, 30);
    std::int32_t next = 5001;
    double worst = 0;
    for (int round = 0; round < 8; ++round) {
        Repeat(4000, [&](std::size_t) {
            const std::size_t at = random_() % rows_.size();
            Delete(rows_[at]);
            rows_[at] = rows_.back();
            rows_.pop_back();
            Insert(next++, RandomName(30));
        });
        for (const std::size_t index : {kById, kByName}) {
            const IndexShape shape = Shape(index);
            worst = std::max(worst, shape.factor());
            EXPECT_EQ(shape.sparse, 0U);
        }
    }
    Report("long life, ids", Shape(kById));
    Report("long life, names", Shape(kByName));
    EXPECT_LE(worst, 2.0);
}

// Long and short keys side by side: halves of pages are uneven, and keys in nodes change length.
TEST_P(IndexBalanceTest, KeysOfAllLengthsStayInOrder) {
    std::vector<RowId> kept;
    for (int round = 0; round < 4; ++round) {
        rows_.clear();
        Repeat(4000, [&](std::size_t i) {
            Insert(round * 4000 + static_cast<std::int32_t>(i), RandomName(i % 3 == 0 ? 200 : 6));
        });
        std::ranges::shuffle(rows_, random_);
        Repeat(3800, [&](std::size_t i) { Delete(rows_[i]); });
        kept.insert(kept.end(), rows_.begin() + 3800, rows_.end());
        EXPECT_EQ(CheckStorage(database_->pages()).faults, std::vector<std::string>());
        const IndexShape shape = Shape(kByName);
        EXPECT_EQ(shape.entries, kept.size());
        EXPECT_LE(shape.factor(), 2.5);
    }
    Report("all lengths", Shape(kByName));
    Repeat(kept.size(), [&](std::size_t i) { Delete(kept[i]); });
    EXPECT_EQ(Shape(kByName).leaves, 1U);
}

INSTANTIATE_TEST_SUITE_P(Versions, IndexBalanceTest, testing::Values(4, 3),
                         [](const auto& version) {
                             return version.param == 4 ? std::string("NewFile")
                                                       : std::string("OlderFile");
                         });

}  // namespace
}  // namespace jet::test
