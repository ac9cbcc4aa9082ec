#include "exchange/row_import.h"

#include "catalogue/selection.h"
#include "exchange/exchange_file.h"
#include "exchange/table_exchange.h"

#include "support/catalogue_fixture.h"
#include "support/check_database.h"
#include "support/qt_text.h"
#include "support/temporary_dir.h"
#include "support/told_runner.h"

#include <QtCore/QFile>

namespace exchange {
namespace {

using test_support::S;

class RowImportTest : public test_support::CatalogueFixture {
protected:
    void SetUp() override {
        CatalogueFixture::SetUp();
        Execute(S("INSERT INTO Tables (DisplayName, FileName, CRC, Author, TimesPlayed) "
                  "VALUES ('Attack', '/t/Attack.vpt', 'AB12', 'Some One', 3)"));
        Execute(S("INSERT INTO Tables (DisplayName, FileName, CRC) "
                  "VALUES ('Taxi', '/t/Taxi.vpt', 'CD34')"));
    }

    ImportReport Import(std::string_view bytes, const ImportOptions& options = {},
                        Format format = Format::kCsv) {
        const auto source = MakeRowSource(bytes, format);
        auto report = ImportRows(*connection, *source, options);
        EXPECT_TRUE(report.ok()) << report.status().message();
        return report.value_or({});
    }
    std::vector<std::string> ProblemsOf(std::string_view bytes, const ImportOptions& options = {},
                                        Format format = Format::kCsv) {
        const std::string before = Everything();
        const ImportReport report = Import(bytes, options, format);
        EXPECT_FALSE(report.accepted());
        EXPECT_EQ(Everything(), before) << "something was imported";
        std::vector<std::string> problems;
        for (const RowProblem& problem : report.problems)
            problems.push_back(std::to_string(problem.line) + ": " + problem.text);
        return problems;
    }
    std::string Everything(Format format = Format::kCsv) {
        std::string bytes;
        auto rows = connection->Execute(u"Select * from Tables");
        EXPECT_TRUE(rows.ok());
        const auto written = WriteRows(*rows, {.format = format}, [&](std::string_view piece) {
            bytes += piece;
            return base::Status();
        });
        EXPECT_TRUE(written.ok());
        return bytes;
    }
};

TEST_F(RowImportTest, StoppedItChangesNothing) {
    std::string file = "ID,DisplayName\r\n1,Renamed\r\n";
    for (int i = 0; i < 200; ++i)
        file += ",More\r\n";
    const std::string before = Everything();
    std::stop_source stop;
    std::pair<std::int64_t, std::int64_t> told;
    const base::RunSteps steps{[&](std::int64_t done, std::int64_t total) {
                                   told = {done, total};
                                   stop.request_stop();
                               },
                               stop.get_token()};
    const auto source = MakeRowSource(file, Format::kCsv);
    const auto report = ImportRows(*connection, *source, {.lines = 202}, steps);
    EXPECT_TRUE(base::IsStopped(report.status())) << report.status().message();
    EXPECT_EQ(told, (std::pair<std::int64_t, std::int64_t>(65, 202)));
    EXPECT_EQ(Everything(), before);
    EXPECT_EQ(Import(file).added, 200);
}

TEST_F(RowImportTest, AStoppedExportMakesNoFile) {
    test_support::ToldRunner runner;
    catalogue.runner = &runner;
    runner.stops_at = 0;
    catalogue::Selection all;
    all.filter_key = catalogue::kFilterAll.toString();
    all.order_caption = S("Table Name");
    all.direction = S("Asc");
    const QString path = folder.filePath(S("out.csv"));
    prompts.files = {path, path};
    EXPECT_TRUE(base::IsStopped(ExportTables(catalogue, prompts, all)));
    EXPECT_FALSE(QFile::exists(path));
    EXPECT_TRUE(prompts.messages.empty());
    runner.stops_at.reset();
    EXPECT_TRUE(ExportTables(catalogue, prompts, all).ok());
    EXPECT_TRUE(QFile::exists(path));
    ASSERT_FALSE(runner.progress.empty());
    EXPECT_EQ(runner.progress.back(), (std::pair<std::int64_t, std::int64_t>(2, 2)));
}

using testing::ElementsAre;

TEST_F(RowImportTest, ChangesOnlyWhatDiffers) {
    const ImportReport report = Import("ID,Author,Year\r\n1,Some One,1999\r\n2,,\r\n");
    EXPECT_EQ(report.changed, 1);
    EXPECT_EQ(report.unchanged, 1);
    EXPECT_EQ(report.added, 0);
    EXPECT_EQ(Scalar(S("Select [Year] from Tables where ID = 1")), S("1999"));
    EXPECT_EQ(Scalar(S("Select TimesPlayed from Tables where ID = 1")), S("3"));
}

TEST_F(RowImportTest, AddsWhatIsNotThere) {
    const ImportReport report = Import("ID,displayname\n7,Seven\n,No number\n");
    EXPECT_EQ(report.added, 2);
    EXPECT_EQ(Scalar(S("Select DisplayName from Tables where ID = 7")), S("Seven"));
    EXPECT_EQ(Scalar(S("Select ID from Tables where DisplayName = 'No number'")), S("8"));
    // A column that the file does not have gets its default.
    EXPECT_EQ(Scalar(S("Select TimesPlayed from Tables where ID = 7")), S("0"));
}

TEST_F(RowImportTest, FindsRowsByFile) {
    const ImportReport report =
        Import("FileName,Author,ID\n/T/ATTACK.VPT,New,99\n/t/More.vpt,Other,1\n",
               {.match = MatchBy::kFile});
    EXPECT_EQ(report.changed, 1);
    EXPECT_EQ(report.added, 1);
    EXPECT_EQ(Scalar(S("Select Author from Tables where ID = 1")), S("New"));
    EXPECT_EQ(Scalar(S("Select ID from Tables where FileName = '/t/More.vpt'")), S("3"));
}

TEST_F(RowImportTest, FindsRowsByChecksum) {
    EXPECT_EQ(Import("CRC,Year\ncd34,1988\n", {.match = MatchBy::kCrc}).changed, 1);
    EXPECT_EQ(Scalar(S("Select [Year] from Tables where ID = 2")), S("1988"));
}

TEST_F(RowImportTest, PassesOverNewRowsOnRequest) {
    const ImportReport report = Import("ID,Year\n1,1988\n50,1988\n", {.update_only = true});
    EXPECT_EQ(report.changed, 1);
    EXPECT_EQ(report.passed_over, 1);
    EXPECT_EQ(Scalar(S("Select Count(*) from Tables")), S("2"));
}

TEST_F(RowImportTest, ADryRunChangesNothing) {
    const std::string before = Everything();
    const ImportReport report = Import("ID,Year\n1,1988\n50,1988\n", {.dry_run = true});
    EXPECT_EQ(report.changed, 1);
    EXPECT_EQ(report.added, 1);
    EXPECT_EQ(Everything(), before);
}

TEST_F(RowImportTest, ABadRowStopsAllOfThem) {
    EXPECT_THAT(ProblemsOf("ID,TimesPlayed\n1,5\n2,often\nx,1\n9\n"),
                ElementsAre("3: TimesPlayed: \"often\" is not a number",
                            "4: ID: \"x\" is not a number",
                            "5: 1 fields where there are 2 columns"));
}

TEST_F(RowImportTest, WhatTheDatabaseRefusesStopsAllOfThem) {
    Execute(S("CREATE UNIQUE INDEX OneOfEach ON Tables (CRC)"));
    const auto problems = ProblemsOf("ID,CRC\n1,XY\n2,XY\n");
    ASSERT_EQ(problems.size(), 1u);
    EXPECT_TRUE(problems[0].starts_with("3: The changes you requested")) << problems[0];
}

TEST_F(RowImportTest, UnknownColumnsAreNamed) {
    EXPECT_THAT(ProblemsOf("ID,Colour,Size\n1,red,2\n"),
                ElementsAre("0: the catalogue has no column Colour",
                            "0: the catalogue has no column Size"));
    EXPECT_THAT(ProblemsOf("{\"ID\": 1}{\"ID\": 2, \"Colour\": 1}", {}, Format::kJson),
                ElementsAre("0: the catalogue has no column Colour"));
    const ImportReport report = Import("ID,Colour,Year\n1,red,2001\n", {.ignore_unknown = true});
    EXPECT_TRUE(report.accepted());
    EXPECT_THAT(report.unknown_columns, ElementsAre(u"Colour"));
    EXPECT_EQ(report.changed, 1);
}

TEST_F(RowImportTest, AKeyMustTell) {
    Execute(S("INSERT INTO Tables (DisplayName, CRC) VALUES ('Twin', 'CD34')"));
    EXPECT_THAT(ProblemsOf("CRC,Year\nCD34,1\nAB12,2\nab12,3\n,4\n", {.match = MatchBy::kCrc}),
                ElementsAre("2: 2 tables have the CRC CD34", "4: an earlier line has the same CRC",
                            "5: there is no CRC by which the row could be found"));
    EXPECT_THAT(ProblemsOf("Year\n1\n"),
                ElementsAre("0: there is no column ID, by which rows are to be found"));
}

// Every row of JSON has columns of its own.
TEST_F(RowImportTest, TheOrderOfRowsDoesNotMatter) {
    const std::string with = "{\"ID\": 1, \"Year\": \"1995\"}";
    const std::string without = "{\"DisplayName\": \"New\"}";
    for (const std::string& bytes : {with + without, without + with}) {
        const ImportReport report = Import(bytes, {.dry_run = true}, Format::kJson);
        EXPECT_TRUE(report.accepted()) << report.problems.front().text;
        EXPECT_EQ(report.added, 1);
        EXPECT_EQ(report.changed, 1);
    }
    const ImportOptions by_file{.match = MatchBy::kFile};
    const std::string named = "{\"FileName\": \"/t/Taxi.vpt\", \"Year\": \"1995\"}";
    EXPECT_THAT(ProblemsOf(named + "\n" + without, by_file, Format::kJson),
                ElementsAre("2: there is no FileName by which the row could be found"));
    EXPECT_THAT(ProblemsOf(without + "\n" + named, by_file, Format::kJson),
                ElementsAre("1: there is no FileName by which the row could be found"));
    EXPECT_THAT(ProblemsOf(without + without, by_file, Format::kJson),
                ElementsAre("0: there is no column FileName, by which rows are to be found"));
}

// Names that differ in letter case only are those of two files here.
TEST_F(RowImportTest, ANameAsItIsWrittenComesFirst) {
    Execute(S("INSERT INTO Tables (DisplayName, FileName) VALUES ('attack', '/t/attack.vpt')"));
    const ImportOptions by_file{.match = MatchBy::kFile};
    const std::string out = Everything();
    EXPECT_EQ(Import(out, by_file).unchanged, 3);
    EXPECT_EQ(
        Import("FileName,Author\n/t/attack.vpt,small\n/t/Attack.vpt,large\n", by_file).changed, 2);
    EXPECT_EQ(Scalar(S("Select Author from Tables where ID = 1")), S("large"));
    EXPECT_EQ(Scalar(S("Select Author from Tables where ID = 3")), S("small"));
    EXPECT_THAT(ProblemsOf("FileName,Author\n/T/TAXI.vpt,a\n/t/Taxi.vpt,b\n", by_file),
                ElementsAre("3: an earlier line has the same FileName"));
    EXPECT_EQ(Import("FileName,Author\n/t/new.vpt,a\n/t/New.vpt,b\n", by_file).added, 2);
    EXPECT_THAT(ProblemsOf("FileName,Author\n/t/x.vpt,a\n/t/x.vpt,b\n", by_file),
                ElementsAre("3: an earlier line has the same FileName"));
}

TEST(ExchangeFileTest, WhatIsNoFileIsAFailure) {
    const test_support::TemporaryDir folder;
    const QString none = folder.filePath(S("none.csv"));
    EXPECT_EQ(ReadFile(none).status().message(), "File not found: " + none.toStdString());
    EXPECT_FALSE(ReadFile(folder.path()).ok());
}

TEST(ExchangeFileTest, TheWholeFileIsRead) {
    test_support::TemporaryDir folder;
    QFile file(folder.filePath(S("rows.csv")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    const QByteArray content = QByteArray("ID,Author\r\n1,x\r\n").repeated(100'000);
    ASSERT_EQ(file.write(content), content.size());
    file.close();
    const auto bytes = ReadFile(file.fileName());
    ASSERT_TRUE(bytes.ok()) << bytes.status().message();
    EXPECT_EQ(*bytes, content);
    EXPECT_LT(bytes->capacity(), 4 * content.size());
}

TEST_F(RowImportTest, FilesThatAreNoneAreToldSo) {
    EXPECT_THAT(ProblemsOf(""), ElementsAre("0: line 1: the names of the columns are missing"));
    EXPECT_THAT(ProblemsOf("ID,id\n1,1\n"), ElementsAre("0: the column id is there twice"));
    EXPECT_THAT(ProblemsOf("ID,Year\n1,\"a\n"),
                ElementsAre("0: line 2: a quoted field does not end"));
    EXPECT_THAT(ProblemsOf("ID,Notes\n1,\xFF\n"), ElementsAre("2: the text is not UTF-8"));
    EXPECT_THAT(ProblemsOf("[{\"ID\": 1},\n{\"ID\": }]", {}, Format::kJson),
                ElementsAre(testing::StartsWith("2: no valid JSON")));
    EXPECT_THAT(ProblemsOf("{\"ID\": [1]}", {}, Format::kJsonLines),
                ElementsAre("1: an array or an object is no cell"));
}

TEST_F(RowImportTest, JsonOfOthersKeepsItsMarks) {
    EXPECT_EQ(Import("{\"ID\": 1, \"Notes\": \"\xEF\xBB\xBFmark\"}", {}, Format::kJson).changed, 1);
    EXPECT_EQ(Scalar(S("Select Len(Notes) from Tables where ID = 1")), S("5"));
}

TEST_F(RowImportTest, OnlySoManyProblemsAreKept) {
    std::string bytes = "ID,TimesPlayed\n";
    for (int i = 0; i < 500; ++i)
        bytes += "1,x\n";
    const ImportReport report = Import(bytes);
    EXPECT_EQ(report.problem_count, 500);
    EXPECT_EQ(report.problems.size(), ImportReport::kMaxProblems);
}

TEST_F(RowImportTest, TheFileIsSoundAfterwards) {
    std::string bytes = "ID,DisplayName,Notes\n";
    for (int i = 1; i <= 3000; ++i)
        bytes +=
            std::to_string(i) + ",Table " + std::to_string(i) + "," + std::string(100, 'n') + "\n";
    EXPECT_EQ(Import(bytes).added, 2998);
    ASSERT_TRUE(connection->Close().ok());
    EXPECT_TRUE(test_support::DatabaseIsSound(DatabasePath().toStdString()));
}

// What goes out comes in again, cell for cell.
class RoundTripTest : public RowImportTest, public testing::WithParamInterface<Format> {
protected:
    // Empties the catalogue and puts everything back.
    void GoOutAndIn() {
        const std::string out = Everything(GetParam());
        Execute(S("DELETE FROM Tables"));
        const ImportReport report = Import(out, {}, GetParam());
        EXPECT_TRUE(report.accepted()) << report.problems.front().text;
        EXPECT_EQ(Everything(GetParam()), out);
    }
    void SetField(int id, std::u16string_view field, const jet::Value& value) {
        jet::Recordset rows;
        ASSERT_TRUE(
            rows.Open(u"Select * from Tables where ID = " + QString::number(id).toStdU16String(),
                      *connection, jet::CursorType::kKeyset, jet::LockType::kOptimistic)
                .ok());
        ASSERT_TRUE(rows.SetField(field, value).ok());
        ASSERT_TRUE(rows.Update().ok());
    }
    jet::Value Field(int id, std::u16string_view field) {
        auto rows = connection->Execute(u"Select * from Tables where ID = " +
                                        QString::number(id).toStdU16String());
        return rows.ok() ? rows->Fields(field).value_or(jet::Value::Text(u"<error>"))
                         : jet::Value::Text(u"<error>");
    }
};

TEST_P(RoundTripTest, EveryCodePoint) {
    std::u16string all;
    for (unsigned unit = 0; unit <= 0xFFFF; ++unit)
        if (unit < 0xDC00 || unit > 0xDFFF) all += static_cast<char16_t>(unit);
    for (char32_t code = 0x10000; code < 0x110000; code += 257) {
        all += static_cast<char16_t>(0xD800 + ((code - 0x10000) >> 10));
        all += static_cast<char16_t>(0xDC00 + ((code - 0x10000) & 0x3FF));
    }
    all += u"\xDC80 a half at the end \xDCFF";
    SetField(1, u"Notes", jet::Value::Text(all));
    GoOutAndIn();
    EXPECT_EQ(Field(1, u"Notes"), jet::Value::Text(all));
}

TEST_P(RoundTripTest, LineEndsQuotesAndBlanks) {
    for (const char16_t* text :
         {u"one\r\ntwo\nthree\rfour", u"\"", u"\"quoted\"", u"a,b", u" blank ", u"\t", u"", u"\\",
          u"null", u"=SUM(A1)", u"'", u"\uFEFFmark"}) {
        SetField(1, u"Notes", jet::Value::Text(text));
        GoOutAndIn();
        EXPECT_EQ(Field(1, u"Notes"), jet::Value::Text(text));
    }
}

TEST_P(RoundTripTest, NullStaysApartFromTheEmptyText) {
    SetField(1, u"Author", jet::Value::Null());
    SetField(2, u"Author", jet::Value::Text(u""));
    GoOutAndIn();
    EXPECT_TRUE(Field(1, u"Author").is_null());
    EXPECT_EQ(Field(2, u"Author"), jet::Value::Text(u""));
}

TEST_P(RoundTripTest, DatesAndTruth) {
    SetField(1, u"FileDate", jet::Value::DateTime(46346.123456789));
    SetField(1, u"LastPlayed", jet::Value::DateTime(0.25));
    SetField(1, u"Favorite", jet::Value::Boolean(true));
    GoOutAndIn();
    EXPECT_EQ(Field(1, u"FileDate"), jet::Value::DateTime(46346.123456789));
    EXPECT_EQ(Field(1, u"LastPlayed"), jet::Value::DateTime(0.25));
    EXPECT_EQ(Field(1, u"Favorite"), jet::Value::Boolean(true));
}

std::string NameOf(const testing::TestParamInfo<Format>& format) {
    if (format.param == Format::kCsv) return "Csv";
    return format.param == Format::kJson ? "Json" : "JsonLines";
}

INSTANTIATE_TEST_SUITE_P(Formats, RoundTripTest,
                         testing::Values(Format::kCsv, Format::kJson, Format::kJsonLines), NameOf);

}  // namespace
}  // namespace exchange
