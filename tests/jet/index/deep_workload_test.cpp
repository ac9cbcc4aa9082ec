// Ten thousand random operations on trees of three and four levels, of which others keep no level
// bytes, and with a second hand that changes the file between them.
#include "jet/index/index_shape.h"
#include "jet/pages/format.h"
#include "jet/tables/storage_support.h"
#include "jet/tables/table_fixture.h"
#include "jet/tables/workload.h"
#include "support/plain_writer.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <map>

namespace jet::test {
namespace {

using test_support::PlainRow;
using test_support::PlainWriter;

constexpr int kDeepOperations = 10000;
constexpr const char16_t* kTable = u"Deep";

void CreateDeepTable(Database& database) {
    TableDesign design{
        kTable,
        {Required(Column(u"ID", ColumnType::kLong)),
         Required(Column(u"Name", ColumnType::kText, 255)),
         Required(Column(u"Note", ColumnType::kText, 250))},
        {PrimaryKey({{0, true}}), Index(u"Name", {{1, true}}), Index(u"Downwards", {{1, false}})},
        {},
        {}};
    for (ColumnDesign& column : design.columns)
        column.allow_zero_length = true;
    ASSERT_TRUE(database.Begin().ok());
    const base::Status created = database.CreateTable(design);
    ASSERT_TRUE(created.ok()) << created.message();
    ASSERT_TRUE(database.Commit().ok());
}

// In memory; parameter: the version of the format.
class DeepWorkloadTest : public testing::TestWithParam<int> {
protected:
    void SetUp() override {
        workload_ = std::make_unique<Workload>(WithTables(NewFile(GetParam()), CreateDeepTable),
                                               "deep.mdb", std::vector<std::u16string>{kTable});
        workload_->MakeTextsLong();
        // Fewer than fill a tree of five levels, and more than one of two levels holds.
        if (GetParam() == 4)
            workload_->KeepRowsWithin(35, 100);
        else
            workload_->KeepRowsWithin(35, 130);
    }

    // Runs with `interlude` between.
    void Run(const Workload::Interlude& interlude) {
        workload_->Interrupt(150, [&](std::vector<std::byte> bytes) {
            NoteLevels(bytes);
            return interlude(std::move(bytes));
        });
        workload_->Run(kDeepOperations);
        if (HasFailure()) return;
        ExpectABitOfEverything(*workload_);
        for (const std::size_t levels : {3, 4})
            EXPECT_GE(levels_[levels], 10) << levels;
        EXPECT_EQ(levels_.begin()->first, 3U) << "a tree of fewer levels";
        EXPECT_GT(workload_->refused[3022], 0);
        EXPECT_GT(workload_->refused[3314], 0);
        CompareWithExports(*workload_, left_behind_);
    }

    // Of the two indexes of names.
    void NoteLevels(const std::vector<std::byte>& bytes) {
        const auto database =
            OpenDatabase(MakeMemoryPageStore(FormatOf(GetParam()).page_size, bytes), "");
        ASSERT_TRUE(database.ok()) << database.status().message();
        for (const std::size_t index : {1, 2})
            ++levels_[ShapeOf(*database.value(), kTable, index).levels];
    }

    static PlainRow Plain(const Workload::Row& row) {
        return {row[0].as<std::int32_t>(), row[1].as<std::u16string>(),
                row[2].as<std::u16string>()};
    }

    std::vector<std::byte> ChangeWithSecondHand(std::vector<std::byte> bytes) {
        constexpr int kChanges = 15;
        WorkloadModel& model = workload_->model();
        WorkloadValues& values = workload_->values();
        const auto& columns = model.design(kTable).columns;
        PlainWriter writer(std::move(bytes), kTable);
        writer.ExpectExactNodes();
        for (int i = 0; i < kChanges; ++i) {
            const WorkloadModel::Rows& rows = model.rows(kTable);
            const std::size_t kind = values.Pick(3);
            auto at = rows.begin();
            std::advance(at, values.Pick(rows.size()));
            const WorkloadModel::Place place{kTable, at->first};
            const WorkloadModel::Row before = at->second;
            WorkloadModel::Row row = before;
            if (kind == 0) {
                row = {Value::Long(UnusedId()), values.Of(columns[1]), values.Of(columns[2])};
                model.Insert({kTable, writer.Insert(Plain(row))}, row);
                continue;
            }
            WorkloadModel::Plan plan;
            if (kind == 1) {
                const std::size_t column = 1 + values.Pick(2);
                // Notes go to and fro, so that rows are moved.
                const std::size_t length = values.OneIn(2) ? 0 : columns[2].size;
                row[column] =
                    column == 1 ? values.Of(columns[1]) : Value::Text(std::u16string(length, u'n'));
                writer.Update(place.row, Plain(before), Plain(row));
                plan.updates[place] = row;
            } else {
                writer.Delete(place.row, Plain(before), true);
                plan.deletes.insert(place);
            }
            model.Apply(plan);
        }
        writer.ExpectExactNodes();
        left_behind_ += static_cast<std::size_t>(writer.orphans());
        if (values.OneIn(3)) writer.MoveFreeMapOn();
        return writer.TakeFile();
    }

    std::int32_t UnusedId() {
        std::int32_t id = 1000000;
        const WorkloadModel::Rows& rows = workload_->model().rows(kTable);
        while (std::ranges::any_of(
            rows, [&](const auto& row) { return row.second[0] == Value::Long(id); }))
            ++id;
        return id;
    }

    std::unique_ptr<Workload> workload_;
    std::map<std::size_t, int> levels_;  // how often a tree of so many was interrupted
    std::size_t left_behind_ = 0;
};

TEST_P(DeepWorkloadTest, LevelBytesOfOthersChangeNothing) {
    const Format& format = FormatOf(GetParam());
    int times = 0;
    Run([&](std::vector<std::byte> bytes) {
        ++times;
        for (std::size_t at = 0; at < bytes.size(); at += format.page_size) {
            const std::size_t page = at / format.page_size;
            if (bytes[at] != std::byte{3} || bytes[at + 1] != std::byte{1}) continue;
            // None; none in every other node; nonsense.
            if (times % 3 == 0 || (times % 3 == 1 && page % 2 == 0))
                bytes[at + format.index_level_offset] = std::byte{0};
            else if (times % 3 == 2)
                bytes[at + format.index_level_offset] = static_cast<std::byte>(page * 37);
        }
        return bytes;
    });
    EXPECT_GT(times, 30);
}

TEST_P(DeepWorkloadTest, ASecondHandTakesTurns) {
    Run([&](std::vector<std::byte> bytes) { return ChangeWithSecondHand(std::move(bytes)); });
    EXPECT_GT(left_behind_, 4U);
}

INSTANTIATE_TEST_SUITE_P(Versions, DeepWorkloadTest, testing::Values(4, 3),
                         [](const auto& version) {
                             return version.param == 4 ? std::string("NewFile")
                                                       : std::string("OlderFile");
                         });

}  // namespace
}  // namespace jet::test
