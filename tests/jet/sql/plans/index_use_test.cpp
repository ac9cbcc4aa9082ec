// Whatever index a query is served by, its answer is that of the whole table: random questions over
// columns of every type, asked of two tables with the same rows, one of them with indexes.
#include "jet/connection.h"
#include "jet/sql/functions/sort_key.h"
#include "jet/tables/storage_support.h"
#include "jet/values/conversions.h"
#include "jet/values/guid_text.h"
#include "platform/file_system.h"

#include "base/unicode.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>

namespace jet::test {
namespace {

struct Kind {
    const char* name;  // of the column, too
    ColumnType type;
};

constexpr Kind kKinds[] = {
    {"Truth", ColumnType::kBoolean}, {"Tiny", ColumnType::kByte},   {"Small", ColumnType::kShort},
    {"Whole", ColumnType::kLong},    {"Price", ColumnType::kMoney}, {"Real4", ColumnType::kSingle},
    {"Real8", ColumnType::kDouble},  {"Day", ColumnType::kDate},    {"Word", ColumnType::kText},
    {"Story", ColumnType::kMemo},    {"Mark", ColumnType::kGuid},   {"Exact", ColumnType::kNumeric},
};
constexpr std::size_t kKindCount = std::size(kKinds);

class IndexUse : public testing::Test {
protected:
    // Texts that are close to each other in one way or another.
    std::u16string RandomText() {
        static const char16_t* const kParts[] = {
            u"a",      u"A",      u"b",  u"B",  u"c",      u"th",     u"\u00e1", u"\u00c1",
            u"\u00e4", u"\u00e6", u"ae", u"ss", u"\u00df", u"-",      u"'",      u" ",
            u"1",      u"2",      u"%",  u"_",  u"z",      u"\u00fe", u"*",      u"x"};
        std::u16string text;
        for (int i = Below(4); i >= 0; --i)
            text += kParts[Below(std::size(kParts))];
        return text;
    }

    // Some are longer than an index key.
    std::u16string RandomMemo() {
        std::u16string text = RandomText();
        if (Below(4) == 0) text.insert(0, std::u16string(253, u'a'));
        return text;
    }

    int Below(std::size_t n) { return static_cast<int>(random_() % n); }

    double RandomNumber() {
        static constexpr double kNumbers[] = {
            0,   -0.0,   1,    -1,    2,    3,     -2,    0.5,  -0.5,  2.5, 0.1, -0.1, 100,  255,
            256, 1.0001, 9999, -9999, 0.25, 32767, 40000, 1e-5, 12.34, 7,   -7,  1e9,  -3.75};
        return kNumbers[Below(std::size(kNumbers))];
    }

    double RandomDay() {
        static constexpr double kDays[] = {-2,  -1, -0.75, -1.25, -0.5, 0,    0.25,
                                           0.5, 1,  1.5,   2,     2.5,  40000};
        double day = kDays[Below(std::size(kDays))];
        if (Below(3) == 0) day += 1.0 / 86400;
        if (Below(3) == 0) day += 0.4 / 86400;
        if (Below(8) == 0) day = std::trunc(day) - 0.999999;
        return day;
    }

    Guid RandomGuid() {
        Guid guid;
        for (const std::size_t at : {0, 3, 4, 7, 8, 15})
            guid.bytes[at] = static_cast<std::byte>(Below(3) * 0x70);
        return guid;
    }

    Value RandomValue(ColumnType type) {
        if (type != ColumnType::kBoolean && Below(6) == 0) return Value::Null();
        switch (type) {
        case ColumnType::kMemo:
            return Value::Text(RandomMemo());
        case ColumnType::kText:
            return Value::Text(RandomText());
        case ColumnType::kDate:
            return Value::DateTime(RandomDay());
        case ColumnType::kGuid:
            return Value::OfGuid(RandomGuid());
        case ColumnType::kBoolean:
            return Value::Boolean(Below(2) == 0);
        case ColumnType::kMoney:
            if (Below(6) == 0) return Value::Currency({(std::int64_t{1} << 60) + 100 * Below(6)});
            return Value::Currency({static_cast<std::int64_t>(RandomNumber() * 10000)});
        case ColumnType::kByte:
            return Value::Byte(static_cast<std::uint8_t>(Below(4) * 85));
        case ColumnType::kSingle:
            return Value::Single(static_cast<float>(RandomNumber()));
        default: {
            const double number = RandomNumber();
            if (type == ColumnType::kDouble || type == ColumnType::kNumeric)
                return Value::Double(type == ColumnType::kDouble ? number : number / 8);
            const double most = type == ColumnType::kShort ? 32767 : 2e9;
            const auto whole = static_cast<std::int32_t>(std::clamp(number, -most, most));
            return type == ColumnType::kShort ? Value::Short(static_cast<std::int16_t>(whole))
                                              : Value::Long(whole);
        }
        }
    }

    std::u16string Quoted(const std::u16string& text) {
        std::u16string quoted = u"\"";
        return quoted + text + u"\"";
    }

    static std::u16string NumberLiteral(double number) {
        char buffer[64];
        std::snprintf(buffer, sizeof buffer, "%.10g", number);
        const std::string text = buffer;
        return std::u16string(text.begin(), text.end());
    }

    // A constant that the column may be compared with.
    std::u16string RandomConstant(ColumnType type) {
        if (Below(25) == 0) return u"Null";
        switch (type) {
        case ColumnType::kText:
        case ColumnType::kMemo:
            return Quoted(RandomMemo());
        case ColumnType::kDate: {
            const double day = RandomDay();
            if (Below(3) == 0) return NumberLiteral(day);
            if (Below(4) == 0) return Quoted(ToText(Value::DateTime(std::fabs(day))));
            return u"CDate(" + NumberLiteral(day) + u")";
        }
        case ColumnType::kGuid:
            return Quoted(GuidText(RandomGuid()));
        default:
            if (Below(8) == 0) return Below(2) == 0 ? u"True" : u"False";
            if (Below(8) == 0 && type != ColumnType::kBoolean)
                return Quoted(NumberLiteral(RandomNumber()));
            if (Below(8) == 0) return u"CCur(" + NumberLiteral(RandomNumber()) + u")";
            if (Below(8) == 0) return u"CSng(" + NumberLiteral(RandomNumber()) + u")";
            if (Below(8) == 0) return u"CDate(1.00001)";
            return NumberLiteral(RandomNumber() / (type == ColumnType::kNumeric ? 8 : 1));
        }
    }

    std::u16string RandomTest(const Kind& kind) {
        static const char16_t* const kOperators[] = {u" = ", u" < ", u" <= ", u" > ", u" >= "};
        const std::u16string column = base::ToUtf16(kind.name);
        const auto constant = [&] { return RandomConstant(kind.type); };
        const bool text = kind.type == ColumnType::kText || kind.type == ColumnType::kMemo;
        switch (Below(9)) {
        case 0:
            return column + u" In (" + constant() + u", " + constant() + u", " + constant() + u")";
        case 1:
            return column + u" Between " + constant() + u" And " + constant();
        case 2:
            return u"(" + column + u" = " + constant() + u" Or " + column + u" = " + constant() +
                   u" Or " + column + kOperators[Below(5)] + constant() + u")";
        case 3:
            return column + (Below(2) == 0 ? u" Is Null" : u" Is Not Null");
        case 4:
            if (text) {
                const std::u16string other =
                    Below(2) == 0 ? u" Or " + column + u" = " + constant() : u"";
                return u"(" + column + u" Like " +
                       Quoted(RandomText() + (Below(3) == 0 ? u"" : u"%")) + other + u")";
            }
            if (kind.type == ColumnType::kBoolean) return Below(2) == 0 ? column : u"Not " + column;
            [[fallthrough]];
        case 5:
            return constant() + kOperators[Below(5)] + column;
        default:
            return column + kOperators[Below(5)] + constant();
        }
    }

    std::u16string RandomCondition(std::size_t first, std::size_t second) {
        std::u16string condition = RandomTest(kKinds[first]);
        while (Below(2) == 0)
            condition += (Below(4) == 0 ? u" Or " : u" And ") +
                         RandomTest(kKinds[Below(3) == 0 ? first : second]);
        return condition;
    }

    TableDesign DesignOf(std::u16string name, int jet_version) const {
        TableDesign design;
        design.name = std::move(name);
        ColumnDesign id;
        id.name = u"Id";
        id.type = ColumnType::kLong;
        design.columns.push_back(id);
        for (const Kind& kind : kKinds) {
            ColumnDesign column;
            column.name = base::ToUtf16(kind.name);
            column.type = kind.type;
            if (kind.type == ColumnType::kText) column.size = 60;
            if (kind.type == ColumnType::kNumeric) {
                if (jet_version < 4) column.type = ColumnType::kDouble;
                column.scale = 3;
            }
            design.columns.push_back(column);
        }
        return design;
    }

    void Make(std::unique_ptr<Database> made, int rows) {
        connection_ = std::make_unique<Connection>(std::move(made), Noon);
        Database& database = *connection_->database();
        ASSERT_TRUE(database.Begin().ok());
        const int version = database.jet_version();
        ASSERT_TRUE(database.CreateTable(DesignOf(u"Plain", version)).ok());
        TableDesign indexed = DesignOf(u"Indexed", version);
        ASSERT_TRUE(database.CreateTable(indexed).ok());
        ASSERT_TRUE(database.Commit().ok());
        for (int i = 0; i < rows; ++i) {
            std::vector<Value> row{Value::Long(i)};
            for (const Kind& kind : kKinds)
                row.push_back(RandomValue(kind.type));
            ASSERT_TRUE(database.Begin().ok());
            for (const std::u16string_view table : {u"Plain", u"Indexed"}) {
                std::vector<Value> copy = row;
                const auto inserted = (*database.FindTable(table))->Insert(copy);
                ASSERT_TRUE(inserted.ok()) << inserted.status().message();
            }
            ASSERT_TRUE(database.Commit().ok());
        }
    }

    // An index over the columns, each in the given direction.
    void Index(std::vector<IndexColumn> columns, bool ignore_nulls) {
        Database& database = *connection_->database();
        ASSERT_TRUE(database.Begin().ok());
        IndexDesign index;
        index.name = u"Tried";
        index.columns = std::move(columns);
        index.ignore_nulls = ignore_nulls;
        const auto made = database.CreateIndex(u"Indexed", index);
        ASSERT_TRUE(made.ok()) << made.message();
        ASSERT_TRUE(database.Commit().ok());
    }
    void DropIndex() {
        Database& database = *connection_->database();
        ASSERT_TRUE(database.Begin().ok());
        ASSERT_TRUE(database.DropIndex(u"Indexed", u"Tried").ok());
        ASSERT_TRUE(database.Commit().ok());
    }

    std::vector<std::string> Rows(const std::u16string& sql) {
        auto rows = connection_->Execute(sql);
        if (!rows.ok()) return {"#" + std::to_string(rows.status().number())};
        std::vector<std::string> found;
        for (; !rows->Eof(); rows->MoveNext().Ignore()) {
            std::string row;
            for (std::size_t i = 0; i < rows->FieldCount(); ++i)
                row += base::ToUtf8(ToText(rows->Fields(i).value_or(Value()))) + "|";
            found.push_back(row);
        }
        return found;
    }

    void CompareRows(const std::u16string& condition) {
        auto plain = Rows(u"SELECT Id FROM Plain WHERE " + condition);
        auto indexed = Rows(u"SELECT Id FROM Indexed WHERE " + condition);
        // A condition that fails on some row fails only where that row is looked at.
        if (plain.size() == 1 && plain[0][0] == '#') return;
        std::sort(plain.begin(), plain.end());
        std::sort(indexed.begin(), indexed.end());
        EXPECT_EQ(indexed, plain) << base::ToUtf8(condition);
        found_ += plain.size();
    }

    struct Key {
        std::size_t kind = 0;
        bool descending = false;
    };

    // The rows are those of the whole table, and their keys ascend. Ties may come in any order.
    void CompareOrder(const std::u16string& condition, const std::vector<Key>& order) {
        const std::u16string where = condition.empty() ? u"" : u" WHERE " + condition;
        std::u16string names;
        std::u16string by;
        for (const Key& key : order) {
            names += u", " + base::ToUtf16(kKinds[key.kind].name);
            by += (by.empty() ? u" ORDER BY " : u", ") + base::ToUtf16(kKinds[key.kind].name) +
                  (key.descending ? u" Desc" : u"");
        }
        SCOPED_TRACE(base::ToUtf8(where + by));
        auto expected = Rows(u"SELECT Id FROM Plain" + where);
        auto rows = connection_->Execute(u"SELECT Id" + names + u" FROM Indexed" + where + by);
        if (expected.size() == 1 && expected[0][0] == '#') return;
        ASSERT_TRUE(rows.ok()) << rows.status().message();
        std::vector<std::string> found;
        std::string before;
        for (; !rows->Eof(); rows->MoveNext().Ignore()) {
            found.push_back(base::ToUtf8(ToText(*rows->Fields(std::size_t{0}))) + "|");
            std::string key;
            for (std::size_t i = 0; i < order.size(); ++i)
                sql::AppendSortKey(*rows->Fields(i + 1), order[i].descending, key);
            EXPECT_LE(before, key);
            before = key;
        }
        std::sort(expected.begin(), expected.end());
        std::sort(found.begin(), found.end());
        EXPECT_EQ(found, expected);
        found_ += found.size();
    }

    // Indexes over one and two columns in all directions, and questions that they might serve.
    void AskAbout(int indexes, int questions) {
        for (int i = 0; i < indexes; ++i) {
            const auto first = static_cast<std::size_t>(i) % kKindCount;
            const auto second = static_cast<std::size_t>(Below(kKindCount));
            const bool up = Below(2) == 0;
            std::vector<IndexColumn> columns{{first + 1, up}};
            if (second != first && Below(2) == 0) columns.push_back({second + 1, Below(2) == 0});
            Index(columns, Below(4) == 0);
            for (int question = 0; question < questions; ++question) {
                const std::u16string condition = RandomCondition(first, second);
                CompareRows(condition);
                std::vector<Key> order{{Below(4) == 0 ? second : first, Below(2) == 0}};
                if (second != first && Below(2) == 0)
                    order.push_back({order[0].kind == first ? second : first, Below(2) == 0});
                CompareOrder(Below(3) == 0 ? condition : u"", order);
                if (HasFailure()) return;
            }
            DropIndex();
        }
    }

    void MakeInNewFile(int rows, int version = 4) {
        const TemporaryFolder folder;
        const auto files = platform::MakeFileSystem();
        const auto path = folder.path() / "index.mdb";
        ASSERT_TRUE(CreateDatabaseFile(*files, path, Noon(), version).ok());
        auto copy = OpenCopy(path);
        ASSERT_TRUE(copy.ok()) << copy.status().message();
        Make(std::move(copy).value(), rows);
    }

    // Other questions with --gtest_shuffle --gtest_random_seed=N.
    std::mt19937 random_{20261120U +
                         static_cast<unsigned>(testing::UnitTest::GetInstance()->random_seed())};
    std::unique_ptr<Connection> connection_;
    std::size_t found_ = 0;
};

TEST_F(IndexUse, GivesTheSameRowsAsTheWholeTable) {
    ASSERT_NO_FATAL_FAILURE(MakeInNewFile(250));
    AskAbout(36, 20);
    EXPECT_GT(found_, 5000U);
}

// Before day 1 of the calendar keys and moments have different orders; after it they agree.
TEST_F(IndexUse, OfLaterDatesOnlyIsInTheirOrder) {
    ASSERT_NO_FATAL_FAILURE(MakeInNewFile(200));
    ASSERT_TRUE(connection_->Execute(u"DELETE FROM Indexed WHERE Day < 1.5").ok());
    ASSERT_TRUE(connection_->Execute(u"DELETE FROM Plain WHERE Day < 1.5").ok());
    for (const bool up : {true, false}) {
        Index({{8, up}}, false);
        for (const bool descending : {true, false}) {
            CompareOrder(u"", {{7, descending}});
            CompareOrder(u"Day > #1/1/1900#", {{7, descending}});
        }
        DropIndex();
    }
}

// Jet 3 files sort texts by a table of their own.
TEST_F(IndexUse, GivesTheSameRowsInAnOldFile) {
    ASSERT_NO_FATAL_FAILURE(MakeInNewFile(200, 3));
    AskAbout(24, 20);
    EXPECT_GT(found_, 5000U);
}

}  // namespace
}  // namespace jet::test
