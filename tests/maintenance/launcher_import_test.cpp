#include "maintenance/launcher_import.h"

#include "catalogue/quoting.h"
#include "maintenance/command_fixture.h"

#include <QtCore/QDir>
#include <QtCore/QElapsedTimer>

namespace maintenance {
namespace {

class FakeDisplay final : public ImportDisplay {
public:
    std::vector<bool> busy;
    QStringList reading;
    QStringList writing;
    int done = 0;

    void SetBusy(bool is_busy) override { busy.push_back(is_busy); }
    void SetReading(const QString& text) override { reading.append(text); }
    void SetWriting(const QString& text) override { writing.append(text); }
    void SetDone() override { ++done; }
};

const QString kNothingUpdated = QStringLiteral("Task Complete 0 records updated");

class LauncherImportTest : public test_support::CommandFixture {
protected:
    void AddRow(const QString& name, const QString& crc,
                const QString& added = QStringLiteral("1/1/2001")) {
        Execute(QStringLiteral("insert into Tables (DisplayName, CRC, DateAdded, Author) values "
                               "('%1', '%2', #%3#, 'before')")
                    .arg(catalogue::QuoteSql(name), catalogue::QuoteSql(crc), added));
    }
    // The import of a file of this content, which lies at the preset place.
    void Import(const QByteArray& content) {
        MakeFile(QStringLiteral("vpLauncher.dat"), content);
        LauncherImport(catalogue, prompts, events, display).ImportAll();
    }
    void ImportAfter(const QByteArray& content, const QString& date) {
        MakeFile(QStringLiteral("vpLauncher.dat"), content);
        LauncherImport(catalogue, prompts, events, display).ImportAddedAfter(date);
    }
    QString Field(const QString& column, int id = 1) {
        return Scalar(QStringLiteral("select %1 from Tables where ID = %2").arg(column).arg(id));
    }
    // Version, author, year, company and mark of a row.
    QString Row(int id = 1) {
        return Field(QStringLiteral("Version & '|' & Author & '|' & [Year] & '|' & Company & '|'"),
                     id) +
               Field(QStringLiteral("PinMame"), id);
    }
    void ExpectUpdated() {
        EXPECT_EQ(display.writing.last(), QStringLiteral("Task Complete!"));
        EXPECT_EQ(display.reading.last(), QString());
        EXPECT_EQ(display.done, 1);
        EXPECT_EQ(display.busy, (std::vector{true, false}));
        EXPECT_TRUE(prompts.messages.empty());
    }
    void ExpectNothingUpdated() {
        EXPECT_EQ(display.writing.last(), kNothingUpdated);
        EXPECT_EQ(display.done, 0);
        EXPECT_EQ(display.busy, (std::vector{true, false}));
    }

    FakeDisplay display;
};

TEST_F(LauncherImportTest, ARowIsFoundByItsChecksumAndOverwritten) {
    AddRow(QStringLiteral("Other Name"), QStringLiteral("1A2B3C4D"));
    Import("Attack\\1.1\\$1A2B3C4D\\Someone\\1999\\-\\VPinMame\r\n");
    EXPECT_EQ(Row(), QStringLiteral("1.1|Someone|1999|VPinMame|True"));
    EXPECT_EQ(Field(QStringLiteral("DisplayName")), QStringLiteral("Other Name"));
    ExpectUpdated();
}

TEST_F(LauncherImportTest, ACompanyIsStoredAndTheMarkTakenAway) {
    AddRow(QStringLiteral("t"), QStringLiteral("1A2B3C4D"));
    Execute(QStringLiteral("update Tables set PinMame = true"));
    Import("Attack\\1.1\\$1A2B3C4D\\Someone\\1999\\Bally\\");
    EXPECT_EQ(Row(), QStringLiteral("1.1|Someone|1999|Bally|False"));
}

TEST_F(LauncherImportTest, WithoutTheChecksumTheNameMustEqualTheKey) {
    AddRow(QStringLiteral("1a2b3c4d"), QStringLiteral("FFFF"));
    Import("1a2b3c4d\\1.1\\1A2B3C4D\\Someone\\1999\\Bally\\");
    EXPECT_EQ(Row(), QStringLiteral("1.1|Someone|1999|Bally|False"));
    ExpectUpdated();
}

TEST_F(LauncherImportTest, TheNameOfTheLineFindsNothing) {
    AddRow(QStringLiteral("Attack"), QStringLiteral("FFFF"));
    Import("Attack\\1.1\\1A2B3C4D\\Someone\\1999\\Bally\\");
    EXPECT_EQ(Field(QStringLiteral("Author")), QStringLiteral("before"));
    ExpectNothingUpdated();
    EXPECT_EQ(RowCount(), QStringLiteral("1"));
}

TEST_F(LauncherImportTest, TheChecksumComesBeforeTheName) {
    AddRow(QStringLiteral("AB"), QStringLiteral("FFFF"));
    AddRow(QStringLiteral("t"), QStringLiteral("AB"));
    Import("n\\1\\AB\\new\\1999\\c\\");
    EXPECT_EQ(Field(QStringLiteral("Author"), 1), QStringLiteral("before"));
    EXPECT_EQ(Field(QStringLiteral("Author"), 2), QStringLiteral("new"));
}

TEST_F(LauncherImportTest, ALineUpdatesEveryRowOfItsKeyAndCountsOnce) {
    AddRow(QStringLiteral("a"), QStringLiteral("AB"));
    AddRow(QStringLiteral("b"), QStringLiteral("ab"));
    Import("n\\1\\AB\\new\\1999\\c\\");
    EXPECT_EQ(Field(QStringLiteral("Author"), 1), QStringLiteral("new"));
    EXPECT_EQ(Field(QStringLiteral("Author"), 2), QStringLiteral("new"));
    EXPECT_EQ(display.writing.filter(QStringLiteral("Witing")).size(), 1);
}

TEST_F(LauncherImportTest, ProgressNamesTheLineAndTheRow) {
    AddRow(QStringLiteral("t"), QStringLiteral("AB"));
    Import("Attack\\1\\$AB\\new\\1999\\c\\\nOther\\1\\CD\\new\\1999\\c\\\n");
    EXPECT_EQ(display.reading,
              (QStringList{QString(), QStringLiteral("Reading: Attack CRC: $AB"), QString(),
                           QStringLiteral("Reading: Other CRC: CD"), QString()}));
    EXPECT_EQ(display.writing,
              (QStringList{QString(), QStringLiteral("Witing values from Attack to database"),
                           QString(), QStringLiteral("Task Complete!")}));
    EXPECT_EQ(events.rounds, 2);
}

TEST_F(LauncherImportTest, AnAuthorsApostropheIsStoredOnce) {
    AddRow(QStringLiteral("t"), QStringLiteral("AB"));
    Import("n\\1\\AB\\O'Brien\\1999\\c\\");
    EXPECT_EQ(Field(QStringLiteral("Author")), QStringLiteral("O'Brien"));
}

TEST_F(LauncherImportTest, TheFileIsReadInCodePage1252) {
    AddRow(QStringLiteral("t"), QStringLiteral("AB"));
    Import("n\\1\\AB\\J\xFCrgen \x80\\1999\\c\\");
    EXPECT_EQ(Field(QStringLiteral("Author")), QString::fromUtf16(u"J\u00FCrgen \u20AC"));
}

TEST_F(LauncherImportTest, ARowAddedOnOrBeforeTheDateIsLeftAlone) {
    AddRow(QStringLiteral("a"), QStringLiteral("A1"), QStringLiteral("1/1/2001"));
    AddRow(QStringLiteral("b"), QStringLiteral("B1"), QStringLiteral("1/2/2001"));
    AddRow(QStringLiteral("c"), QStringLiteral("C1"), QStringLiteral("1/3/2001"));
    ImportAfter("n\\1\\A1\\new\\1\\c\\\nn\\1\\B1\\new\\1\\c\\\nn\\1\\C1\\new\\1\\c\\\n",
                QStringLiteral("1/2/2001"));
    EXPECT_EQ(Field(QStringLiteral("Author"), 1), QStringLiteral("before"));
    EXPECT_EQ(Field(QStringLiteral("Author"), 2), QStringLiteral("before"));
    EXPECT_EQ(Field(QStringLiteral("Author"), 3), QStringLiteral("new"));
    ExpectUpdated();
}

TEST_F(LauncherImportTest, OfTwoRowsWithOneKeyOnlyTheOneAfterTheDateChanges) {
    AddRow(QStringLiteral("a"), QStringLiteral("A1"), QStringLiteral("1/1/2001"));
    AddRow(QStringLiteral("b"), QStringLiteral("A1"), QStringLiteral("1/3/2001"));
    ImportAfter("n\\1\\A1\\new\\1\\c\\\n", QStringLiteral("1/2/2001"));
    EXPECT_EQ(Field(QStringLiteral("Author"), 1), QStringLiteral("before"));
    EXPECT_EQ(Field(QStringLiteral("Author"), 2), QStringLiteral("new"));
}

TEST_F(LauncherImportTest, ATextThatIsNoDateIsRefused) {
    ImportAfter("n\\1\\A1\\new\\1\\c\\\n", QStringLiteral("Select a Date"));
    ASSERT_EQ(prompts.messages.size(), 1U);
    EXPECT_EQ(prompts.messages[0].text, QStringLiteral("Please enter a valid date"));
    EXPECT_EQ(prompts.messages[0].icon, platform::MessageIcon::kNone);
    EXPECT_TRUE(display.busy.empty());
    EXPECT_TRUE(prompts.dialogs.empty());
}

TEST_F(LauncherImportTest, TheFileDialogOffersTheFileOfTheApplicationFolder) {
    Import("");
    ASSERT_EQ(prompts.dialogs.size(), 1U);
    EXPECT_EQ(prompts.dialogs[0].title, QStringLiteral("Locate DAT File"));
    EXPECT_EQ(prompts.dialogs[0].filter, QStringLiteral("VPlauncher.DAT|VPlauncher.dat"));
    EXPECT_EQ(prompts.dialogs[0].file_name, folder.filePath(QStringLiteral("vpLauncher.dat")));
}

TEST_F(LauncherImportTest, AnotherFileCanBeChosen) {
    AddRow(QStringLiteral("t"), QStringLiteral("AB"));
    prompts.files = {MakeFile(QStringLiteral("other.txt"), "n\\1\\AB\\other\\1999\\c\\")};
    Import("n\\1\\AB\\preset\\1999\\c\\");
    EXPECT_EQ(Field(QStringLiteral("Author")), QStringLiteral("other"));
}

TEST_F(LauncherImportTest, WithoutTheFileTheUserIsToldAndTheWindowIsIdle) {
    LauncherImport(catalogue, prompts, events, display).ImportAll();
    ASSERT_EQ(prompts.messages.size(), 1U);
    EXPECT_EQ(prompts.messages[0].text,
              QStringLiteral("The selected File is not a valid VPLauncher.dat file"));
    EXPECT_EQ(prompts.messages[0].icon, platform::MessageIcon::kNone);
    EXPECT_EQ(display.busy, (std::vector{true, false}));
    EXPECT_TRUE(display.writing.isEmpty());
}

TEST_F(LauncherImportTest, AFolderInThePlaceOfTheFileIsNoFile) {
    QDir(folder.path()).mkdir(QStringLiteral("vpLauncher.dat"));
    LauncherImport(catalogue, prompts, events, display).ImportAll();
    EXPECT_EQ(prompts.messages.size(), 1U);
    EXPECT_TRUE(display.writing.isEmpty());
}

TEST_F(LauncherImportTest, AQuoteInAKeyBreaksItsLineOnly) {
    AddRow(QStringLiteral("a'b"), QStringLiteral("a'b"));
    AddRow(QStringLiteral("t"), QStringLiteral("AB"));
    Import("n\\1\\a'b\\new\\1\\c\\\nn\\1\\AB\\new\\1\\c\\\n");
    EXPECT_EQ(Field(QStringLiteral("Author"), 1), QStringLiteral("before"));
    EXPECT_EQ(Field(QStringLiteral("Author"), 2), QStringLiteral("new"));
    EXPECT_EQ(display.writing.filter(QStringLiteral("Witing")).size(), 1);
}

TEST_F(LauncherImportTest, AShortLineIsSkipped) {
    AddRow(QStringLiteral("t"), QStringLiteral("AB"));
    Import("n\\1\\AB\n\nn\\1\\AB\\new\\1\\c\n");
    EXPECT_EQ(Field(QStringLiteral("Author")), QStringLiteral("before"));
    ExpectNothingUpdated();
}

TEST_F(LauncherImportTest, AValueThatDoesNotFitIsNotCounted) {
    AddRow(QStringLiteral("t"), QStringLiteral("AB"));
    Import("n\\1\\AB\\" + QByteArray(300, 'x') + "\\1\\c\\\n");
    EXPECT_EQ(Field(QStringLiteral("Author")), QStringLiteral("before"));
    ExpectNothingUpdated();
}

TEST_F(LauncherImportTest, APictureChangesNothing) {
    AddRow(QStringLiteral("t"), QStringLiteral("AB"));
    QByteArray picture("\xFF\xD8\xFF\xE0", 4);
    std::uint32_t state = 1;
    for (int i = 0; i < 200'000; ++i) {
        state = state * 1664525U + 1013904223U;
        picture.append(static_cast<char>(state >> 24U));
    }
    Import(picture);
    EXPECT_EQ(Field(QStringLiteral("Author")), QStringLiteral("before"));
    ExpectNothingUpdated();
}

TEST_F(LauncherImportTest, LinesOfAMegabyteAndNulBytesArePassedOver) {
    AddRow(QStringLiteral("t"), QStringLiteral("AB"));
    QByteArray content = QByteArray(1 << 20, 'x') + "\n";
    content += QByteArray("n\\1\\AB\\n\0w\\1\\c\\\n", 16);
    content += QByteArray(1 << 20, '\\') + "\n";
    content += "n\\1\\AB\\new\\1\\c\\\n";
    Import(content);
    EXPECT_EQ(Field(QStringLiteral("Author")), QStringLiteral("new"));
    EXPECT_EQ(display.writing.filter(QStringLiteral("Witing")).size(), 1);
}

TEST_F(LauncherImportTest, RowsOutsideTheDateHaveNoIndexButTheStatementDecides) {
    AddRow(QStringLiteral("AB"), QStringLiteral("FFFF"), QStringLiteral("1/3/2001"));
    AddRow(QStringLiteral("t"), QStringLiteral("AB"), QStringLiteral("1/1/2001"));
    ImportAfter("n\\1\\AB\\new\\1\\c\\\n", QStringLiteral("1/2/2001"));
    EXPECT_EQ(Field(QStringLiteral("Author"), 1), QStringLiteral("new")) << "found by its name";
    EXPECT_EQ(Field(QStringLiteral("Author"), 2), QStringLiteral("before"));
}

TEST_F(LauncherImportTest, AKeyThatTheIndexCannotJudgeIsAskedOfTheDatabase) {
    AddRow(QStringLiteral("A|B"), QStringLiteral("FFFF"));
    Import("n\\1\\A|B\\new\\1\\c\\\n");
    EXPECT_EQ(Field(QStringLiteral("Author")), QStringLiteral("new"));
    ExpectUpdated();
}

TEST_F(LauncherImportTest, TheDatesAreThoseOfTheCatalogueOnceEach) {
    AddRow(QStringLiteral("a"), QStringLiteral("A1"), QStringLiteral("1/3/2001"));
    AddRow(QStringLiteral("b"), QStringLiteral("B1"), QStringLiteral("1/1/2001"));
    AddRow(QStringLiteral("c"), QStringLiteral("C1"), QStringLiteral("1/3/2001"));
    Execute(QStringLiteral("insert into Tables (DisplayName) values ('undated')"));
    EXPECT_EQ(DatesAdded(*connection).value(),
              (QStringList{QStringLiteral("1/1/2001"), QStringLiteral("1/3/2001")}));
}

// Whatever a damaged file says, only the five columns of rows that it names may change.
TEST_F(LauncherImportTest, EveryCutAndEveryFlippedByteIsSurvived) {
    AddRow(QStringLiteral("t"), QStringLiteral("AB"));
    Execute(QStringLiteral("update Tables set FileName = '/t.vpt', Notes = 'n'"));
    const QByteArray whole =
        "Attack\\1.1\\$AB\\O'Brien\\1999\\-\\VPinMame\r\nx\\1\\t\\a\\2\\c\\\r\n";
    for (qsizetype i = 0; i < whole.size(); ++i) {
        Import(whole.left(i));
        for (const int mask : {0x01, 0x20, 0x80, 0xFF}) {
            QByteArray damaged = whole;
            damaged[i] = static_cast<char>(damaged[i] ^ mask);
            Import(damaged);
        }
    }
    EXPECT_TRUE(prompts.messages.empty());
    EXPECT_EQ(RowCount(), QStringLiteral("1"));
    EXPECT_EQ(Scalar(QStringLiteral("select DisplayName & CRC & FileName & Notes from Tables")),
              QStringLiteral("tAB/t.vptn"));
}

// What the window shows must not stand still: events are processed for each of 100,000 lines that
// fit nothing.
TEST_F(LauncherImportTest, AHundredThousandLinesLetTheWindowLive) {
    for (int i = 0; i < 200; ++i)
        AddRow(QStringLiteral("t%1").arg(i), QStringLiteral("%1").arg(i, 8, 16, QLatin1Char('A')));
    QByteArray content;
    for (int i = 0; i < 100'000; ++i)
        content += "n\\1\\$" + QByteArray::number(i, 16) + "F\\a\\1999\\c\\VPinMame\r\n";
    qint64 longest = 0;
    QElapsedTimer stopwatch;
    events.on_round = [&] {
        if (stopwatch.isValid()) longest = std::max(longest, stopwatch.elapsed());
        stopwatch.start();
    };
    Import(content);
    EXPECT_EQ(events.rounds, 100'000);
    EXPECT_LT(longest, 1000) << "milliseconds between two rounds of events";
}

TEST_F(LauncherImportTest, TheFileIsFoundInAnyLetterCase) {
    AddRow(QStringLiteral("t"), QStringLiteral("AB"));
    MakeFile(QStringLiteral("VPLauncher.DAT"), "n\\1\\AB\\new\\1999\\c\\\n");
    LauncherImport(catalogue, prompts, events, display).ImportAll();
    ExpectUpdated();
    EXPECT_EQ(Field(QStringLiteral("Author")), QStringLiteral("new"));
}

// The dialog itself does not complain; the import does, in its own words.
TEST_F(LauncherImportTest, ATypedNameThatIsNotThereIsSaidOnce) {
    prompts.files = {folder.filePath(QStringLiteral("typed.dat"))};
    LauncherImport(catalogue, prompts, events, display).ImportAll();
    ASSERT_EQ(prompts.dialogs.size(), 1U);
    EXPECT_FALSE(prompts.dialogs[0].must_exist);
    ASSERT_EQ(prompts.messages.size(), 1U);
    EXPECT_EQ(prompts.messages[0].text,
              QStringLiteral("The selected File is not a valid VPLauncher.dat file"));
}

TEST_F(LauncherImportTest, DatesThatCannotBeReadAreAnError) {
    ASSERT_TRUE(connection->Close().ok());
    EXPECT_FALSE(DatesAdded(*connection).ok());
}

TEST_F(LauncherImportTest, AFailingDatabaseIsKeptAndALineOfItsOwnFaultIsNot) {
    AddRow(QStringLiteral("t"), QStringLiteral("AB"));
    LauncherImport launcher(catalogue, prompts, events, display);
    MakeFile(QStringLiteral("vpLauncher.dat"), "n\\1\\A'B\\new\\1999\\c\\\n");
    launcher.ImportAll();
    EXPECT_TRUE(launcher.database_failure().ok()) << launcher.database_failure().message();

    ASSERT_TRUE(connection->Close().ok());
    ASSERT_TRUE(
        connection
            ->Open((QStringLiteral("Mode=Read;Data Source=") + DatabasePath()).toStdU16String())
            .ok());
    MakeFile(QStringLiteral("vpLauncher.dat"), "n\\1\\AB\\new\\1999\\c\\\n");
    launcher.ImportAll();
    EXPECT_EQ(launcher.database_failure().code(), base::StatusCode::kPermissionDenied);
    EXPECT_TRUE(prompts.messages.empty());
    EXPECT_EQ(display.writing.last(), kNothingUpdated) << "a failing update is not counted";
    EXPECT_EQ(Field(QStringLiteral("Author")), QStringLiteral("before"));
}

}  // namespace
}  // namespace maintenance
