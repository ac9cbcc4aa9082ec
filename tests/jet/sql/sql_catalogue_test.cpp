// Every statement that the program sends, on a catalogue with the columns of an old one.
#include "jet/sql/sql_fixture.h"

namespace {

using test_support::ShownRows;
using test_support::SqlFixture;

class SqlCatalogue : public SqlFixture {
protected:
    void SetUp() override {
        ASSERT_EQ(Run(u"CREATE TABLE Tables (ID COUNTER PRIMARY KEY, DisplayName TEXT(255), "
                      u"FileName TEXT(255), Author TEXT(100), Company TEXT(100), [Year] TEXT(20), "
                      u"Version TEXT(50), ImageFile TEXT(255), FlyerFile TEXT(255), Notes MEMO, "
                      u"PinMame YESNO, Favorite YESNO)"),
                  "0");
        Add(u"Firepower", u"C:\\Tables\\Firepower.vpt", u"Ann", u"Williams", u"1980");
        Add(u"Taxi", u"C:\\Tables\\Taxi.vpt", u"bob", u"Williams", u"1988");
        Add(u"O''Brien''s", u"C:\\Tables\\O''Brien''s.vpt", u"ANN", u"", u"");
    }

    void Add(std::u16string_view name, std::u16string_view file, std::u16string_view author,
             std::u16string_view company, std::u16string_view year) {
        std::u16string sql =
            u"INSERT INTO Tables (DisplayName, FileName, Author, Company, [Year]) VALUES ('";
        for (const std::u16string_view value : {name, file, author, company, year})
            sql.append(value).append(u"','");
        sql.resize(sql.size() - 2);
        ASSERT_EQ(Run(sql + u")"), "1");
    }

    void Upgrade() {
        for (const std::u16string_view sql : kUpgrade)
            Run(sql);
    }

    static constexpr std::u16string_view kUpgrade[] = {
        u"Alter Table TABLES ADD RulesFile varchar(255) NULL",
        u"Alter Table TABLES ADD FileDate DATE NULL",
        u"Alter Table TABLES ADD RulesText memo NULL",
        u"Alter Table TABLES ADD TimesPlayed INT DEFAULT 0 NULL",
        u"Alter Table TABLES ADD LastPlayed DATE NULL",
        u"Alter Table TABLES ADD DateAdded DATE NULL",
        u"Alter Table TABLES ADD CRC VarChar(50) NULL ",
    };
};

TEST_F(SqlCatalogue, TheUpgradeAddsItsSevenColumnsOnce) {
    for (const std::u16string_view sql : kUpgrade)
        EXPECT_EQ(Run(sql), "0");
    EXPECT_EQ(Table(u"Tables").design().columns.size(), 19U);
    for (const std::u16string_view sql : kUpgrade)
        EXPECT_EQ(ErrorOf(sql), 3380);
    EXPECT_EQ(Table(u"Tables").design().columns.size(), 19U);
}

TEST_F(SqlCatalogue, UpgradeColumnsHaveTheirTypes) {
    Upgrade();
    const auto& columns = Table(u"Tables").design().columns;
    EXPECT_EQ(columns[12].name, u"RulesFile");
    EXPECT_EQ(columns[12].type, jet::ColumnType::kText);
    EXPECT_EQ(columns[12].size, 255);
    EXPECT_EQ(columns[14].type, jet::ColumnType::kMemo);
    EXPECT_EQ(columns[15].type, jet::ColumnType::kLong);
    EXPECT_EQ(columns[15].default_value, u"0");
    EXPECT_FALSE(columns[15].required);
    EXPECT_EQ(columns[16].type, jet::ColumnType::kDate);
    EXPECT_EQ(columns[18].size, 50);
}

TEST_F(SqlCatalogue, ANewColumnIsNullInOldRowsAndItsDefaultInNewOnes) {
    Upgrade();
    Add(u"New", u"n.vpt", u"", u"", u"");
    EXPECT_EQ(Run(u"select TimesPlayed from Tables"), "<null>|<null>|<null>|0");
}

TEST_F(SqlCatalogue, TheDateStampReachesUndatedRowsOnly) {
    Upgrade();
    Run(u"UPDATE Tables SET DateAdded = #1/2/2003# WHERE ID = 2");
    EXPECT_EQ(Run(u"Update tables set DateAdded = '20-Nov-26' Where (isNull(DateAdded) or "
                  u"DateAdded = '')"),
              "2");
    EXPECT_EQ(Run(u"Select DateAdded from Tables"), "11/20/2026|1/2/2003|11/20/2026");
    EXPECT_EQ(Run(u"Update tables set DateAdded = '21-Nov-26' Where (isNull(DateAdded) or "
                  u"DateAdded = '')"),
              "0");
}

TEST_F(SqlCatalogue, FixedFilters) {
    Run(u"UPDATE Tables SET PinMame = True WHERE ID = 1");
    Run(u"UPDATE Tables SET Favorite = Yes WHERE ID = 2");
    EXPECT_EQ(Run(u"Select ID from Tables"), "1|2|3");
    EXPECT_EQ(Run(u"Select ID from Tables where pinmame = true"), "1");
    EXPECT_EQ(Run(u"Select ID from Tables where pinmame = false"), "2|3");
    EXPECT_EQ(Run(u"Select ID from Tables where Favorite = true"), "2");
}

TEST_F(SqlCatalogue, TextFiltersCompareAsText) {
    EXPECT_EQ(Run(u"Select ID from Tables Where Author = 'ann'"), "1|3");
    EXPECT_EQ(Run(u"Select ID from Tables Where Author > 'ann'"), "2");
    EXPECT_EQ(Run(u"Select ID from Tables Where Author <> 'ann'"), "2");
    EXPECT_EQ(Run(u"Select ID from Tables Where Year > '1980'"), "2");
    EXPECT_EQ(Run(u"Select ID from Tables Where Company = 'WILLIAMS'"), "1|2");
}

TEST_F(SqlCatalogue, NumberAndDateFilters) {
    Upgrade();
    Run(u"UPDATE Tables SET TimesPlayed = ID, FileDate = DateSerial(2020, ID, 1)");
    EXPECT_EQ(Run(u"Select ID from Tables Where TimesPlayed > 1"), "2|3");
    EXPECT_EQ(Run(u"Select ID from Tables Where TimesPlayed = 0"), "");
    EXPECT_EQ(Run(u"Select ID from Tables Where(([Tables]![FileDate]=#2/1/2020#))"), "2");
    EXPECT_EQ(Run(u"Select ID from Tables Where(([Tables]![FileDate]>#1-Feb-20#))"), "3");
    EXPECT_EQ(Run(u"Select ID from Tables Where(([Tables]![FileDate]<>#2/1/2020#)) Order By "
                  u"DisplayName Desc"),
              "3|1");
}

TEST_F(SqlCatalogue, OrdersSortWithoutRegardToCase) {
    EXPECT_EQ(Run(u"Select DisplayName from Tables Order By DisplayName Asc"),
              "Firepower|O'Brien's|Taxi");
    EXPECT_EQ(Run(u"Select ID from Tables Order By Author Desc"), "2|1|3");
    EXPECT_EQ(Run(u"Select ID from Tables Order By Year Asc"), "3|1|2");
}

TEST_F(SqlCatalogue, DistinctValuesComeSortedAndWithoutNulls) {
    Run(u"UPDATE Tables SET Company = NULL WHERE ID = 2");
    EXPECT_EQ(Run(u"Select distinct Company from Tables"), "<null>||Williams");
    EXPECT_EQ(Run(u"Select distinct Company from Tables Where Company <> NULL And Company <> ''"),
              "Williams");
    EXPECT_EQ(Run(u"Select distinct Author from Tables Where Author <> NULL And Author <> ''"),
              "Ann|bob");
    EXPECT_EQ(Run(u"Select distinct Year from Tables Where Year <> NULL And Year <> ''"),
              "1980|1988");
    EXPECT_EQ(Run(u"Select ID from Tables Where Company = NULL"), "");
}

TEST_F(SqlCatalogue, DistinctDatesComeNullsFirst) {
    Upgrade();
    Run(u"UPDATE Tables SET DateAdded = #5/6/2007# WHERE ID = 1");
    EXPECT_EQ(Run(u"Select Distinct DateAdded from Tables"), "<null>|5/6/2007");
    EXPECT_EQ(Run(u"Select distinct TimesPlayed from Tables"), "<null>");
}

TEST_F(SqlCatalogue, QuotesAndBarsArriveAsChrConcatenations) {
    EXPECT_EQ(Run(u"Select ID from tables where FileName = 'C:\\Tables\\O' & chr(39) & 'Brien' & "
                  u"chr(39) & 's.vpt'"),
              "3");
    EXPECT_EQ(Run(u"select notes from tables where Filename = 'a' & chr(124) & 'b'"), "");
}

TEST_F(SqlCatalogue, AKnownFileIsFoundWithoutRegardToCase) {
    EXPECT_EQ(Run(u"Select FileName from Tables where filename = 'c:\\tables\\TAXI.VPT'"),
              "C:\\Tables\\Taxi.vpt");
    EXPECT_EQ(Run(u"Select FileName from Tables where filename = 'C:\\Tables\\O''Brien''s.vpt'"),
              "C:\\Tables\\O'Brien's.vpt");
}

TEST_F(SqlCatalogue, ANewTableIsInserted) {
    Upgrade();
    EXPECT_EQ(Run(u"INSERT INTO TABLES (DisplayName,FileName,FIleDate,CRC,DateAdded) Values "
                  u"('It''s', 'C:\\T\\It''s.vpt','11/20/2026 3:04:05 PM','89ABCDEF','20-Nov-26')"),
              "1");
    EXPECT_EQ(Run(u"Select ID, FileDate, CRC, DateAdded, TimesPlayed, PinMame from Tables where "
                  u"DisplayName = 'It''s'"),
              "4,11/20/2026 3:04:05 PM,89ABCDEF,11/20/2026,0,False");
    EXPECT_EQ(Run(u"SELECT @@IDENTITY"), "4");
}

TEST_F(SqlCatalogue, APlayIsCounted) {
    Upgrade();
    Run(u"UPDATE Tables SET TimesPlayed = 4");
    EXPECT_EQ(
        Run(u"UPDATE Tables SET Tables.TimesPlayed = [Tables]![TimesPlayed]+1, Tables.LastPlayed = "
            u"Format(Now(),'mm/dd/yyyy hh:nn:ss') WHERE Tables.ID = 2"),
        "1");
    EXPECT_EQ(Run(u"Select TimesPlayed, LastPlayed from Tables"),
              "4,<null>|5,11/20/2026 3:04:05 PM|4,<null>");
}

TEST_F(SqlCatalogue, APlayOfANullCountStaysNull) {
    Upgrade();
    Run(u"UPDATE Tables SET Tables.TimesPlayed = [Tables]![TimesPlayed]+1 WHERE Tables.ID = 2");
    EXPECT_EQ(Run(u"Select TimesPlayed from Tables where ID = 2"), "<null>");
}

TEST_F(SqlCatalogue, PlayCountsAreReset) {
    Upgrade();
    EXPECT_EQ(Run(u"UPDATE Tables SET Tables.TimesPlayed = 0, lastplayed = NULL "), "3");
    EXPECT_EQ(Run(u"Select TimesPlayed, LastPlayed from Tables"), "0,<null>|0,<null>|0,<null>");
}

TEST_F(SqlCatalogue, FavoritesAreToggledByName) {
    EXPECT_EQ(Run(u"Update tables set favorite = true where displayname= 'O''Brien''s'"), "1");
    EXPECT_EQ(Run(u"select Favorite from tables where DisplayName = 'O' & chr(39) & 'Brien' & "
                  u"chr(39) & 's'"),
              "True");
    EXPECT_EQ(Run(u"Update tables set favorite = false where displayname= 'O''Brien''s'"), "1");
    EXPECT_EQ(Run(u"Select ID from Tables where Favorite = true"), "");
}

TEST_F(SqlCatalogue, ARowIsDeletedByItsNumber) {
    EXPECT_EQ(Run(u"Delete from tables where ID = 2"), "1");
    EXPECT_EQ(Run(u"Select ID from Tables"), "1|3");
    EXPECT_EQ(Run(u"Select * from Tables where ID = 2"), "");
}

TEST_F(SqlCatalogue, TheFileDateColumnIsMadeANullableDate) {
    Upgrade();
    Run(u"UPDATE Tables SET FileDate = #1/2/2003#");
    EXPECT_EQ(Run(u"Alter table tables alter column filedate DATE NULL"), "0");
    EXPECT_EQ(Table(u"Tables").design().columns[13].name, u"FileDate");
    EXPECT_EQ(Run(u"Select FileDate from Tables where ID = 1"), "1/2/2003");
}

TEST_F(SqlCatalogue, LauncherDataIsImported) {
    Upgrade();
    Run(u"UPDATE Tables SET CRC = '12AB' WHERE ID = 1");
    Run(u"UPDATE Tables SET DateAdded = #1/1/2010# WHERE ID = 1");
    EXPECT_EQ(Run(u"Select ID from Tables where (CRC = '12ab')"), "1");
    EXPECT_EQ(
        Run(u"Select ID from Tables where (CRC = '12ab' AND [Tables]![DateAdded] > #1/1/2010#)"),
        "");
    EXPECT_EQ(Run(u"Select ID from Tables where (DisplayName = 'Taxi')"), "2");
    EXPECT_EQ(
        Run(u"Update TABLES Set tables.Version = '1.0', tables.Author='O''Neil', tables.Year= "
            u"'1999',tables.Company='Gottlieb', tables.PinMame =True Where (Tables.CRC= '12AB')"),
        "1");
    EXPECT_EQ(Run(u"Update TABLES Set tables.Version = '', tables.Author='', tables.Year= "
                  u"'',tables.Company='-', tables.PinMame =False Where (Tables.DisplayName= 'Taxi' "
                  u"AND [Tables]![DateAdded] > #1/1/2000#)"),
              "0");
    EXPECT_EQ(Run(u"Select Version, Author, Year, Company, PinMame from Tables where ID = 1"),
              "1.0,O'Neil,1999,Gottlieb,True");
}

TEST_F(SqlCatalogue, ASecondOccurrenceOfAKeyFailsTheWholeStatement) {
    EXPECT_EQ(ErrorOf(u"INSERT INTO Tables (ID) VALUES (1)"), 3022);
    EXPECT_EQ(ErrorOf(u"UPDATE Tables SET ID = 3"), 3022);
    EXPECT_EQ(Run(u"Select ID from Tables"), "1|2|3");
}

TEST_F(SqlCatalogue, AStatementThatFailsHalfWayChangesNothing) {
    Upgrade();
    EXPECT_EQ(ErrorOf(u"UPDATE Tables SET FileDate = IIf(ID = 3, 'x', '1/1/2001')"), 3464);
    EXPECT_EQ(Run(u"Select FileDate from Tables"), "<null>|<null>|<null>");
}

TEST_F(SqlCatalogue, TheKeyServesALookup) {
    EXPECT_EQ(Table(u"Tables").ranges(), 0);
    Run(u"Select * from Tables where ID = 2");
    EXPECT_EQ(Table(u"Tables").ranges(), 1);
    Run(u"UPDATE Tables SET Notes = 'x' WHERE Tables.ID = 2");
    EXPECT_EQ(Table(u"Tables").ranges(), 2);
}

TEST_F(SqlCatalogue, AReadOnlyDatabaseRefusesChangesAndStillAnswers) {
    memory->set_read_only(true);
    EXPECT_EQ(ErrorOf(u"Update tables set favorite = true"), 3073);
    EXPECT_EQ(ErrorOf(u"Delete from tables where ID = 2"), 3073);
    EXPECT_EQ(ErrorOf(u"INSERT INTO Tables (DisplayName) VALUES ('x')"), 3073);
    EXPECT_EQ(ErrorOf(u"Alter Table TABLES ADD CRC VarChar(50) NULL "), 3027);
    EXPECT_EQ(Run(u"Select ID from Tables"), "1|2|3");
}

}  // namespace
