// Thousands of random changes on copies of real files, against a plain model in memory.
#include "base/unicode.h"
#include "jet/page_header.h"
#include "jet/storage_checks.h"
#include "jet/storage_support.h"
#include "support/check_database.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <numeric>
#include <random>

namespace jet::test {
namespace {

constexpr int kOperations = 10000;

using Model = std::map<RowId, std::vector<Value>>;

class Workload {
public:
    Workload(const std::filesystem::path& path, unsigned seed) : path_(path), random_(seed) {
        std::vector<std::byte> bytes = ReadWholeFile(path);
        Open(bytes);
    }

    void Run(int operations) {
        ChooseTables();
        if (tables_.empty()) return;
        for (const std::u16string& name : tables_)
            models_[name] = ReadAll(name);
        for (int i = 0; i < operations && !testing::Test::HasFailure(); ++i) {
            Step();
            if (i % 2500 == 2499) Compare();
        }
        Compare();
        Reopen();
        Compare();
    }

    std::size_t changes() const { return changes_; }
    PageStore& pages() { return database_->pages(); }
    const std::vector<std::u16string>& tables() const { return tables_; }
    Table& TableOf(const std::u16string& name) { return *database_->FindTable(name).value(); }

private:
    void Open(std::vector<std::byte> bytes) {
        const bool jet3 = bytes[0x14] == std::byte{0};
        auto opened =
            OpenDatabase(MakeMemoryPageStore(jet3 ? 2048 : 4096, std::move(bytes)), path_.string());
        ASSERT_TRUE(opened.ok()) << opened.status().message();
        database_ = std::move(opened).value();
    }

    void Reopen() {
        const std::vector<std::byte> bytes = AllBytes(database_->pages());
        database_.reset();
        Open(bytes);
    }

    // Tables in relations change each other's rows; they have a test of their own.
    void ChooseTables() {
        const auto names = database_->TableNames();
        ASSERT_TRUE(names.ok());
        for (const std::u16string& name : names.value()) {
            const auto table = database_->FindTable(name);
            ASSERT_TRUE(table.ok()) << table.status().message();
            if (table.value()->read_only_reason()) continue;
            const bool related =
                std::ranges::any_of(table.value()->design().indexes, [](const IndexDesign& index) {
                    return index.name.starts_with(u".r") || index.name == u"Table2Table1";
                });
            if (!related) tables_.push_back(name);
        }
    }

    std::size_t Pick(std::size_t count) {
        return std::uniform_int_distribution<std::size_t>(0, count - 1)(random_);
    }

    std::u16string RandomText(std::size_t longest) {
        static const std::u16string kLetters =
            u"abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ 0123456789-'.,éüßÅøñ";
        static const std::u16string kWide = u"αβγДЖЯ漢字";
        const std::size_t length =
            Pick(std::min<std::size_t>(longest, Pick(4) == 0 ? longest : 12) + 1);
        const bool wide = database_->jet_version() == 4 && Pick(8) == 0;
        std::u16string text;
        for (std::size_t i = 0; i < length; ++i) {
            const std::u16string& letters = wide && Pick(3) == 0 ? kWide : kLetters;
            text += letters[Pick(letters.size())];
        }
        return text;
    }

    Value RandomValue(const ColumnDesign& column) {
        if (!column.required && column.type != ColumnType::kBoolean && Pick(6) == 0) return {};
        const auto number = static_cast<std::int32_t>(random_());
        switch (column.type) {
        case ColumnType::kBoolean:
            return Value::Boolean(Pick(2) == 0);
        case ColumnType::kByte:
            return Value::Byte(static_cast<std::uint8_t>(number));
        case ColumnType::kShort:
            return Value::Short(static_cast<std::int16_t>(number));
        case ColumnType::kLong:
            return Value::Long(Pick(2) == 0 ? number : number % 1000);
        case ColumnType::kMoney:
            return Value::Currency(Money{std::int64_t{number} * 7919});
        case ColumnType::kSingle:
            return Value::Single(static_cast<float>(number) / 8);
        case ColumnType::kDouble:
            return Value::Double(number / 16.0);
        case ColumnType::kDate:
            return Value::DateTime(number % 50000 + 0.25);
        case ColumnType::kText:
            return Value::Text(RandomText(column.size));
        case ColumnType::kMemo: {
            const std::size_t longest = Pick(20) == 0 ? 20000 : Pick(4) == 0 ? 3000 : 60;
            return Value::Text(RandomText(longest));
        }
        case ColumnType::kGuid: {
            Guid guid;
            for (std::byte& byte : guid.bytes)
                byte = static_cast<std::byte>(random_());
            return Value::OfGuid(guid);
        }
        case ColumnType::kNumeric: {
            Numeric numeric;
            numeric.negative = Pick(2) == 0;
            numeric.scale = column.scale;
            numeric.magnitude[3] = static_cast<std::uint32_t>(Pick(1000));
            return Value::Decimal(numeric);
        }
        default: {
            const std::size_t longest = column.type == ColumnType::kOle ? 6000 : column.size;
            Bytes bytes(Pick(longest + 1));
            for (std::byte& byte : bytes)
                byte = static_cast<std::byte>(random_());
            return Value::Binary(std::move(bytes));
        }
        }
    }

    // A refused change must leave nothing behind; these are the rules that may refuse one.
    void ExpectRule(const base::Status& status) {
        const auto number = status.number();
        EXPECT_TRUE(number == 3022 || number == 3058 || number == 3314 || number == 3315 ||
                    number == 3047 || number == 3163)
            << number << " " << status.message();
    }

    void Step() {
        const std::u16string& name = tables_[Pick(tables_.size())];
        Table& table = TableOf(name);
        Model& model = models_[name];
        const std::size_t kind = Pick(20);
        ASSERT_TRUE(database_->Begin().ok());
        base::Status status;
        if (kind < 8 || model.empty()) {
            status = Insert(table, model);
        } else {
            auto row = model.lower_bound(
                {static_cast<PageNumber>(Pick(database_->pages().page_count())), 0});
            if (row == model.end()) row = model.begin();
            std::advance(row, Pick(std::min<std::size_t>(
                                  8, static_cast<std::size_t>(std::distance(row, model.end())))));
            status =
                kind < 14 ? Update(table, model, row->first) : Delete(table, model, row->first);
        }
        if (!status.ok()) {
            ExpectRule(status);
            database_->Rollback();
            return;
        }
        ++changes_;
        const base::Status committed = database_->Commit();
        ASSERT_TRUE(committed.ok()) << committed.message();
    }

    base::Status Insert(Table& table, Model& model) {
        std::vector<Value> values;
        for (const ColumnDesign& column : table.design().columns)
            values.push_back(column.autonumber ? Value() : RandomValue(column));
        const auto row = table.Insert(values);
        if (!row.ok()) return row.status();
        EXPECT_TRUE(model.try_emplace(row.value(), values).second) << "a slot was given out twice";
        return {};
    }

    base::Status Update(Table& table, Model& model, RowId row) {
        std::vector<ColumnChange> changes;
        for (std::size_t c = 0; c < table.design().columns.size(); ++c)
            if (!table.design().columns[c].autonumber && Pick(3) == 0)
                changes.push_back({c, RandomValue(table.design().columns[c])});
        RETURN_IF_ERROR(table.Update(row, changes));
        for (const ColumnChange& change : changes)
            model[row][change.column] = change.value;
        return {};
    }

    base::Status Delete(Table& table, Model& model, RowId row) {
        RETURN_IF_ERROR(table.Delete(row));
        model.erase(row);
        return {};
    }

    Model ReadAll(const std::u16string& name) {
        Model rows;
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
            EXPECT_TRUE(ReadAll(name) == models_[name]) << base::ToUtf8(name);
        const StorageFaults found = CheckStorage(database_->pages());
        for (const std::string& fault : found.faults)
            if (fault.find("wrong key at page 55 slot 7") == std::string::npos)
                ADD_FAILURE() << fault;
        EXPECT_TRUE(test_support::PagesAreSound(database_->pages()));
    }

    std::filesystem::path path_;
    std::mt19937 random_;
    std::unique_ptr<Database> database_;
    std::vector<std::u16string> tables_;
    std::map<std::u16string, Model> models_;
    std::size_t changes_ = 0;
};

class StorageWorkloadTest : public testing::TestWithParam<std::string> {};

TEST_P(StorageWorkloadTest, TenThousandChangesLeaveWhatTheModelHolds) {
    const auto samples = SampleFolder();
    if (!samples) GTEST_SKIP() << "no sample files on this machine";
    Workload workload(*samples / GetParam(), 20261120);
    workload.Run(kOperations);
    EXPECT_GT(workload.changes(), 1000U);
    if (!HasProgram("mdb-export") || HasFailure()) return;
    const TemporaryFolder folder;
    const auto path = folder.path() / "worked.mdb";
    WriteWholeFile(path, AllBytes(workload.pages()));
    for (const std::u16string& table : workload.tables())
        CompareWithExport(path, workload.TableOf(table));
}

INSTANTIATE_TEST_SUITE_P(Samples, StorageWorkloadTest,
                         testing::Values("catalogue/old-base-250.mdb",
                                         "catalogue/old-full-1000.mdb",
                                         "mdb/a2000-composite-index.mdb",
                                         "mdb/a2000-wide-table.mdb", "mdb/a2003-unicode.mdb",
                                         "mdb/a97-tables.mdb", "mdb/a97-collation.mdb"),
                         [](const auto& sample) {
                             std::string name = sample.param.substr(sample.param.find('/') + 1);
                             std::erase_if(name, [](char c) { return std::isalnum(c) == 0; });
                             return name;
                         });

}  // namespace
}  // namespace jet::test
