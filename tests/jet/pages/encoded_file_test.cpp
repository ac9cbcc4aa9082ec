// Encoded files: every change of one comes to what it comes to in its plain twin, other programs
// read it, and nothing of it lies in the clear, the journal included.
#include "jet/tables/table_fixture.h"
#include "support/check_database.h"
#include "support/encoded_file.h"
#include "support/faulty_file_system.h"

#include <algorithm>
#include <numeric>
#include <random>

namespace jet::test {
namespace {

using test_support::ApplyKeyStream;
using test_support::EncodeFile;
using test_support::FaultyFileSystem;

constexpr std::uint32_t kKey = 0x5AC3917EU;

std::vector<std::byte> FromHex(std::string_view text) {
    std::vector<std::byte> bytes;
    for (std::size_t at = 0; at + 1 < text.size(); at += 3)
        bytes.push_back(
            static_cast<std::byte>(std::stoi(std::string(text.substr(at, 2)), nullptr, 16)));
    return bytes;
}

std::vector<std::byte> Encoded(std::vector<std::byte> file, std::uint32_t key = kKey) {
    EncodeFile(file, key);
    return file;
}

// Worked examples of docs/formats/jet.md: the stream of a scrambled column, the mask of page 0.
TEST(KeyStreamTest, IsThatOfTheWorkedExamples) {
    std::vector<std::byte> stream(24);
    ApplyKeyStream(0x75FF76EA, stream);
    EXPECT_EQ(stream, FromHex("A5 32 12 55 A2 13 65 6A CC 6E 59 95 E9 CC 1C B4 BB 1C 48 4C B6 1D "
                              "8A 9B"));
    std::vector<std::byte> mask(16);
    ApplyKeyStream(0x6B39DAC7, mask);
    EXPECT_EQ(mask, FromHex("B5 6F 03 62 61 08 C2 55 EB A9 67 72 43 3F 00 9C"));
}

std::unique_ptr<Database> OpenIn(FileSystem& files, const std::filesystem::path& path) {
    PageStoreOptions options;
    options.flush_delay = {};
    auto pages = OpenPageStore(files, path, options);
    EXPECT_TRUE(pages.ok()) << pages.status().message();
    if (!pages.ok()) return nullptr;
    auto database = OpenDatabase(std::move(pages).value(), path.string());
    EXPECT_TRUE(database.ok()) << database.status().message();
    return database.ok() ? std::move(database).value() : nullptr;
}

// One statement; the number of its error.
template <typename Change>
int Do(Database& database, Change change) {
    EXPECT_TRUE(database.Begin().ok());
    const base::Status status = change();
    if (status.ok()) {
        EXPECT_TRUE(database.Commit().ok());
        return 0;
    }
    database.Rollback();
    return status.number() == 0 ? -1 : status.number();
}

// Random changes of all tables, the same for the same seed: what each came to. Tables that number
// their rows by GUIDs are left out; those are never the same.
std::vector<int> ChangeAtRandom(Database& database, unsigned seed, int changes) {
    std::mt19937 random(seed);
    std::vector<int> results;
    std::vector<std::u16string> names = database.TableNames().value();
    std::erase_if(names, [&](const std::u16string& name) {
        const Table& table = *database.FindTable(name).value();
        return table.read_only_reason().has_value() ||
               std::ranges::any_of(table.design().columns, [](const ColumnDesign& column) {
                   return column.autonumber && column.type == ColumnType::kGuid;
               });
    });
    EXPECT_FALSE(names.empty());
    while (!names.empty() && results.size() < static_cast<std::size_t>(changes)) {
        Table& table = *database.FindTable(names[random() % names.size()]).value();
        std::vector<RowId> rows;
        for (auto cursor = table.Scan().value(); const auto row = cursor->Next().value();)
            rows.push_back(*row);
        const std::size_t columns = table.design().columns.size();
        const auto value = [&](std::size_t column) {
            const ColumnType type = table.design().columns[column].type;
            const bool is_memo = type == ColumnType::kMemo;
            if (is_memo || type == ColumnType::kText)
                return Value::Text(std::u16string(random() % (is_memo ? 9000 : 20),
                                                  static_cast<char16_t>(u'a' + random() % 26)));
            return Value::Null();
        };
        const unsigned kind = random() % 4;
        if (rows.empty() || kind < 2) {
            std::vector<Value> values(columns);
            for (std::size_t i = 0; i < columns; ++i)
                values[i] = value(i);
            results.push_back(Do(database, [&] { return table.Insert(values).status(); }));
        } else if (kind == 2) {
            const std::size_t column = random() % columns;
            const ColumnChange change{column, value(column)};
            const RowId row = rows[random() % rows.size()];
            results.push_back(
                Do(database, [&] { return table.Update(row, std::span(&change, 1)); }));
        } else {
            const RowId row = rows[random() % rows.size()];
            results.push_back(Do(database, [&] { return table.Delete(row); }));
        }
        if (random() % 20 == 0) {
            EXPECT_TRUE(database.Flush().ok());
        }
    }
    return results;
}

// Each checkpoint leaves another random mark in the last commit words.
void BlankMark(std::vector<std::byte>& file) {
    const std::size_t end = file[0x14] == std::byte{0} ? 0x800 : 0x1000;
    std::fill(file.begin() + static_cast<std::ptrdiff_t>(end) - 16,
              file.begin() + static_cast<std::ptrdiff_t>(end), std::byte{0});
}

void ExpectTwins(const std::vector<std::byte>& plain, int changes) {
    FaultyFileSystem files;
    files.Put("plain.mdb", plain);
    files.Put("encoded.mdb", Encoded(plain));
    std::vector<std::vector<int>> results;
    for (const char* name : {"plain.mdb", "encoded.mdb"}) {
        const auto database = OpenIn(files, name);
        ASSERT_NE(database, nullptr);
        results.push_back(ChangeAtRandom(*database, 4711, changes));
        EXPECT_TRUE(test_support::PagesAreSound(database->pages()));
        ASSERT_TRUE(database->Close().ok());
    }
    EXPECT_EQ(results[0], results[1]);
    EXPECT_GT(std::ranges::count(results[0], 0), 10);
    auto wanted = files.Get("plain.mdb");
    auto decoded = Encoded(files.Get("encoded.mdb"));
    BlankMark(wanted);
    BlankMark(decoded);
    EXPECT_NE(wanted, plain);
    ASSERT_EQ(wanted.size(), decoded.size());
    const auto difference = std::ranges::mismatch(wanted, decoded).in1 - wanted.begin();
    EXPECT_EQ(difference, static_cast<std::ptrdiff_t>(wanted.size())) << "the first that differs";
}

class EncodedFileTest : public TableFixture {
protected:
    void SetUp() override {
        TableFixture::SetUp();
        CreateGames();
        for (int i = 0; i < 40; ++i)
            ASSERT_TRUE(InsertGame(u"Unmistakable " + std::u16string(1 + i % 7, u'x'), 1990,
                                   std::u16string(i % 9 == 0 ? 6000 : 30, u'n'))
                            .ok());
        ASSERT_TRUE(database_->Close().ok());
        database_.reset();
        plain_ = ReadWholeFile(path_);
        WriteWholeFile(path_, Encoded(plain_));
        Open();
    }
    static bool Holds(const std::vector<std::byte>& bytes, std::string_view text) {
        const auto wanted = std::as_bytes(std::span(text));
        return std::search(bytes.begin(), bytes.end(), wanted.begin(), wanted.end()) != bytes.end();
    }

    std::vector<std::byte> plain_;
};

TEST_F(EncodedFileTest, HoldsWhatItsPlainTwinHolds) {
    const auto twin = OpenDatabase(MakeMemoryPageStore(4096, plain_), "plain").value();
    EXPECT_EQ(AllRows(Games()), AllRows(*twin->FindTable(u"Games").value()));
    EXPECT_EQ(Games().row_count(), 40U);
}

TEST_F(EncodedFileTest, ChangesComeToWhatTheyComeToInAPlainFile) {
    ExpectTwins(plain_, 1500);
}

TEST_F(EncodedFileTest, OtherProgramsReadWhatWasWritten) {
    ChangeAtRandom(*database_, 99, 300);
    ASSERT_TRUE(Do([&] {
                    return database_->AddColumn(u"Games", Column(u"Extra", ColumnType::kText, 20));
                }).ok());
    ASSERT_TRUE(database_->Flush().ok());
    CompareWithExport(path_, Games());
    EXPECT_GT(Games().row_count(), 50U);
}

TEST_F(EncodedFileTest, NothingLiesInTheClear) {
    for (const bool is_encoded : {false, true}) {
        FaultyFileSystem files;
        files.Put("a.mdb", is_encoded ? Encoded(plain_) : plain_);
        const auto database = OpenIn(files, "a.mdb");
        ASSERT_NE(database, nullptr);
        Table& games = *database->FindTable(u"Games").value();
        std::vector<Value> row(6);
        row[1] = Value::Text(u"Journalled");
        ASSERT_EQ(test::Do(*database, [&] { return games.Insert(row).status(); }), 0);
        // The rows beside it have not changed, so the journal does not tell them at all.
        EXPECT_FALSE(Holds(files.Get("a.mdb-journal"), "Unmistakable"));
        EXPECT_EQ(Holds(files.Get("a.mdb-journal"), "Journalled"), !is_encoded);
        ASSERT_TRUE(database->Flush().ok());
        EXPECT_EQ(Holds(files.Get("a.mdb"), "Unmistakable"), !is_encoded);
        EXPECT_EQ(Holds(files.Get("a.mdb"), "Journalled"), !is_encoded);
    }
}

TEST_F(EncodedFileTest, AJournalLeftBehindIsGoneOnWith) {
    FaultyFileSystem files;
    files.Put("a.mdb", Encoded(plain_));
    const auto database = OpenIn(files, "a.mdb");
    ASSERT_NE(database, nullptr);
    ChangeAtRandom(*database, 5, 200);
    Table& games = *database->FindTable(u"Games").value();
    std::vector<Value> row(6);
    row[1] = Value::Text(u"Last");
    ASSERT_EQ(test::Do(*database, [&] { return games.Insert(row).status(); }), 0);
    const auto wanted = AllRows(games);
    const auto killed = files.Kill();
    EXPECT_FALSE(killed->Get("a.mdb-journal").empty());
    const auto again = OpenIn(*killed, "a.mdb");
    ASSERT_NE(again, nullptr);
    EXPECT_EQ(AllRows(*again->FindTable(u"Games").value()), wanted);
    EXPECT_TRUE(test_support::PagesAreSound(again->pages()));
    ASSERT_TRUE(again->Close().ok());
    // What the recovery wrote is encoded, too.
    auto decoded = killed->Get("a.mdb");
    EncodeFile(decoded, kKey);
    EXPECT_TRUE(Holds(decoded, "Unmistakable"));
    EXPECT_EQ(AllRows(*OpenDatabase(MakeMemoryPageStore(4096, decoded), "decoded")
                           .value()
                           ->FindTable(u"Games")
                           .value()),
              wanted);
}

// An older copy with another key is another state of the file.
TEST_F(EncodedFileTest, AJournalIsNotAppliedToTheFileUnderAnotherKey) {
    FaultyFileSystem files;
    files.Put("a.mdb", Encoded(plain_));
    {
        const auto database = OpenIn(files, "a.mdb");
        ASSERT_NE(database, nullptr);
        ChangeAtRandom(*database, 5, 20);
        ASSERT_TRUE(database->Flush().ok());
        ChangeAtRandom(*database, 6, 20);
        const auto killed = files.Kill();
        auto other = killed->Get("a.mdb");
        EncodeFile(other, kKey);
        const auto plain_rows = AllRows(*OpenDatabase(MakeMemoryPageStore(4096, other), "")
                                             .value()
                                             ->FindTable(u"Games")
                                             .value());
        EncodeFile(other, kKey + 1);
        killed->Put("a.mdb", other);
        const auto again = OpenIn(*killed, "a.mdb");
        ASSERT_NE(again, nullptr);
        EXPECT_EQ(AllRows(*again->FindTable(u"Games").value()), plain_rows);
    }
}

TEST_F(EncodedFileTest, AWrongKeyGivesNoDatabase) {
    std::vector<std::byte> bytes = Encoded(plain_);
    bytes[0x3F] ^= std::byte{1};
    const auto opened = OpenDatabase(MakeMemoryPageStore(4096, bytes), "file.mdb");
    EXPECT_EQ(opened.status().number(), 3343);
}

TEST_F(EncodedFileTest, OnlyAPasswordIsAskedFor) {
    std::vector<std::byte> bytes = Encoded(plain_);
    bytes[0x42] ^= std::byte{'x'};
    const auto opened = OpenDatabase(MakeMemoryPageStore(4096, bytes), "file.mdb");
    EXPECT_EQ(opened.status().number(), 3031);
    EXPECT_TRUE(opened.status().message().starts_with("Not a valid password."));
}

class EncodedSampleTest : public testing::TestWithParam<std::filesystem::path> {};

TEST_P(EncodedSampleTest, IsReadAndChangedLikeItsPlainTwin) {
    const std::vector<std::byte> plain = ReadWholeFile(GetParam());
    const TemporaryFolder folder;
    const auto path = folder.path() / "encoded.mdb";
    WriteWholeFile(path, Encoded(plain));
    EXPECT_TRUE(test_support::DatabaseIsSound(path));
    const auto database = OpenCopy(path).value();
    const std::vector<std::u16string> names = database->TableNames().value();
    EXPECT_FALSE(names.empty());
    for (const std::u16string& name : names)
        CompareWithExport(path, *database->FindTable(name).value());
    ExpectTwins(plain, 300);
}

INSTANTIATE_TEST_SUITE_P(Files, EncodedSampleTest,
                         testing::ValuesIn(OurFilesAndReal(
                             {"databases/catalogue-jet3.mdb", "databases/catalogue-jet4.mdb"},
                             {"mdb/a97-tables.mdb", "mdb/a2003-relations.mdb"})),
                         NameOfFile);

}  // namespace
}  // namespace jet::test
