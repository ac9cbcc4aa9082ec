// Changes of many rows at once against the same changes one row after the other: what is stored,
// every index, and what a failure or a dead process leaves.
#include "jet/index/index_shape.h"
#include "jet/tables/storage_checks.h"
#include "jet/tables/table_fixture.h"
#include "support/check_database.h"
#include "support/faulty_file_system.h"

#include <algorithm>
#include <functional>
#include <random>

namespace jet::test {
namespace {

using test_support::FaultKind;
using test_support::FaultyFileSystem;

constexpr std::size_t kById = 0;
constexpr std::size_t kByNote = 2;
constexpr std::size_t kId = 0, kName = 1, kNote = 2, kScore = 3, kWhen = 4, kMemo = 5, kFlag = 6;
constexpr std::size_t kColumns = 7;

TableDesign BulkDesign() {
    TableDesign design;
    design.name = u"Bulk";
    design.columns = {
        Column(u"ID", ColumnType::kLong),        Column(u"Name", ColumnType::kText, 60),
        Column(u"Note", ColumnType::kText, 250), Column(u"Score", ColumnType::kLong),
        Column(u"When", ColumnType::kDate),      Column(u"Memo", ColumnType::kMemo),
        Column(u"Flag", ColumnType::kBoolean)};
    design.columns[kName].compressed = true;
    design.indexes = {Index(u"PrimaryKey", {{kId, true}}), Index(u"ByName", {{kName, true}}),
                      Index(u"ByNote", {{kNote, false}}),
                      Index(u"ByScore", {{kScore, false}, {kName, true}}),
                      Index(u"ByWhen", {{kWhen, true}})};
    design.indexes[kById].primary = true;
    design.indexes[4].ignore_nulls = true;
    return design;
}

std::vector<std::byte> EmptyFile(int version) {
    const TemporaryFolder folder;
    const auto path = folder.path() / "new.mdb";
    EXPECT_TRUE(CreateDatabaseFile(*platform::MakeFileSystem(), path, 45000.5, version).ok());
    return ReadWholeFile(path);
}

struct StoredValues {
    RowId row;
    std::vector<Value> values;
    bool operator==(const StoredValues&) const = default;
};

std::vector<StoredValues> Contents(Table& table) {
    std::vector<StoredValues> rows;
    const auto cursor = table.Scan().value();
    const std::size_t columns[kColumns] = {0, 1, 2, 3, 4, 5, 6};
    for (auto row = cursor->Next(); row.ok() && row.value(); row = cursor->Next()) {
        rows.push_back({*row.value(), std::vector<Value>(kColumns)});
        EXPECT_TRUE(cursor->Read(columns, rows.back().values).ok());
    }
    return rows;
}

std::vector<RowId> InOrder(Table& table, std::size_t index) {
    std::vector<RowId> rows;
    const auto cursor = table.Range(index, {}, {}, false).value();
    for (auto row = cursor->Next(); row.ok() && row.value(); row = cursor->Next())
        rows.push_back(*row.value());
    return rows;
}

// Random values and choices.
class Chance {
public:
    std::size_t Pick(std::size_t count) { return random_() % count; }
    bool OneIn(std::size_t count) { return Pick(count) == 0; }

    std::u16string Letters(std::size_t count) {
        std::u16string text;
        for (; count > 0; --count)
            text += static_cast<char16_t>(u'a' + Pick(26));
        return text;
    }
    Value Of(std::size_t column) {
        if (OneIn(6)) return column == kFlag ? Value::Boolean(true) : Value::Null();
        switch (column) {
        case kName:
            return Value::Text(Letters(1 + Pick(3)));
        case kNote:
            return Value::Text(Letters(8) + std::u16string(200 + Pick(40), u'-'));
        case kScore:
            return Value::Long(static_cast<std::int32_t>(Pick(40)) - 20);
        case kWhen:
            return Value::DateTime(40000.0 + static_cast<double>(Pick(50)));
        case kMemo:
            return Value::Text(std::u16string(OneIn(4) ? 6000 : OneIn(2) ? 700 : 10, u'm'));
        default:
            return Value::Boolean(false);
        }
    }
    std::mt19937& random() { return random_; }

private:
    std::mt19937 random_{20261121};
};

// Parameter: the version of the format.
class BulkChangeTest : public testing::TestWithParam<int> {
protected:
    void SetUp() override {
        Open(EmptyFile(GetParam()));
        Do([&] { return database_->CreateTable(BulkDesign()); });
    }
    void TearDown() override { ExpectSound(); }

    static std::unique_ptr<Database> OpenBytes(std::vector<std::byte> bytes) {
        auto opened =
            OpenDatabase(MakeMemoryPageStore(GetParam() == 4 ? 4096 : 2048, std::move(bytes)), "");
        EXPECT_TRUE(opened.ok()) << opened.status().message();
        return std::move(opened).value();
    }
    void Open(std::vector<std::byte> bytes) { database_ = OpenBytes(std::move(bytes)); }
    static Table& TableIn(Database& database) { return *database.FindTable(u"Bulk").value(); }
    Table& Bulk() { return TableIn(*database_); }

    static void DoIn(Database& database, const std::function<base::Status()>& change) {
        ASSERT_TRUE(database.Begin().ok());
        const base::Status done = change();
        ASSERT_TRUE(done.ok()) << done.message();
        ASSERT_TRUE(database.Commit().ok());
    }
    void Do(const std::function<base::Status()>& change) { DoIn(*database_, change); }

    void FillUpTo(std::size_t rows) {
        Do([&]() -> base::Status {
            for (std::size_t count = Contents(Bulk()).size(); count < rows; ++count) {
                std::vector<Value> values(kColumns);
                for (std::size_t column = 1; column < kColumns; ++column)
                    values[column] = chance_.Of(column);
                values[kId] = Value::Long(next_id_++ * 7919 % 1000003);
                RETURN_IF_ERROR(Bulk().Insert(values).status());
            }
            return {};
        });
    }
    // Some rows get longer, so that they move.
    void MoveSome() {
        Do([&]() -> base::Status {
            for (const StoredValues& stored : Contents(Bulk()))
                if (chance_.OneIn(5))
                    RETURN_IF_ERROR(Bulk().Update(
                        stored.row,
                        std::vector{ColumnChange{kNote, Value::Text(chance_.Letters(240))}}));
            return {};
        });
    }
    // `percent` of the rows: at random, or those next to each other in an index or on the pages.
    std::vector<RowId> Choose(std::size_t percent) {
        std::vector<RowId> rows =
            chance_.OneIn(2) ? InOrder(Bulk(), chance_.Pick(4)) : InOrder(Bulk(), kById);
        const std::size_t count = (rows.size() * percent + 99) / 100;
        switch (chance_.Pick(3)) {
        case 0:
            std::ranges::shuffle(rows, chance_.random());
            break;
        case 1:
            std::ranges::sort(rows);
            break;
        default:
            break;
        }
        const std::size_t skipped = rows.size() == count ? 0 : chance_.Pick(rows.size() - count);
        return {rows.begin() + static_cast<std::ptrdiff_t>(skipped),
                rows.begin() + static_cast<std::ptrdiff_t>(skipped + count)};
    }

    // `at_once` here, `singly` in a copy of the file; both leave the same.
    void Compare(const std::function<base::Status(Table&)>& at_once,
                 const std::function<base::Status(Table&)>& singly) {
        const std::unique_ptr<Database> twin = OpenBytes(AllBytes(database_->pages()));
        Do([&] { return at_once(Bulk()); });
        DoIn(*twin, [&] { return singly(TableIn(*twin)); });
        if (HasFailure()) return;
        const auto here = Contents(Bulk());
        const auto there = Contents(TableIn(*twin));
        ASSERT_EQ(here.size(), there.size());
        EXPECT_TRUE(here == there);
        EXPECT_EQ(Bulk().row_count(), here.size());
        for (std::size_t index = 0; index < BulkDesign().indexes.size(); ++index)
            EXPECT_EQ(InOrder(Bulk(), index), InOrder(TableIn(*twin), index)) << index;
        ExpectSound();
    }

    void ExpectSound() {
        EXPECT_EQ(CheckStorage(database_->pages()).faults, std::vector<std::string>());
        EXPECT_TRUE(test_support::PagesAreSound(database_->pages(), test_support::kOwnFile));
    }
    std::size_t Levels(std::size_t index) { return ShapeOf(*database_, u"Bulk", index).levels; }

    void CompareWithOthers() {
        const TemporaryFolder folder;
        WriteWholeFile(folder.path() / "bulk.mdb", AllBytes(database_->pages()));
        CompareWithExport(folder.path() / "bulk.mdb", Bulk());
    }

    std::unique_ptr<Database> database_;
    Chance chance_;
    std::int32_t next_id_ = 1;
};

base::Status DeleteSingly(Table& table, std::span<const RowId> rows) {
    for (const RowId row : rows)
        RETURN_IF_ERROR(table.Delete(row));
    return {};
}

TEST_P(BulkChangeTest, DeletingManyRowsLeavesWhatSingleDeletesLeave) {
    for (const std::size_t percent : {2, 10, 50, 80, 50, 95, 99, 30, 100, 60}) {
        SCOPED_TRACE(std::to_string(percent) + " %");
        FillUpTo(1500);
        MoveSome();
        ASSERT_GE(Levels(kByNote), 3U);
        const std::vector<RowId> rows = Choose(percent);
        Compare([&](Table& table) { return table.Delete(rows); },
                [&](Table& table) { return DeleteSingly(table, rows); });
        if (HasFailure()) return;
    }
    CompareWithOthers();
}

TEST_P(BulkChangeTest, IndexesAreLeftAsFullAsSingleDeletesLeaveThem) {
    FillUpTo(3000);
    for (const std::size_t percent : {50, 60, 70, 80}) {
        const std::vector<RowId> rows = Choose(percent);
        const std::unique_ptr<Database> twin = OpenBytes(AllBytes(database_->pages()));
        Do([&] { return Bulk().Delete(rows); });
        DoIn(*twin, [&] { return DeleteSingly(TableIn(*twin), rows); });
        for (std::size_t index = 0; index < BulkDesign().indexes.size(); ++index) {
            const IndexShape here = ShapeOf(*database_, u"Bulk", index);
            const IndexShape there = ShapeOf(*twin, u"Bulk", index);
            EXPECT_LE(here.leaves, there.leaves + there.leaves / 8 + 1) << index;
            EXPECT_LE(here.sparse, there.sparse + there.leaves / 16 + 1) << index;
        }
    }
}

TEST_P(BulkChangeTest, RowsThatAreGoneArePassedOver) {
    FillUpTo(300);
    std::vector<RowId> rows = Choose(50);
    Do([&] { return Bulk().Delete(rows[3]); });
    rows.push_back(rows[7]);
    const std::size_t before = Contents(Bulk()).size();
    Do([&] { return Bulk().Delete(rows); });
    EXPECT_EQ(Contents(Bulk()).size(), before + 2 - rows.size());
    EXPECT_EQ(Bulk().row_count(), before + 2 - rows.size());
}

// The values that an update is to give a row, found again by what the row held before.
class NewValues {
public:
    NewValues(std::vector<std::size_t> columns, Chance& chance)
        : columns_(std::move(columns)), chance_(chance) {}

    base::Status At(Table& table, std::span<const RowId> rows) {
        std::vector<Value> read(1);
        const std::size_t id = kId;
        const auto make = [&](std::span<Value> values) -> base::Status {
            const std::vector<Value>& made = For(read[0].as<std::int32_t>());
            std::ranges::copy(made, values.begin());
            return {};
        };
        return table.Update(rows, {std::span(&id, 1), read, columns_, make});
    }
    base::Status Singly(Table& table, std::span<const RowId> rows) {
        for (const RowId row : rows) {
            Value id;
            const std::size_t column = kId;
            RETURN_IF_ERROR(table.Read(row, std::span(&column, 1), std::span(&id, 1)));
            const std::vector<Value>& made = For(id.as<std::int32_t>());
            std::vector<ColumnChange> changes;
            for (std::size_t i = 0; i < columns_.size(); ++i)
                changes.push_back({columns_[i], made[i]});
            RETURN_IF_ERROR(table.Update(row, changes));
        }
        return {};
    }

private:
    const std::vector<Value>& For(std::int32_t id) {
        std::vector<Value>& values = made_[id];
        while (values.size() < columns_.size())
            values.push_back(chance_.Of(columns_[values.size()]));
        return values;
    }

    std::vector<std::size_t> columns_;
    Chance& chance_;
    std::map<std::int32_t, std::vector<Value>> made_;
};

TEST_P(BulkChangeTest, UpdatingManyRowsLeavesWhatSingleUpdatesLeave) {
    const std::vector<std::vector<std::size_t>> sets = {
        {kScore}, {kFlag},        {kWhen},         {kName},        {kMemo},         {kNote},
        {kWhen},  {kFlag, kMemo}, {kScore, kWhen}, {kName, kNote}, {kName, kScore}, {kNote, kFlag}};
    for (const std::vector<std::size_t>& columns : sets) {
        for (const std::size_t percent : {1, 40, 100}) {
            SCOPED_TRACE("column " + std::to_string(columns.front()) + " of " +
                         std::to_string(columns.size()) + ", " + std::to_string(percent) + " %");
            FillUpTo(700);
            const std::vector<RowId> rows = Choose(percent);
            NewValues values(columns, chance_);
            Compare([&](Table& table) { return values.At(table, rows); },
                    [&](Table& table) { return values.Singly(table, rows); });
            if (HasFailure()) return;
        }
    }
    CompareWithOthers();
}

TEST_P(BulkChangeTest, ARowThatIsNamedTwiceIsChangedTwice) {
    FillUpTo(100);
    std::vector<RowId> rows = Choose(100);
    rows.insert(rows.end(), rows.begin(), rows.begin() + 50);
    const std::size_t read = kScore;
    std::vector<Value> score(1);
    const auto add_one = [&](std::span<Value> values) -> base::Status {
        const auto* number = score[0].get_if<std::int32_t>();
        values[0] = Value::Long(number == nullptr ? 1 : *number + 1);
        return {};
    };
    const auto before = Contents(Bulk());
    Do([&] {
        return Bulk().Update(rows, {std::span(&read, 1), score, std::span(&read, 1), add_one});
    });
    std::map<RowId, int> times;
    for (const RowId row : rows)
        ++times[row];
    const auto after = Contents(Bulk());
    for (std::size_t i = 0; i < after.size(); ++i) {
        const auto* number = before[i].values[kScore].get_if<std::int32_t>();
        EXPECT_EQ(after[i].values[kScore].as<std::int32_t>(),
                  (number == nullptr ? 0 : *number) + times[after[i].row]);
    }
}

TEST_P(BulkChangeTest, AFailureInTheMiddleChangesNothing) {
    FillUpTo(400);
    const auto before = AllBytes(database_->pages());
    const std::vector<RowId> rows = Choose(100);
    for (const std::size_t column : {kScore, kFlag, kMemo}) {
        std::size_t calls = 0;
        const auto fail_late = [&](std::span<Value> values) -> base::Status {
            values[0] = chance_.Of(column);
            return ++calls < 300 ? base::Status()
                                 : base::Status(base::StatusCode::kInvalidArgument, "enough");
        };
        ASSERT_TRUE(database_->Begin().ok());
        const base::Status done = Bulk().Update(rows, {{}, {}, std::span(&column, 1), fail_late});
        EXPECT_EQ(done.message(), "enough");
        EXPECT_EQ(calls, 300U);
        database_->Rollback();
        EXPECT_TRUE(AllBytes(database_->pages()) == before) << column;
    }
    // And what comes after it finds everything as it was.
    FillUpTo(500);
}

TEST_P(BulkChangeTest, RulesOfColumnsHoldForEachRow) {
    FillUpTo(100);
    const std::vector<RowId> rows = Choose(100);
    const std::size_t id = kId;
    const auto same = [&](std::span<Value> values) -> base::Status {
        values[0] = Value::Long(1234567);
        return {};
    };
    ASSERT_TRUE(database_->Begin().ok());
    const base::Status done = Bulk().Update(rows, {{}, {}, std::span(&id, 1), same});
    EXPECT_EQ(done.number(), 3022) << done.message();
    database_->Rollback();
    const std::size_t name = kName;
    const auto long_name = [&](std::span<Value> values) -> base::Status {
        values[0] = Value::Text(std::u16string(61, u'x'));
        return {};
    };
    ASSERT_TRUE(database_->Begin().ok());
    EXPECT_EQ(Bulk().Update(rows, {{}, {}, std::span(&name, 1), long_name}).number(), 3163);
    database_->Rollback();
}

// ------------------------------------------------------------------- processes that die on the way

// Runs `change` on a file of `bytes`; the process dies at each call that reaches the disk in turn.
// What is found afterwards is the content before or after.
void DieAtEachCall(const std::vector<std::byte>& bytes,
                   const std::function<base::Status(Table&)>& change) {
    constexpr const char* kPath = "folder/bulk.mdb";
    const auto open = [&](FaultyFileSystem& files) {
        PageStoreOptions options;
        options.flush_delay = {};
        auto pages = OpenPageStore(files, kPath, options);
        if (!pages.ok()) return base::Result<std::unique_ptr<Database>>(pages.status());
        return OpenDatabase(std::move(pages).value(), kPath);
    };
    std::vector<std::vector<StoredValues>> states;  // before and after
    bool was_before = false;
    bool was_after = false;
    for (std::uint64_t call = 0;; ++call) {
        SCOPED_TRACE("call " + std::to_string(call));
        FaultyFileSystem files;
        files.Put(kPath, bytes);
        if (call > 0) files.SetPlan({call, FaultKind::kStop, base::StatusCode::kIoError});
        if (auto database = open(files); database.ok()) {
            const auto table = (*database)->FindTable(u"Bulk");
            if (call == 0) states.push_back(Contents(**table));
            if (table.ok() && (*database)->Begin().ok() && change(**table).ok() &&
                (*database)->Commit().ok())
                (*database)->Close().Ignore();
        }
        if (call > 0 && !files.fault_happened()) break;
        for (const bool by_power : {false, true}) {
            const auto left =
                by_power ? files.CutPower(static_cast<std::uint32_t>(call)) : files.Kill();
            auto database = open(*left);
            ASSERT_TRUE(database.ok()) << database.status().message();
            const auto content = Contents(**(*database)->FindTable(u"Bulk"));
            if (call == 0) {
                states.resize(1);
                states.push_back(content);
                ASSERT_FALSE(states[0] == states[1]);
            }
            EXPECT_TRUE(content == states[0] || content == states[1]);
            was_before = was_before || content == states[0];
            was_after = was_after || content == states[1];
            EXPECT_TRUE(test_support::PagesAreSound((*database)->pages(), test_support::kOwnFile));
        }
        if (testing::Test::HasFailure()) return;
    }
    EXPECT_TRUE(was_before && was_after);
}

TEST_P(BulkChangeTest, AProcessThatDiesLeavesBeforeOrAfter) {
    FillUpTo(250);
    const auto bytes = AllBytes(database_->pages());
    const std::vector<RowId> rows = Choose(60);
    DieAtEachCall(bytes, [&](Table& table) { return table.Delete(rows); });
    NewValues values({kScore, kName}, chance_);
    DieAtEachCall(bytes, [&](Table& table) { return values.At(table, rows); });
    NewValues flags({kFlag}, chance_);
    DieAtEachCall(bytes, [&](Table& table) { return flags.At(table, rows); });
}

INSTANTIATE_TEST_SUITE_P(Versions, BulkChangeTest, testing::Values(4, 3), [](const auto& version) {
    return version.param == 4 ? std::string("NewFile") : std::string("OlderFile");
});

}  // namespace
}  // namespace jet::test
