// What a column of type COUNTER gives out, and rows by keys that run downwards, over a file that
// another reader of its pages checks.
#include "jet/connection.h"
#include "jet/tables/database.h"
#include "jet/tables/storage_support.h"
#include "jet/values/conversions.h"
#include "platform/file_system.h"
#include "support/check_database.h"

#include "base/unicode.h"

#include <gtest/gtest.h>

namespace jet::test {
namespace {

class CounterTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(CreateDatabaseFile(*files, path, 45000).ok());
        Open();
    }
    void TearDown() override {
        ASSERT_TRUE(connection->Close().ok());
        EXPECT_TRUE(test_support::DatabaseIsSound(path));
    }

    void Open() {
        connection = std::make_unique<Connection>(*files);
        ASSERT_TRUE(connection->Open(u"Data Source=" + path.u16string()).ok());
    }
    void Reopen() {
        ASSERT_TRUE(connection->Close().ok());
        Open();
    }
    void Run(std::u16string_view sql) {
        const auto done = connection->Execute(sql);
        ASSERT_TRUE(done.ok()) << done.status().message();
    }
    // The first field of every row.
    std::string First(std::u16string_view sql) {
        auto rows = connection->Execute(sql);
        if (!rows.ok()) return "#" + std::to_string(rows.status().number());
        std::string text;
        while (!rows->Eof()) {
            const auto value = rows->Fields(std::size_t{0});
            text += (text.empty() ? "" : " ") +
                    (value.ok() && !value->is_null() ? base::ToUtf8(ToText(*value)) : "-");
            EXPECT_TRUE(rows->MoveNext().ok());
        }
        return text;
    }

    std::unique_ptr<FileSystem> files = platform::MakeFileSystem();
    const TemporaryFolder folder;
    const std::filesystem::path path = folder.path() / "counter.mdb";
    std::unique_ptr<Connection> connection;
};

TEST_F(CounterTest, ASmallerNumberThatIsGivenDoesNotSetItBack) {
    Run(u"CREATE TABLE T (ID COUNTER PRIMARY KEY, N LONG)");
    Run(u"INSERT INTO T (ID, N) VALUES (10, 1)");
    Run(u"INSERT INTO T (ID, N) VALUES (4, 2)");
    Run(u"INSERT INTO T (N) VALUES (3)");
    EXPECT_EQ(First(u"SELECT ID FROM T ORDER BY ID"), "4 10 11");
    Reopen();
    Run(u"INSERT INTO T (ID, N) VALUES (-5, 4)");
    Run(u"INSERT INTO T (N) VALUES (5)");
    EXPECT_EQ(First(u"SELECT ID FROM T ORDER BY ID"), "-5 4 10 11 12");
}

TEST_F(CounterTest, ASmallerNumberDoesNotBringBackOneThatWasDeleted) {
    Run(u"CREATE TABLE T (ID COUNTER PRIMARY KEY, N LONG)");
    Run(u"INSERT INTO T (ID, N) VALUES (10, 1)");
    Run(u"INSERT INTO T (ID, N) VALUES (4, 2)");
    Run(u"DELETE FROM T WHERE ID = 10");
    Run(u"INSERT INTO T (N) VALUES (3)");
    EXPECT_EQ(First(u"SELECT ID FROM T ORDER BY ID"), "4 11");
}

TEST_F(CounterTest, ItGoesOnAfterTheLastRowsAreGone) {
    Run(u"CREATE TABLE T (ID COUNTER PRIMARY KEY, N LONG)");
    for (int i = 0; i < 3; ++i)
        Run(u"INSERT INTO T (N) VALUES (0)");
    Run(u"DELETE FROM T WHERE ID > 1");
    Reopen();
    Run(u"INSERT INTO T (N) VALUES (0)");
    EXPECT_EQ(First(u"SELECT ID FROM T ORDER BY ID"), "1 4");
    Run(u"DELETE FROM T");
    Run(u"INSERT INTO T (N) VALUES (0)");
    EXPECT_EQ(First(u"SELECT ID FROM T"), "5");
}

TEST_F(CounterTest, ALargerNumberThatARowIsChangedToCounts) {
    Run(u"CREATE TABLE T (ID COUNTER PRIMARY KEY, N LONG)");
    Run(u"INSERT INTO T (N) VALUES (1)");
    Run(u"UPDATE T SET ID = 7");
    Run(u"INSERT INTO T (N) VALUES (2)");
    EXPECT_EQ(First(u"SELECT ID FROM T ORDER BY ID"), "7 8");
    EXPECT_EQ(First(u"UPDATE T SET ID = Null WHERE N = 2"), "#3314");
}

TEST_F(CounterTest, KeysThatRunDownwardsAreThoseOfTheFormat) {
    Run(u"CREATE TABLE T (ID COUNTER PRIMARY KEY, D DECIMAL(12, 3), B BINARY(20), T TEXT(30), N "
        u"LONG, F DOUBLE)");
    Run(u"CREATE INDEX ByD ON T (D DESC)");
    Run(u"CREATE INDEX ByB ON T (B DESC)");
    Run(u"CREATE INDEX ByT ON T (T DESC, N DESC)");
    Run(u"CREATE INDEX ByF ON T (F DESC)");
    Run(u"INSERT INTO T (D, B, T, N, F) VALUES (1.5, 'abcd', 'one', 1, -0.5)");
    Run(u"INSERT INTO T (D, B, T, N, F) VALUES (-1.5, 'abcde', 'one', -1, 0.5)");
    Run(u"INSERT INTO T (D, B, T, N, F) VALUES (0, 'abcdefghi', 'one-two', 300, 1e9)");
    Run(u"INSERT INTO T (D, B, T, N, F) VALUES (-200.25, 'a', '', 0, -1e9)");
    Run(u"INSERT INTO T (D, B, T, N, F) VALUES (200.125, 'abcdefgh', 'two', -70000, 0)");
    Run(u"INSERT INTO T (D, B, T, N, F) VALUES (Null, Null, Null, Null, Null)");
    EXPECT_EQ(First(u"SELECT ID FROM T ORDER BY D DESC"), "5 1 3 2 4 6");
    EXPECT_EQ(First(u"SELECT ID FROM T WHERE D < 0 ORDER BY ID"), "2 4");
    EXPECT_EQ(First(u"SELECT ID FROM T WHERE D >= 0 ORDER BY ID"), "1 3 5");
    EXPECT_EQ(First(u"SELECT ID FROM T ORDER BY F DESC"), "3 2 5 1 4 6");
    EXPECT_EQ(First(u"SELECT ID FROM T WHERE T = 'one' ORDER BY N DESC"), "1 2");
}

TEST_F(CounterTest, WhatAnIndexDoesNotNarrowIsFoundAllTheSame) {
    Run(u"CREATE TABLE T (ID COUNTER PRIMARY KEY, N LONG)");
    Run(u"CREATE INDEX ByN ON T (N) WITH IGNORE NULL");
    for (const auto* number : {u"5", u"Null", u"7", u"-1", u"3"})
        Run(u"INSERT INTO T (N) VALUES (" + std::u16string(number) + u")");
    EXPECT_EQ(First(u"SELECT ID FROM T WHERE N Not Between 0 And 6 ORDER BY ID"), "3 4");
    EXPECT_EQ(First(u"SELECT ID FROM T WHERE N = 5 Or N Is Null ORDER BY ID"), "1 2");
    EXPECT_EQ(First(u"SELECT ID FROM T WHERE N Is Null Or N = 5 ORDER BY ID"), "1 2");
    EXPECT_EQ(First(u"SELECT ID FROM T WHERE N Not In (5, 7) ORDER BY ID"), "4 5");
    EXPECT_EQ(First(u"SELECT ID FROM T WHERE Not N = 5 ORDER BY ID"), "3 4 5");
}

}  // namespace
}  // namespace jet::test
