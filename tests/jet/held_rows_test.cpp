// What is held of a recordset's rows: the same values as its fields, whatever becomes of recordset,
// rows, table and connection.
#include "jet/connection.h"
#include "jet/held_rows.h"
#include "jet/rows/stored_fields.h"
#include "jet/tables/storage_support.h"
#include "platform/file_system.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <numeric>
#include <thread>

namespace jet::test {
namespace {

std::vector<std::size_t> AllFields(const Recordset& rows) {
    std::vector<std::size_t> fields(rows.FieldCount());
    std::iota(fields.begin(), fields.end(), std::size_t{0});
    return fields;
}

std::vector<std::vector<Value>> Read(Recordset& rows) {
    std::vector<std::vector<Value>> read;
    while (!rows.Eof()) {
        read.emplace_back();
        for (std::size_t field = 0; field < rows.FieldCount(); ++field) {
            auto value = rows.Fields(field);
            EXPECT_TRUE(value.ok()) << value.status().message();
            read.back().push_back(std::move(value).value_or(Value::Null()));
        }
        EXPECT_TRUE(rows.MoveNext().ok());
    }
    return read;
}

std::vector<std::vector<Value>> Read(const HeldRows& held, std::size_t fields) {
    std::vector<std::vector<Value>> read;
    for (std::size_t row = 0; row < held.size(); ++row) {
        read.emplace_back();
        for (std::size_t field = 0; field < fields; ++field)
            read.back().push_back(held.Field(row, field));
    }
    return read;
}

class HeldRowsOf : public testing::TestWithParam<int> {
protected:
    void SetUp() override {
        ASSERT_TRUE(CreateDatabaseFile(*files, path, 45000, GetParam()).ok());
        connection = std::make_unique<Connection>(*files);
        ASSERT_TRUE(connection->Open(u"Data Source=" + path.u16string()).ok());
        Run(u"CREATE TABLE T (Id COUNTER CONSTRAINT K PRIMARY KEY, Name TEXT(50), Seen YESNO, "
            u"Small BYTE, Short SHORT, Long LONG, Price CURRENCY, Half SINGLE, Full DOUBLE, Made "
            u"DATE, Row GUID, Raw BINARY(20), Notes MEMO)");
        Run(u"INSERT INTO T (Name, Seen, Small, Short, Long, Price, Half, Full, Made, Notes) "
            u"VALUES ('b\u00e9', True, 200, -3, 70000, 1.25, 0.5, -2.75, #2026-11-22 10:30:00#, "
            u"'notes')");
        Recordset first = Open(u"SELECT * FROM T");
        ASSERT_TRUE(first.SetField(u"Row", Value::OfGuid(Guid{})).ok());
        ASSERT_TRUE(first.SetField(u"Raw", Value::Binary(Bytes(3, std::byte{7}))).ok());
        ASSERT_TRUE(first.Update().ok());
        Run(u"INSERT INTO T (Name) VALUES (Null)");
        Run(u"INSERT INTO T (Name, Seen, Notes) VALUES ('', False, '" + std::u16string(5000, u'x') +
            u"')");
        Run(u"INSERT INTO T (Name, Long) VALUES ('a', 1)");
    }
    void Run(std::u16string_view sql) {
        const auto done = connection->Execute(sql);
        ASSERT_TRUE(done.ok()) << done.status().message();
    }
    Recordset Open(std::u16string_view sql, CursorType cursor = CursorType::kKeyset) {
        Recordset rows;
        const auto opened = rows.Open(sql, *connection, cursor, LockType::kOptimistic);
        EXPECT_TRUE(opened.ok()) << opened.message();
        return rows;
    }
    static HeldRows Hold(Recordset& rows, const std::vector<std::size_t>& fields) {
        auto held = rows.Hold(fields);
        EXPECT_TRUE(held.ok()) << held.status().message();
        return std::move(held).value_or(HeldRows());
    }

    TemporaryFolder folder;
    std::filesystem::path path = folder.path() / "held.mdb";
    std::unique_ptr<FileSystem> files = platform::MakeFileSystem();
    std::unique_ptr<Connection> connection;
};

// A sorted list has put the fields away, the others have not; computed columns, joins and static
// lists have values.
TEST_P(HeldRowsOf, HasTheValuesOfTheFields) {
    const std::u16string_view questions[] = {
        u"SELECT * FROM T",
        u"SELECT * FROM T ORDER BY Id DESC",
        u"SELECT * FROM T ORDER BY Name, Long",
        u"SELECT Name, Long, Made, Seen, Price FROM T ORDER BY Full",
        u"SELECT Name, Long * 2, Id FROM T ORDER BY Name",
        u"SELECT Long + 1, Small + 1 FROM T",
        u"SELECT A.Name, B.Notes FROM T AS A INNER JOIN T AS B ON A.Id = B.Id ORDER BY A.Id",
        u"SELECT DISTINCT Seen FROM T"};
    for (const auto question : questions) {
        for (const auto cursor : {CursorType::kKeyset, CursorType::kStatic, CursorType::kDynamic}) {
            Recordset rows = Open(question, cursor);
            const HeldRows held = Hold(rows, AllFields(rows));
            const auto values = Read(rows);
            EXPECT_EQ(held.size(), values.size());
            EXPECT_EQ(Read(held, rows.FieldCount()), values);
        }
    }
}

TEST_P(HeldRowsOf, HasTheFieldsThatWereAskedForInTheirOrder) {
    for (const auto* question : {u"SELECT * FROM T", u"SELECT * FROM T ORDER BY Name"}) {
        Recordset rows = Open(question);
        const HeldRows held = Hold(rows, {5, 12, 1, 5});
        for (std::size_t row = 0; row < held.size(); ++row) {
            EXPECT_EQ(held.Field(row, 0), *rows.Fields(u"Long"));
            EXPECT_EQ(held.Field(row, 1), *rows.Fields(u"Notes"));
            EXPECT_EQ(held.Field(row, 2), *rows.Fields(u"Name"));
            EXPECT_EQ(held.Field(row, 3), *rows.Fields(u"Long"));
            ASSERT_TRUE(rows.MoveNext().ok());
        }
        EXPECT_EQ(Hold(rows, {}).size(), 4U);
    }
}

TEST_P(HeldRowsOf, StaysAsItWas) {
    for (const auto* question : {u"SELECT * FROM T WHERE Id > 0", u"SELECT * FROM T ORDER BY Name",
                                 u"SELECT * FROM T ORDER BY Id"}) {
        Recordset rows = Open(question);
        const std::size_t count = rows.FieldCount();
        const HeldRows held = Hold(rows, AllFields(rows));
        const auto before = Read(held, count);
        ASSERT_EQ(before.size(), 4U);
        Run(u"UPDATE T SET Name = 'other', Long = 9, Notes = 'other'");
        EXPECT_EQ(Read(held, count), before);
        Run(u"UPDATE T SET Name = 'b' WHERE Id = 1");
    }
    Recordset rows = Open(u"SELECT * FROM T ORDER BY Name");
    const HeldRows held = Hold(rows, AllFields(rows));
    const auto before = Read(held, 13);
    Run(u"DELETE FROM T");
    EXPECT_EQ(Read(held, 13), before);
    Run(u"DROP TABLE T");
    EXPECT_EQ(Read(held, 13), before);
    rows = Recordset();
    ASSERT_TRUE(connection->Close().ok());
    connection.reset();
    EXPECT_EQ(Read(held, 13), before);
    std::thread([&] { EXPECT_EQ(Read(HeldRows(held), 13), before); }).join();
}

// The values are those of now, not those at the time of the sorting.
TEST_P(HeldRowsOf, IsOfTheMomentInWhichItIsAsked) {
    for (const auto* question :
         {u"SELECT Id, Name FROM T", u"SELECT Id, Name FROM T ORDER BY Full"}) {
        Recordset rows = Open(question);
        Run(u"UPDATE T SET Name = 'new' WHERE Id = 2");
        HeldRows held = Hold(rows, {1, 0});
        int found = 0;
        for (std::size_t row = 0; row < held.size(); ++row) {
            if (held.Field(row, 1) != Value::Long(2)) continue;
            EXPECT_EQ(held.Field(row, 0), Value::Text(u"new"));
            ++found;
        }
        EXPECT_EQ(found, 1);
        ASSERT_TRUE(rows.SetField(u"Name", Value::Text(u"not yet")).ok());
        held = Hold(rows, {1});
        EXPECT_NE(held.Field(0, 0), Value::Text(u"not yet"));
        rows.CancelUpdate();
        Run(u"UPDATE T SET Name = 'old' WHERE Id = 2");
    }
}

TEST_P(HeldRowsOf, LeavesTheCurrentRow) {
    for (const auto* question :
         {u"SELECT Id, Notes FROM T", u"SELECT Id, Name FROM T ORDER BY Full"}) {
        Recordset rows = Open(question);
        ASSERT_TRUE(rows.MoveTo(2).ok());
        const Value id = *rows.Fields(u"Id");
        Hold(rows, {0, 1});
        EXPECT_EQ(*rows.Fields(u"Id"), id);
        ASSERT_TRUE(rows.MoveLast().ok());
        ASSERT_TRUE(rows.MoveNext().ok());
        Hold(rows, {0, 1});
        EXPECT_TRUE(rows.Eof() && !rows.Bof());
        ASSERT_TRUE(rows.MoveFirst().ok());
        ASSERT_TRUE(rows.MovePrevious().ok());
        Hold(rows, {0, 1});
        EXPECT_TRUE(rows.Bof() && !rows.Eof());
    }
}

TEST_P(HeldRowsOf, TellsHowFarItIs) {
    const auto told_of = [&](std::u16string_view question) {
        Recordset rows = Open(question);
        std::vector<std::int64_t> told;
        EXPECT_TRUE(
            rows.Hold(AllFields(rows), [&](std::int64_t row) { told.push_back(row); }).ok());
        return told;
    };
    const std::vector<std::int64_t> each = {1, 2, 3, 4};
    EXPECT_EQ(told_of(u"SELECT * FROM T"), each);
    EXPECT_EQ(told_of(u"SELECT Id, Name FROM T"), each);
    EXPECT_EQ(told_of(u"SELECT Id, Name FROM T ORDER BY Name"), std::vector<std::int64_t>());
}

// It only says what comes next: nothing that it is told does harm.
TEST_P(HeldRowsOf, MayExpectAnyRow) {
    HeldRows().Expect(0);
    for (const auto* question :
         {u"SELECT * FROM T", u"SELECT * FROM T ORDER BY Name", u"SELECT DISTINCT Seen FROM T",
          u"SELECT * FROM T WHERE Id = 99"}) {
        Recordset rows = Open(question);
        const HeldRows held = Hold(rows, AllFields(rows));
        for (const std::size_t row : {std::size_t{0}, held.size(), std::size_t{1} << 40})
            held.Expect(row);
        EXPECT_EQ(Read(held, rows.FieldCount()), Read(rows));
    }
}

TEST_P(HeldRowsOf, NoRowsAreNone) {
    Recordset rows = Open(u"SELECT * FROM T WHERE Id = 99 ORDER BY Name");
    EXPECT_EQ(Hold(rows, AllFields(rows)).size(), 0U);
    EXPECT_EQ(HeldRows().size(), 0U);
}

TEST_P(HeldRowsOf, SaysWhatItCannotHold) {
    Recordset forward = Open(u"SELECT * FROM T", CursorType::kForwardOnly);
    EXPECT_EQ(forward.Hold(AllFields(forward)).status().number(), 3219);
    Recordset rows = Open(u"SELECT Id FROM T");
    EXPECT_EQ(rows.Hold(std::vector<std::size_t>{1}).status().number(), 3265);
    Recordset failing = Open(u"SELECT Id, 1 / (Id - 2) FROM T");
    EXPECT_EQ(failing.Hold(std::vector<std::size_t>{1}).status().number(), 11);
    EXPECT_EQ(Hold(failing, {0}).size(), 4U);
    Run(u"DELETE FROM T WHERE Id = 2");
    EXPECT_EQ(rows.Hold(std::vector<std::size_t>{0}).status().number(), 3167);
    EXPECT_EQ(*rows.Fields(u"Id"), Value::Long(1));
    rows.Close();
    EXPECT_EQ(rows.Hold(std::vector<std::size_t>{0}).status().number(), 3704);
}

INSTANTIATE_TEST_SUITE_P(BothVersions, HeldRowsOf, testing::Values(3, 4),
                         [](const auto& version) { return "Jet" + std::to_string(version.param); });

class HeldRowsOfFile : public testing::TestWithParam<std::filesystem::path> {};

TEST_P(HeldRowsOfFile, HasEveryCellOfEveryTable) {
    const auto files = platform::MakeFileSystem();
    Connection connection(*files);
    ASSERT_TRUE(connection.Open(u"Mode=Read;Data Source=" + GetParam().u16string()).ok());
    const auto names = connection.database()->TableNames();
    ASSERT_TRUE(names.ok());
    for (const std::u16string& name : *names) {
        Recordset rows;
        const auto opened = rows.Open(u"SELECT * FROM [" + name + u"]", connection,
                                      CursorType::kKeyset, LockType::kReadOnly);
        ASSERT_TRUE(opened.ok()) << opened.message();
        const auto held = rows.Hold(AllFields(rows));
        ASSERT_TRUE(held.ok()) << held.status().message();
        EXPECT_EQ(Read(*held, rows.FieldCount()), Read(rows));
    }
}

INSTANTIATE_TEST_SUITE_P(EveryFile, HeldRowsOfFile,
                         testing::ValuesIn(OurFilesAndReal(
                             {"databases/arcade-jet3.mdb", "databases/arcade-jet4.mdb",
                              "databases/catalogue-jet3.mdb", "databases/catalogue-jet4.mdb"},
                             {"catalogue/old-base-250.mdb", "catalogue/old-full-1000.mdb"})),
                         test_support::NameOfFile);

// A field in the variable part of a row may be shorter than its type says; only its bytes tell.
TEST(StoredFieldDecoderTest, TakesWhatSurelyIsAValue) {
    ColumnDefinition column;
    const auto can = [&](ColumnType type, std::uint8_t flags, std::uint16_t length) {
        column.type = type;
        column.flags = flags;
        column.length = length;
        return StoredFieldDecoder::CanDecode(column);
    };
    EXPECT_TRUE(can(ColumnType::kText, 0, 50));
    EXPECT_TRUE(can(ColumnType::kText, kColumnFixed, 50));
    EXPECT_TRUE(can(ColumnType::kBoolean, kColumnFixed, 1));
    EXPECT_TRUE(can(ColumnType::kLong, kColumnFixed, 4));
    EXPECT_FALSE(can(ColumnType::kLong, kColumnFixed, 3));
    EXPECT_FALSE(can(ColumnType::kLong, 0, 4));
    EXPECT_FALSE(can(ColumnType::kLong, kColumnFixed | kColumnScrambled, 4));
    EXPECT_FALSE(can(ColumnType::kMemo, 0, 0));
    EXPECT_FALSE(can(ColumnType::kOle, 0, 0));
}

}  // namespace
}  // namespace jet::test
