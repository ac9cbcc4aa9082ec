#include "cli/cli_fixture.h"
#include "support/qt_text.h"
#include "support/same_name.h"
#include "support/unreadable.h"

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>

namespace cli {
namespace {

using testing::HasSubstr;
using testing::Not;

using test_support::S;

class ReadingCommandsTest : public CliFixture {
protected:
    // The names in the first column.
    QStringList Names() {
        QStringList names;
        for (const QString& line :
             QString::fromStdString(console.out).split(u'\n', Qt::SkipEmptyParts))
            names.append(line.split(u'\t').front());
        return names;
    }
    QJsonObject Json() {
        const auto document = QJsonDocument::fromJson(QByteArray::fromStdString(console.out));
        EXPECT_TRUE(document.isObject()) << console.out;
        return document.object();
    }
};

TEST_F(ReadingCommandsTest, ListSortsByNameFirst) {
    EXPECT_EQ(Run("list -c DisplayName"), kDone);
    EXPECT_EQ(Names(), QStringList({S("Attack"), S("Fathom"), S("Taxi")}));
    EXPECT_EQ(Run("list -c DisplayName -d"), kDone);
    EXPECT_EQ(Names(), QStringList({S("Taxi"), S("Fathom"), S("Attack")}));
    EXPECT_EQ(
        Run(QStringList{S("list"), S("-c"), S("displayname"), S("-o"), S("Times Played"), S("-d")}),
        kDone);
    EXPECT_EQ(Names().front(), S("Attack"));
}

TEST_F(ReadingCommandsTest, ListShowsALineATable) {
    EXPECT_EQ(Run("list"), kDone);
    EXPECT_THAT(console.out,
                HasSubstr("1\tAttack\tBally\t1995\tSome One\t" + TablePath("Attack") + "\n"));
    EXPECT_TRUE(console.error.empty());
}

TEST_F(ReadingCommandsTest, NamesOfColumnsAreForTerminals) {
    console.is_terminal = true;
    EXPECT_EQ(Run("list -c ID,Notes"), kDone);
    EXPECT_THAT(console.out, HasSubstr("\033[1mID\tNotes\033[0m\n"));
    EXPECT_THAT(console.out, HasSubstr("1\tfirst\\r\\nsecond\n"));
}

TEST_F(ReadingCommandsTest, ControlCharactersAreNotObeyed) {
    Sql("UPDATE Tables SET Author = chr(27) & '[2J' & chr(9) & '\\' WHERE ID = 1");
    Run("list -c Author");
    EXPECT_THAT(console.out, HasSubstr("\\x1b[2J\\t\\\n"));
    Run("show 1");
    EXPECT_THAT(console.out, HasSubstr("Author: \\x1b[2J"));
    EXPECT_THAT(console.out, Not(HasSubstr("\033")));
}

// U+009B alone begins a command to a terminal, too.
TEST_F(ReadingCommandsTest, NoResultOnATerminalIsObeyed) {
    Sql("UPDATE Tables SET DisplayName = 'a' & chr(27) & '[2J', Author = 'b' & chrw(155) & 'c' "
        "WHERE ID = 1");
    console.is_terminal = true;
    settings.values[S("TAVOLO/GENERAL/VPEXE")] = S("/vp/vp\a.exe");
    for (const char* words : {"list", "list --json", "show 1", "show --json 1", "play 1",
                              "play --dry-run 1", "verify --json", "set -v 1 Author=x"}) {
        Run(words);
        EXPECT_FALSE(console.out.empty()) << words;
        for (const char* control : {"\033[2J", "\xC2\x9B", "\a"})
            EXPECT_THAT(console.out, Not(HasSubstr(control))) << words;
    }
}

TEST_F(ReadingCommandsTest, NoMessageIsObeyed) {
    console.in = "ID,TimesPlayed\n1,\"\033[2J\xC2\x9B\"\n";
    EXPECT_EQ(Run("import -"), kFailed);
    EXPECT_THAT(console.error, HasSubstr("\\x1b[2J\\x9b"));
    EXPECT_THAT(console.error, Not(HasSubstr("\033")));
    EXPECT_EQ(Run(QStringList{S("info"), S("/no\a/such\033")}), kFailed);
    EXPECT_EQ(console.error, "tavolo-cli: /no\\x07/such\\x1b: there is no such file\n");
}

TEST_F(ReadingCommandsTest, ListJsonHasEveryColumnByItsName) {
    EXPECT_EQ(Run("list --json"), kDone);
    const QJsonObject document = Json();
    EXPECT_EQ(document[S("schema")].toInt(), 1);
    EXPECT_EQ(document[S("columns")].toArray().size(), 19);
    const QJsonObject row = document[S("rows")].toArray()[0].toObject();
    EXPECT_EQ(row.size(), 19);
    EXPECT_EQ(row[S("ID")].toInt(), 1);
    EXPECT_EQ(row[S("Notes")].toString(), S("first\r\nsecond"));
    EXPECT_EQ(row[S("Favorite")].toBool(), true);
    EXPECT_EQ(row[S("FileDate")].toString(), S("2004-01-02 10:30:00"));
    EXPECT_TRUE(row[S("RulesFile")].isNull());
}

TEST_F(ReadingCommandsTest, UnknownColumnsAreRefused) {
    for (const char* words : {"list -c ID,Colour", "list --json -c Colour", "find All -c Colour",
                              "export -c Colour", "export --dry-run -c Colour"}) {
        EXPECT_EQ(Run(words), kWrongUsage) << words;
        EXPECT_THAT(console.error,
                    testing::StartsWith("tavolo-cli: there is no column \"Colour\"\n"));
        EXPECT_TRUE(console.out.empty());
    }
}

TEST_F(ReadingCommandsTest, ColumnsAreNamed) {
    for (const char* words : {"list --columns=", "list --columns=,", "find All --columns=ID,,CRC",
                              "export --columns=ID,"}) {
        EXPECT_EQ(Run(words), kWrongUsage) << words;
        EXPECT_THAT(console.error, HasSubstr("names no column"));
        EXPECT_TRUE(console.out.empty());
    }
}

TEST_F(ReadingCommandsTest, EveryFilterFinds) {
    const auto found = [&](const QStringList& words) {
        Run(QStringList{S("find")} + words + QStringList{S("-c"), S("DisplayName")});
        return Names();
    };
    EXPECT_EQ(found({S("All")}).size(), 3);
    EXPECT_EQ(found({S("VPinMAME")}), QStringList{S("Taxi")});
    EXPECT_EQ(found({S("pinmame")}), QStringList{S("Taxi")});
    EXPECT_EQ(found({S("Favorites")}), QStringList{S("Attack")});
    EXPECT_EQ(found({S("VP Only")}), QStringList({S("Attack"), S("Fathom")}));
    EXPECT_EQ(found({S("Author"), S("="), S("Some One")}), QStringList{S("Attack")});
    EXPECT_EQ(found({S("Company"), S("<>"), S("Bally")}), QStringList{S("Taxi")});
    EXPECT_EQ(found({S("Year"), S(">"), S("1990")}), QStringList{S("Attack")});
    EXPECT_EQ(found({S("File Date"), S("<"), S("1/1/2005")}), QStringList{S("Attack")});
    EXPECT_EQ(found({S("Times Played"), S("="), S("0")}), QStringList({S("Fathom"), S("Taxi")}));
    EXPECT_EQ(found({S("Date Added"), S(">"), S("1/1/2000")}).size(), 3);
}

TEST_F(ReadingCommandsTest, FilterValuesAreTextsAndNotSql) {
    Sql("UPDATE Tables SET Author = 'O''Brien | Co' WHERE ID = 2");
    EXPECT_EQ(Run(QStringList{S("find"), S("Author"), S("="), S("O'Brien | Co"), S("-c"), S("ID")}),
              kDone);
    EXPECT_EQ(console.out, "2\n");
}

TEST_F(ReadingCommandsTest, NothingFoundIsToldSo) {
    EXPECT_EQ(Run("find Year = 1800"), kFailed);
    EXPECT_EQ(console.error, "tavolo-cli: No matching records found\n");
    EXPECT_EQ(Run("find Year = 1800 --json"), kFailed);
    EXPECT_TRUE(Json()[S("rows")].toArray().isEmpty());
}

TEST_F(ReadingCommandsTest, FindRefusesWhatMakesNoSense) {
    const auto refused = [&](const QStringList& words) {
        EXPECT_EQ(Run(QStringList{S("find")} + words), kWrongUsage);
        return console.error.substr(0, console.error.find('\n'));
    };
    EXPECT_EQ(refused({S("Colour")}), "tavolo-cli: unknown filter 'Colour'");
    EXPECT_EQ(refused({S("All"), S("=")}), "tavolo-cli: the filter 'All' takes no value");
    EXPECT_EQ(refused({S("Year"), S("=")}),
              "tavolo-cli: the filter 'Year' needs an operator and a value");
    EXPECT_EQ(refused({S("Year"), S("like"), S("1")}),
              "tavolo-cli: unknown operator 'like': it is one of >, <, <>, =");
    EXPECT_EQ(refused({S("FileDate"), S("="), S("soon")}), "tavolo-cli: Please enter a valid date");
    EXPECT_EQ(refused({S("TimesPlayed"), S("="), S("often")}),
              "tavolo-cli: Please enter a valid number");
}

TEST_F(ReadingCommandsTest, ShowHasEveryField) {
    EXPECT_EQ(Run("show 1"), kDone);
    EXPECT_THAT(console.out, HasSubstr("DisplayName: Attack\n"));
    EXPECT_THAT(console.out, HasSubstr("Notes: first\nsecond\n"));
    EXPECT_THAT(console.out, HasSubstr("TimesPlayed: 3\n"));
    EXPECT_EQ(Run("show --json 1"), kDone);
    EXPECT_EQ(Json()[S("rows")].toArray().size(), 1);
    EXPECT_EQ(Run("show 99"), kFailed);
    EXPECT_EQ(console.error, "tavolo-cli: there is no table 99\n");
    EXPECT_EQ(Run("show Attack"), kWrongUsage);
}

TEST_F(ReadingCommandsTest, TheyWorkBesideAProgramThatHasTheCatalogue) {
    WithConnection([&](jet::Connection& connection) {
        ASSERT_TRUE(connection.Execute(u"UPDATE Tables SET Author = 'Just Now' WHERE ID = 2").ok());
        EXPECT_EQ(Run("list -c Author"), kDone) << console.error;
        EXPECT_THAT(console.out, HasSubstr("Just Now"));
        EXPECT_EQ(Run("export -"), kDone);
        EXPECT_THAT(console.out, HasSubstr("Just Now"));
        EXPECT_EQ(Run("verify --quick"), kDone);
        EXPECT_EQ(Run("set --dry-run 1 Author=Nobody"), kDone);
        EXPECT_EQ(Run("set 1 Author=Nobody"), kInUse);
        EXPECT_THAT(console.error, HasSubstr("already opened exclusively by user '"));
    });
}

TEST_F(ReadingCommandsTest, TheyChangeNothing) {
    const QByteArray before = DatabaseBytes();
    for (const char* words : {"list", "find All", "show 1", "export -", "verify", "play -n 1"})
        Run(words);
    EXPECT_EQ(DatabaseBytes(), before);
    EXPECT_EQ(QDir(folder.path()).entryList(QDir::Files), QStringList{S("pinball.mdb")});
}

TEST_F(ReadingCommandsTest, ACatalogueThatIsNotThereIsToldSo) {
    EXPECT_EQ(Run(QStringList{S("list"), S("-C"), folder.filePath(S("tables"))}), kFailed);
    EXPECT_THAT(console.error, HasSubstr("Could not find file"));
}

TEST_F(ReadingCommandsTest, APipeThatClosesEndsItQuietly) {
    console.writes_left = 0;
    console.write_error = {base::StatusCode::kIoError, "Broken pipe", platform::kPipeClosed};
    EXPECT_EQ(Run("list"), kPipeClosed);
    EXPECT_TRUE(console.error.empty()) << console.error;
}

TEST_F(ReadingCommandsTest, AFullDiskIsToldOnce) {
    console.writes_left = 0;
    console.write_error = {base::StatusCode::kNoSpace, "No space left on device", 28};
    EXPECT_EQ(Run("list --json"), kFailed);
    EXPECT_EQ(console.error, "tavolo-cli: write error: No space left on device\n");
}

TEST_F(ReadingCommandsTest, InfoTellsWhatATableFileSays) {
    const QString file = QString::fromStdString(TablePath("Attack"));
    EXPECT_EQ(Run(QStringList{S("info"), file}), kDone);
    EXPECT_THAT(console.out, HasSubstr("TableName: Attack & Co\nAuthorName: Its Author\n"));
    EXPECT_THAT(console.out, HasSubstr("Colour: red\n"));
    EXPECT_THAT(console.out, HasSubstr("Screenshot: a picture (jpg), 11 bytes\n"));
    EXPECT_EQ(Run(QStringList{S("info"), S("-j"), file}), kDone);
    const QJsonObject json = Json();
    EXPECT_EQ(json[S("fields")].toObject()[S("TableName")].toString(), S("Attack & Co"));
    EXPECT_EQ(json[S("custom")].toObject()[S("Colour")].toString(), S("red"));
    EXPECT_EQ(json[S("pictures")].toArray()[0].toObject()[S("format")].toString(), S("jpg"));
}

TEST_F(ReadingCommandsTest, InfoExtractsPictures) {
    const QString file = QString::fromStdString(TablePath("Attack"));
    const QString picture = folder.filePath(S("Attack-Screenshot.jpg"));
    const QStringList words{S("info"), file, S("-x"), folder.path()};
    EXPECT_EQ(Run(words + QStringList{S("-n")}), kDone);
    EXPECT_FALSE(QFile::exists(picture));
    EXPECT_EQ(Run(words), kDone);
    EXPECT_EQ(console.out, picture.toStdString() + "\n");
    EXPECT_EQ(QFile(picture).size(), 11);
    for (const QStringList& again : {words, words + QStringList{S("-n")}}) {
        EXPECT_EQ(Run(again), kFailed);
        EXPECT_THAT(console.error, HasSubstr("it is there already"));
    }
    EXPECT_EQ(Run(QStringList{S("info"), file, S("-x"), folder.filePath(S("none"))}), kFailed);
}

TEST_F(ReadingCommandsTest, InfoOfOtherFilesIsToldSo) {
    EXPECT_EQ(Run(QStringList{S("info"), DatabasePath()}), kFailed);
    EXPECT_EQ(console.error, "tavolo-cli: There is no table Information for this table\n");
    EXPECT_EQ(Run(QStringList{S("info"), S("/none.vpt")}), kFailed);
    EXPECT_EQ(console.error, "tavolo-cli: /none.vpt: there is no such file\n");
}

TEST_F(ReadingCommandsTest, VerifySaysWhyAFileCannotBeRead) {
    Run("crc");
    const QString path = QString::fromStdString(TablePath("Attack"));
    ASSERT_TRUE(QFile::setPermissions(DatabasePath(), QFile::Permissions(0x6644)));
    const test_support::Unreadable unreadable({path.toStdU16String()});
    EXPECT_EQ(Run("verify"), kFailed);
    EXPECT_THAT(console.out, HasSubstr("1\tunreadable\t" + TablePath("Attack") +
                                       "\tAttack.vpt: cannot be read\n"));
    EXPECT_EQ(Run("verify --json"), kFailed);
    const QJsonObject file = Json()[S("files")].toArray()[0].toObject();
    EXPECT_EQ(file[S("reason")].toString(), S("Attack.vpt: cannot be read"));
}

TEST_F(ReadingCommandsTest, VerifySeesEachKindOfTrouble) {
    EXPECT_EQ(Run("verify"), kDone);
    EXPECT_THAT(console.out, HasSubstr("1\tno checksum\t"));
    EXPECT_EQ(Run("crc"), kDone);
    EXPECT_EQ(Run("verify"), kDone);
    EXPECT_EQ(console.out, "3 tables, 0 of them with a fault; 0 faults and 0 warnings in the "
                           "database file\n");
    WriteTableFile(S("Taxi"));
    QFile taxi(QString::fromStdString(TablePath("Taxi")));
    ASSERT_TRUE(taxi.open(QIODevice::Append));
    taxi.write("x");
    taxi.close();
    QFile::remove(QString::fromStdString(TablePath("Fathom")));
    EXPECT_EQ(Run("verify"), kFailed);
    EXPECT_THAT(console.out, HasSubstr("2\tchanged\t" + TablePath("Taxi")));
    EXPECT_THAT(console.out, HasSubstr("3\tmissing\t" + TablePath("Fathom")));
    EXPECT_EQ(Run("verify -q --json"), kFailed);
    EXPECT_EQ(Json()[S("files")].toArray().size(), 1);
    EXPECT_EQ(Json()[S("sound")].toBool(true), false);
}

// A catalogue that came from another system.

TEST_F(ReadingCommandsTest, FilesThatThePathMapFindsAreVerifiedAndPlayed) {
    Sql("UPDATE Tables SET FileName = 'C:\\Tables\\' & DisplayName & '.VPT'");
    settings.values[QStringLiteral("TAVOLO/GENERAL/VPEXE")] = QStringLiteral("/bin/vp");
    EXPECT_EQ(Run("verify --quick"), kFailed);
    EXPECT_EQ(Run("play --dry-run Taxi"), kFailed);
    const catalogue::PathPair pair{QStringLiteral("c:/tables"),
                                   folder.filePath(QStringLiteral("tables"))};
    ASSERT_TRUE(catalogue::WritePathPairs(settings, {pair}).ok());
    EXPECT_EQ(Run("verify --quick"), kDone) << console.out;
    EXPECT_EQ(Run("play --dry-run Taxi"), kDone);
    const std::string line = "\"/bin/vp\" /Play -\"" + TablePath("Taxi") + "\"\n";
    EXPECT_TRUE(test_support::NamesAreEqual(QString::fromStdString(console.out),
                                            QString::fromStdString(line)))
        << console.out;
}

TEST_F(ReadingCommandsTest, APathMapThatCannotBeReadIsToldAndTheCommandGoesOn) {
    settings.values[QStringLiteral("TAVOLO/PATHS/MAP")] = QStringLiteral("[");
    EXPECT_EQ(Run("verify --quick"), kDone);
    EXPECT_THAT(console.error, testing::HasSubstr("path map"));
}

}  // namespace
}  // namespace cli
