// Compacting whole files: the same content in fewer pages, accepted by the checker.
#include "jet/repair/compact.h"

#include "base/file_names.h"
#include "jet/connection.h"
#include "jet/errors.h"
#include "jet/pages/file_mark.h"
#include "jet/repair/same_content.h"
#include "jet/tables/database.h"
#include "jet/tables/storage_support.h"
#include "platform/file_system.h"
#include "support/check_database.h"
#include "support/encoded_file.h"

#include <gtest/gtest.h>

namespace jet::test {
namespace {

class CompactTest : public testing::Test {
protected:
    std::filesystem::path Path(const char* name) const { return folder_.path() / name; }

    std::unique_ptr<PageStore> Open(const std::filesystem::path& path) {
        PageStoreOptions options;
        options.read_only = true;
        auto store = OpenPageStore(*files_, path, options);
        EXPECT_TRUE(store.ok()) << store.status().message();
        return store.ok() ? std::move(store).value() : nullptr;
    }

    void ExpectCopy(const std::filesystem::path& from, const std::filesystem::path& to) {
        const auto report = Compact(*files_, from, to);
        ASSERT_TRUE(report.ok()) << report.status().message();
        EXPECT_FALSE(std::filesystem::exists(base::PathOf(base::TextOf(to) + u"-new")));
        EXPECT_TRUE(test_support::DatabaseIsSound(to, test_support::kOwnFile));
        const auto original = Open(from);
        const auto copy = Open(to);
        ASSERT_TRUE(original && copy);
        EXPECT_EQ(original->page_count(), report->pages_before);
        EXPECT_EQ(copy->page_count(), report->pages_after);
        ExpectSameContent(*original, *copy);
    }

    static std::uint64_t MarkOf(const std::filesystem::path& path) {
        const auto bytes = ReadWholeFile(path);
        return ReadFileMark(std::span(bytes).first(4096));
    }

    // A table of which most rows are gone, another one that is gone, and a column that is gone.
    void MakeUsed(const std::filesystem::path& path, int version) {
        ASSERT_TRUE(CreateDatabaseFile(*files_, path, 40000.25, version).ok());
        Connection connection(*files_);
        ASSERT_TRUE(connection.Open(u"Data Source=" + path.u16string()).ok());
        const auto execute = [&](const std::u16string& sql) {
            const auto done = connection.Execute(sql);
            ASSERT_TRUE(done.ok()) << done.status().message();
        };
        execute(u"CREATE TABLE Makers (ID COUNTER PRIMARY KEY, Name TEXT(50))");
        execute(u"CREATE TABLE Games (ID COUNTER PRIMARY KEY, Gone LONG, Name TEXT(80), Old BIT, "
                u"Notes MEMO, Maker LONG, Made DATETIME, CONSTRAINT MadeBy FOREIGN KEY (Maker) "
                u"REFERENCES Makers (ID) ON DELETE CASCADE)");
        execute(u"CREATE INDEX ByName ON Games (Name DESC, Maker)");
        execute(u"CREATE TABLE Dropped (N LONG PRIMARY KEY, Text MEMO)");
        execute(u"INSERT INTO Makers (Name) VALUES ('Gottlieb')");
        execute(u"INSERT INTO Makers (Name) VALUES ('Stern')");
        for (int i = 0; i < 300; ++i) {
            const std::u16string number = base16(i);
            execute(u"INSERT INTO Games (Gone, Name, Old, Notes, Maker, Made) VALUES (1, 'Game " +
                    number + u"', " + (i % 3 == 0 ? u"True" : u"False") + u", String(" +
                    base16(i % 9 == 0 ? 9000 : i % 90) + u", 'n'), " + (i % 2 == 0 ? u"1" : u"2") +
                    u", #1/2/2003#)");
            execute(u"INSERT INTO Dropped (N, Text) VALUES (" + number + u", String(200, 'd'))");
        }
        execute(u"DELETE FROM Games WHERE ID MOD 10 <> 0");
        execute(u"UPDATE Games SET Name = Name + String(60, 'x') WHERE ID MOD 20 = 0");
        execute(u"DROP TABLE Dropped");
        execute(u"ALTER TABLE Games DROP COLUMN Gone");
        execute(u"ALTER TABLE Games ADD COLUMN Late TEXT(20)");
        ASSERT_TRUE(connection.Close().ok());
    }
    static std::u16string base16(int number) {
        const std::string text = std::to_string(number);
        return {text.begin(), text.end()};
    }

    TemporaryFolder folder_;
    std::unique_ptr<FileSystem> files_ = platform::MakeFileSystem();
};

class CompactFileTest : public CompactTest,
                        public testing::WithParamInterface<std::filesystem::path> {};

TEST_P(CompactFileTest, TheCopyHoldsTheSame) {
    const auto to = Path("copy.mdb");
    ExpectCopy(GetParam(), to);
    ExpectSameExports(GetParam(), to);
}

TEST_P(CompactFileTest, ACopyOfTheCopyHasNoPageLess) {
    ASSERT_TRUE(Compact(*files_, GetParam(), Path("first.mdb")).ok());
    const auto report = Compact(*files_, Path("first.mdb"), Path("second.mdb"));
    ASSERT_TRUE(report.ok()) << report.status().message();
    EXPECT_EQ(report->pages_after, report->pages_before);
    EXPECT_EQ(report->rows_left_out, 0U);
}

INSTANTIATE_TEST_SUITE_P(Files, CompactFileTest, testing::ValuesIn(WholeDatabases()), NameOfFile);

class CompactUsedTest : public CompactTest, public testing::WithParamInterface<int> {};

TEST_P(CompactUsedTest, DeletedRowsAndDroppedTablesTakeNoRoomAnyMore) {
    MakeUsed(Path("used.mdb"), GetParam());
    ExpectCopy(Path("used.mdb"), Path("copy.mdb"));
    ExpectSameExports(Path("used.mdb"), Path("copy.mdb"));
    EXPECT_LT(2 * std::filesystem::file_size(Path("copy.mdb")),
              std::filesystem::file_size(Path("used.mdb")));
}

TEST_P(CompactUsedTest, TheCopyGoesOnAsTheOldFileWouldHave) {
    MakeUsed(Path("used.mdb"), GetParam());
    ASSERT_TRUE(CompactInPlace(*files_, Path("used.mdb")).ok());
    Connection connection(*files_);
    ASSERT_TRUE(connection.Open(u"Data Source=" + Path("used.mdb").u16string()).ok());
    ASSERT_TRUE(
        connection.Execute(u"INSERT INTO Games (Name, Maker, Late) VALUES ('New', 2, 'x')").ok());
    auto rows = connection.Execute(u"SELECT ID FROM Games WHERE Late = 'x'");
    ASSERT_TRUE(rows.ok());
    EXPECT_EQ(rows->Fields(u"ID").value(), Value::Long(301));
    EXPECT_EQ(
        connection.Execute(u"INSERT INTO Games (Name, Maker) VALUES ('New', 3)").status().number(),
        3201);
    ASSERT_TRUE(connection.Execute(u"DELETE FROM Makers WHERE ID = 2").ok());
    ASSERT_TRUE(connection.Execute(u"ALTER TABLE Games ADD COLUMN Later MEMO").ok());
    ASSERT_TRUE(connection.Execute(u"CREATE TABLE More (N LONG PRIMARY KEY)").ok());
    ASSERT_TRUE(connection.Close().ok());
    EXPECT_TRUE(test_support::DatabaseIsSound(Path("used.mdb"), test_support::kOwnFile));
}

TEST_P(CompactUsedTest, AnEncodedFileStaysEncoded) {
    MakeUsed(Path("plain.mdb"), GetParam());
    auto bytes = ReadWholeFile(Path("plain.mdb"));
    test_support::EncodeFile(bytes, 0x1234ABCD);
    WriteWholeFile(Path("encoded.mdb"), bytes);
    ExpectCopy(Path("encoded.mdb"), Path("copy.mdb"));
    auto copy = ReadWholeFile(Path("copy.mdb"));
    const std::string_view text(reinterpret_cast<const char*>(copy.data()), copy.size());
    EXPECT_EQ(text.find("Game 2"), std::string_view::npos);
    test_support::EncodeFile(copy, 0x1234ABCD);
    WriteWholeFile(Path("decoded.mdb"), copy);
    ExpectSameExports(Path("plain.mdb"), Path("decoded.mdb"));
}

INSTANTIATE_TEST_SUITE_P(Versions, CompactUsedTest, testing::Values(3, 4),
                         [](const auto& version) { return "Jet" + std::to_string(version.param); });

TEST_F(CompactTest, AFileThatIsThereIsNotReplaced) {
    WriteWholeFile(Path("there.mdb"), {});
    const auto report =
        Compact(*files_, DataFolder() / "databases/arcade-jet4.mdb", Path("there.mdb"));
    EXPECT_EQ(report.status().number(), 3204);
    EXPECT_EQ(std::filesystem::file_size(Path("there.mdb")), 0U);
}

TEST_F(CompactTest, ADamagedFileIsRefusedAndKept) {
    auto bytes = ReadWholeFile(DataFolder() / "databases/arcade-jet4.mdb");
    std::fill_n(bytes.begin() + 7 * 4096, 4096, std::byte{0xEE});  // an index of MSysObjects
    WriteWholeFile(Path("damaged.mdb"), bytes);
    EXPECT_EQ(Compact(*files_, Path("damaged.mdb"), Path("copy.mdb")).status().number(), 3049);
    EXPECT_EQ(CompactInPlace(*files_, Path("damaged.mdb")).status().number(), 3049);
    EXPECT_EQ(ReadWholeFile(Path("damaged.mdb")), bytes);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder_.path()), {}), 1);
}

TEST_F(CompactTest, AFileInUseIsRefusedAndKept) {
    const auto path = Path("used.mdb");
    std::filesystem::copy_file(DataFolder() / "databases/arcade-jet4.mdb", path);
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
    const auto bytes = ReadWholeFile(path);
    {
        const auto reader = Open(path);
        EXPECT_EQ(CompactInPlace(*files_, path).status().number(), 3045);
    }
    const auto writer = OpenPageStore(*files_, path, {});
    ASSERT_TRUE(writer.ok());
    EXPECT_EQ(CompactInPlace(*files_, path).status().number(), 3356);
    EXPECT_EQ(ReadWholeFile(path), bytes);
}

}  // namespace
}  // namespace jet::test
