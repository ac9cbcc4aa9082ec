// A new file against the one that the engine itself wrote.
#include "base/byte_reader.h"
#include "base/unicode.h"
#include "jet/check/check.h"
#include "jet/connection.h"
#include "jet/pages/format.h"
#include "jet/pages/page_header.h"
#include "jet/pages/rc4.h"
#include "jet/tables/storage_support.h"
#include "platform/file_system.h"
#include "support/check_database.h"
#include "support/faulty_file_system.h"

#include <gtest/gtest.h>

#include <set>

namespace jet::test {
namespace {

constexpr std::size_t kPage = 4096;

double CreationDate(std::vector<std::byte> file) {
    const std::array key = {std::byte{0xC7}, std::byte{0xDA}, std::byte{0x39}, std::byte{0x6B}};
    ApplyRc4(key, std::span(file).subspan(0x18, 128));
    return base::LoadDouble(file.data() + 0x72);
}

// Bytes of definitions that the engine leaves as they happen to be.
std::set<std::size_t> RubbishOf(std::size_t page, std::size_t columns, std::size_t indexes,
                                std::size_t name_bytes) {
    std::set<std::size_t> rubbish;
    const std::size_t start = page * kPage;
    const std::size_t first_column = start + 63 + 12 * indexes;
    for (std::size_t c = 0; c < columns; ++c)
        rubbish.insert({first_column + 25 * c + 21, first_column + 25 * c + 22});
    const std::size_t first_index = first_column + 25 * columns + name_bytes;
    for (std::size_t i = 0; i < indexes; ++i) {
        for (std::size_t c = 1; c < 10; ++c)
            rubbish.insert(first_index + 52 * i + 4 + 3 * c + 2);
        for (std::size_t b = 42; b < 46; ++b)
            rubbish.insert(first_index + 52 * i + b);
    }
    return rubbish;
}

std::size_t NameBytes(const std::vector<std::u16string>& names) {
    std::size_t bytes = 0;
    for (const std::u16string& name : names)
        bytes += 2 + 2 * name.size();
    return bytes;
}

// What a new file has where, in both versions: the layout that the first engines chose.
struct Layout {
    int version;
    std::size_t page_bytes;
    std::vector<std::uint32_t> definition_bytes;                    // of pages 2 to 5
    std::vector<std::pair<std::size_t, std::uint16_t>> free_bytes;  // of a page
    std::vector<std::size_t> index_pages;
};

void PrintTo(const Layout& layout, std::ostream* out) {
    *out << "version " << layout.version;
}

class NewFileLayoutTest : public testing::TestWithParam<Layout> {};

TEST_P(NewFileLayoutTest, EveryPageIsInItsPlace) {
    const Layout& layout = GetParam();
    const TemporaryFolder folder;
    const auto path = folder.path() / "new.mdb";
    ASSERT_TRUE(
        CreateDatabaseFile(*platform::MakeFileSystem(), path, 45000.5, layout.version).ok());
    const auto bytes = ReadWholeFile(path);
    const auto at = [&](std::size_t page, std::size_t offset) {
        return bytes.data() + page * layout.page_bytes + offset;
    };
    for (std::size_t i = 0; i < layout.definition_bytes.size(); ++i) {
        EXPECT_EQ(*at(2 + i, 0), std::byte{2}) << i;
        EXPECT_EQ(base::LoadLittle<std::uint32_t>(at(2 + i, 8)), layout.definition_bytes[i]) << i;
    }
    for (const auto& [page, free] : layout.free_bytes) {
        EXPECT_EQ(*at(page, 0), std::byte{1}) << page;
        EXPECT_EQ(base::LoadLittle<std::uint16_t>(at(page, 2)), free) << page;
    }
    for (const std::size_t page : layout.index_pages)
        EXPECT_EQ(*at(page, 0), std::byte{4}) << page;
}

INSTANTIATE_TEST_SUITE_P(
    Versions, NewFileLayoutTest,
    testing::Values(
        Layout{4, 4096, {1050, 335, 525, 813}, {{1, 3940}, {6, 1881}}, {7, 8, 9, 10, 11, 12, 13}},
        Layout{3,
               2048,
               {708, 223, 319, 526},
               {{1, 1768}, {6, 13}, {7, 1903}, {8, 1903}, {10, 1903}, {12, 283}},
               {9, 11, 13, 14, 15, 16, 17}}),
    [](const auto& layout) { return "Jet" + std::to_string(layout.param.version); });

// Parameter: a file that the engine which chose the layout has made.
class NewFileOfTheEngineTest : public testing::TestWithParam<std::filesystem::path> {};

GTEST_ALLOW_UNINSTANTIATED_PARAMETERIZED_TEST(NewFileOfTheEngineTest);
INSTANTIATE_TEST_SUITE_P(RealFiles, NewFileOfTheEngineTest,
                         testing::ValuesIn(OurFilesAndReal({}, {"mdb/jet4-engine-fresh.mdb"})),
                         NameOfFile);

TEST_P(NewFileOfTheEngineTest, IsTheOneThatIsMade) {
    const auto expected = ReadWholeFile(GetParam());
    const TemporaryFolder folder;
    const auto path = folder.path() / "new.mdb";
    const auto files = platform::MakeFileSystem();
    const base::Status created = CreateDatabaseFile(*files, path, CreationDate(expected));
    ASSERT_TRUE(created.ok()) << created.message();
    const auto actual = ReadWholeFile(path);
    ASSERT_EQ(actual.size(), expected.size());

    std::set<std::size_t> ignored = RubbishOf(
        2, 17, 2,
        NameBytes({u"Connect", u"Database", u"DateCreate", u"DateUpdate", u"Flags", u"ForeignName",
                   u"Id", u"Lv", u"LvExtra", u"LvModule", u"LvProp", u"Name", u"Owner", u"ParentId",
                   u"RmtInfoLong", u"RmtInfoShort", u"Type"}));
    ignored.merge(RubbishOf(3, 4, 1, NameBytes({u"ACM", u"FInheritable", u"ObjectId", u"SID"})));
    ignored.merge(RubbishOf(4, 8, 1,
                            NameBytes({u"Attribute", u"Expression", u"Flag", u"LvExtra", u"Name1",
                                       u"Name2", u"ObjectId", u"Order"})));
    ignored.merge(
        RubbishOf(5, 8, 3,
                  NameBytes({u"ccolumn", u"grbit", u"icolumn", u"szColumn", u"szObject",
                             u"szReferencedColumn", u"szReferencedObject", u"szRelationship"})));
    // Dates of the catalog's rows.
    for (std::size_t slot = 0; slot < 8; ++slot) {
        const std::size_t word =
            base::LoadLittle<std::uint16_t>(expected.data() + 14 * kPage + 14 + 2 * slot);
        for (std::size_t b = 12; b < 28; ++b)
            ignored.insert(14 * kPage + (word & 0x1FFF) + b);
    }
    std::size_t differences = 0;
    for (std::size_t at = 0; at < actual.size(); ++at) {
        if (actual[at] == expected[at] || ignored.contains(at)) continue;
        if (++differences < 40)
            ADD_FAILURE() << "page " << at / kPage << " byte " << at % kPage << ": "
                          << std::to_integer<int>(actual[at]) << ", the engine has "
                          << std::to_integer<int>(expected[at]);
    }
    EXPECT_EQ(differences, 0U);
}

// Parameter: the version of the format.
class NewFileTest : public testing::TestWithParam<int> {
protected:
    void SetUp() override {
        const base::Status created =
            CreateDatabaseFile(*platform::MakeFileSystem(), path_, 45000.5, GetParam());
        ASSERT_TRUE(created.ok()) << created.message();
    }

    TemporaryFolder folder_;
    std::filesystem::path path_ = folder_.path() / "new.mdb";
};

TEST_P(NewFileTest, HasNoFaultAndNoTableOfAUser) {
    const auto pages = LoadIntoMemory(path_);
    EXPECT_EQ(pages->page_count(), GetParam() == 3 ? 20U : 16U);
    const CheckReport report = CheckIntegrity(*pages, test_support::kOwnFile);
    EXPECT_TRUE(test_support::PagesAreSound(*pages, test_support::kOwnFile));
    EXPECT_EQ(report.warnings, 0U);
    EXPECT_EQ(report.tables, 4U);
    EXPECT_EQ(report.rows, 8U + 16U);
    EXPECT_EQ(report.index_entries, 2U * 8U + 16U);
    const auto database = OpenCopy(path_).value();
    EXPECT_EQ(database->jet_version(), GetParam());
    EXPECT_TRUE(database->TableNames().value().empty());
}

TEST_P(NewFileTest, OtherProgramsReadIt) {
    EXPECT_EQ(OutputOf({"mdb-ver", path_.string()}), GetParam() == 3 ? "JET3\n" : "JET4\n");
    EXPECT_EQ(OutputOf({"mdb-tables", "-S", "-1", path_.string()}),
              "MSysObjects\nMSysACEs\nMSysQueries\nMSysRelationships\n");
    const auto database = OpenCopy(path_).value();
    // Other programs show Owner as it is stored.
    const auto rows = ExportedRows(path_, "MSysACEs").value();
    EXPECT_EQ(rows.size(), 16U);
    EXPECT_EQ(ExportedRows(path_, "MSysQueries").value().size(), 0U);
    CompareWithExport(path_, *database->FindTable(u"MSysRelationships").value());
}

// Version 3 knows no automatic scrambling: who owns what stands there as it is.
TEST(NewFileOfVersion3Test, OwnersAreStoredPlain) {
    const TemporaryFolder folder;
    const auto path = folder.path() / "new.mdb";
    ASSERT_TRUE(CreateDatabaseFile(*platform::MakeFileSystem(), path, 45000.5, 3).ok());
    const auto names = ExportedNames(path, "MSysObjects");
    const auto rows = ExportedRows(path, "MSysObjects").value();
    const auto column_of = [&](const char* name) {
        return static_cast<std::size_t>(std::ranges::find(names, name) - names.begin());
    };
    std::vector<std::string> owners;
    for (const TextRow& row : rows)
        owners.push_back(row[column_of("Name")].value() + " " + row[column_of("Owner")].value());
    EXPECT_EQ(owners,
              (std::vector<std::string>{"Tables 0203", "Databases 0203", "Relationships 0203",
                                        "MSysDb 0301", "MSysObjects 0203", "MSysACEs 0203",
                                        "MSysQueries 0203", "MSysRelationships 0203"}));
}

TEST(NewFileOfVersion3Test, TakesATableOfEveryTypeThatMdbToolsRead) {
    const TemporaryFolder folder;
    const auto path = folder.path() / "new.mdb";
    const auto files = platform::MakeFileSystem();
    ASSERT_TRUE(CreateDatabaseFile(*files, path, 45000.5, 3).ok());
    Connection connection(*files);
    ASSERT_TRUE(connection.Open(u"Data Source=" + path.u16string()).ok());
    for (const char16_t* sql :
         {u"CREATE TABLE Games (ID COUNTER PRIMARY KEY, Name TEXT(100), Players BYTE, Made SHORT, "
          u"Price MONEY, Weight SINGLE, Rating DOUBLE, Sold DATETIME, Solid YESNO, Tag BINARY(20), "
          u"Mark GUID, Notes MEMO, Picture LONGBINARY)",
          u"CREATE INDEX ByName ON Games (Name, Made DESC)",
          u"INSERT INTO Games (Name, Players, Made, Price, Weight, Rating, Sold, Solid, Notes) "
          u"VALUES ('Caf\u00E9', 4, 1988, 12.5, 0.25, 7.75, #5/6/1988#, True, 'Short')",
          u"INSERT INTO Games (Name, Notes) VALUES ('Fathom', String(500, 'x'))",
          u"INSERT INTO Games (Name, Notes) VALUES ('Taxi', String(9000, 'y'))"}) {
        const auto done = connection.Execute(sql);
        ASSERT_TRUE(done.ok()) << base::ToUtf8(sql) << done.status().message();
    }
    ASSERT_TRUE(connection.Close().ok());
    EXPECT_TRUE(test_support::DatabaseIsSound(path, test_support::kOwnFile));
    EXPECT_EQ(OutputOf({"mdb-tables", "-1", path.string()}), "Games\n");
    const std::string schema = OutputOf({"mdb-schema", path.string()}).value_or("");
    for (const char* part : {"[ID]", "Long Integer", "[Name]", "Text (100)", "Currency", "Single",
                             "DateTime", "Boolean", "Memo/Hyperlink", "OLE"})
        EXPECT_NE(schema.find(part), std::string::npos) << part << schema;
    const auto database = OpenCopy(path).value();
    Table& table = *database->FindTable(u"Games").value();
    CompareWithExport(path, table);
    EXPECT_EQ(AllRows(table).size(), 3U);
    EXPECT_EQ(AllRows(table)[2][11], Value::Text(std::u16string(9000, u'y')));
}

INSTANTIATE_TEST_SUITE_P(Versions, NewFileTest, testing::Values(4, 3),
                         [](const auto& version) { return "Jet" + std::to_string(version.param); });

// Whatever fails, and by half: no file is left that would be taken for a catalogue.
TEST(DatabaseCreationTest, AFailedCreationLeavesNothingBehind) {
    using test_support::FaultKind;
    const std::filesystem::path path = "folder/new.mdb";
    for (const FaultKind kind : {FaultKind::kRefuse, FaultKind::kHalf, FaultKind::kDoneButFail}) {
        std::uint64_t failed = 0;
        for (std::uint64_t call = 1;; ++call) {
            test_support::FaultyFileSystem files;
            files.SetPlan({call, kind, base::StatusCode::kNoSpace});
            const base::Status created = CreateDatabaseFile(files, path, 45000);
            if (!files.fault_happened()) break;
            ++failed;
            EXPECT_EQ(created.code(), base::StatusCode::kNoSpace) << call;
            EXPECT_FALSE(files.Exists(path)) << call;
            files.SetPlan({});
            EXPECT_TRUE(CreateDatabaseFile(files, path, 45000).ok()) << call;
            EXPECT_EQ(files.Get(path).size(), 16U * kPage);
        }
        EXPECT_GE(failed, 4U);  // open, write, sync, sync of the folder
    }
}

TEST(DatabaseCreationTest, ANewFileOutlivesAPowerCut) {
    const std::filesystem::path path = "folder/new.mdb";
    test_support::FaultyFileSystem files;
    ASSERT_TRUE(CreateDatabaseFile(files, path, 45000).ok());
    for (std::uint32_t seed = 0; seed < 20; ++seed)
        EXPECT_EQ(files.CutPower(seed)->Get(path), files.Get(path)) << seed;
}

TEST(DatabaseCreationTest, ExistingFileIsNotReplaced) {
    const TemporaryFolder folder;
    const auto path = folder.path() / "new.mdb";
    const auto files = platform::MakeFileSystem();
    WriteWholeFile(path, std::vector<std::byte>(10));
    const base::Status created = CreateDatabaseFile(*files, path, 45000);
    EXPECT_EQ(created.number(), 3204);
    EXPECT_EQ(ReadWholeFile(path).size(), 10U);
}

}  // namespace
}  // namespace jet::test
