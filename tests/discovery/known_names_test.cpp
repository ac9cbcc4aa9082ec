#include "discovery/known_names_fixture.h"

#include "jet/tables/database.h"
#include "support/temporary_dir.h"
#include "support/test_data.h"

#include <QtCore/QDir>
#include <QtCore/QFile>

namespace discovery {
namespace {

TEST_F(KnownNamesTest, NamesAreTheSameThatTheDatabaseTakesForTheSame) {
    AddRow(QStringLiteral("/tables/It's an \u00E4ttack.vpt"));
    KnownNames names(*connection, values.paths);
    EXPECT_FALSE(Contains(names, Number(1)));
    EXPECT_TRUE(Contains(names, QStringLiteral("/Tables/IT'S AN \u00C4TTACK.VPT")));
    EXPECT_FALSE(Contains(names, QStringLiteral("/tables/It's an attack.vpt")));
}

// The first of them is the database's to answer, as there may be no other.
TEST_F(KnownNamesTest, AllQuestionsOfAScanAreTwoWalksThroughTheTable) {
    for (int i = 0; i < 50; ++i)
        AddRow(Number(i));
    Execute(QStringLiteral("DROP INDEX FileName ON Tables"));
    CountWalks();
    KnownNames names(*connection, values.paths);
    for (int i = 0; i < 100; ++i)
        EXPECT_EQ(Contains(names, Number(i)), i < 50) << i;
    EXPECT_EQ(walks.all(), 2);
}

TEST_F(KnownNamesTest, ASingleQuestionReadsNoOtherName) {
    for (int i = 0; i < 50; ++i)
        AddRow(Number(i));
    CountWalks();
    KnownNames names(*connection, values.paths);
    EXPECT_TRUE(Contains(names, Number(7)));
    EXPECT_EQ(walks.scans, 0);
}

TEST_F(KnownNamesTest, RowsThatTheScanItselfStoresAreNoReasonToReadAgain) {
    CountWalks();
    KnownNames names(*connection, values.paths);
    for (int i = 0; i < 50; ++i) {
        EXPECT_FALSE(Contains(names, Number(i)));
        names.BeginAttempt();
        AddRow(Number(i));
        names.NoteStored(Number(i));
        EXPECT_TRUE(Contains(names, Number(i)));
    }
    EXPECT_EQ(walks.scans, 1);
}

TEST_F(KnownNamesTest, ARefusedRowIsNeitherKnownNorAReasonToReadAgain) {
    CountWalks();
    KnownNames names(*connection, values.paths);
    const QString name = Number(1);
    EXPECT_FALSE(Contains(names, name));
    EXPECT_FALSE(Contains(names, name));
    names.BeginAttempt();
    const QString too_long(60, u'x');
    const auto refused =
        connection->Execute(QStringLiteral("Insert into Tables (FileName, CRC) Values ('%1', '%2')")
                                .arg(name, too_long)
                                .toStdU16String());
    ASSERT_FALSE(refused.ok());
    names.NoteRefused();
    EXPECT_FALSE(Contains(names, name));
    EXPECT_EQ(walks.scans, 1);
}

TEST_F(KnownNamesTest, WhatChangesTheCatalogueMeanwhileIsSeen) {
    KnownNames names(*connection, values.paths);
    EXPECT_FALSE(Contains(names, Number(1)));
    AddRow(Number(1));
    EXPECT_TRUE(Contains(names, Number(1)));
    Execute(QStringLiteral("Delete from Tables"));
    EXPECT_FALSE(Contains(names, Number(1)));
    AddRow(Number(2));
    names.BeginAttempt();
    AddRow(Number(3));
    names.NoteStored(Number(3));
    EXPECT_TRUE(Contains(names, Number(2)));
    // One change, and an attempt that changes nothing.
    AddRow(Number(4));
    names.BeginAttempt();
    names.NoteRefused();
    EXPECT_TRUE(Contains(names, Number(4)));
}

// Files of version 3 have other keys in their indexes; what equals a text is the same in both.
TEST(KnownNamesInVersion3Test, NamesAreTheSameThatTheDatabaseTakesForTheSame) {
    test_support::TemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("pinball.mdb"));
    const auto source = test_support::DataFolder() / "databases/catalogue-jet3.mdb";
    ASSERT_TRUE(QFile::copy(QString::fromStdU16String(source.u16string()), path));
    ASSERT_TRUE(QFile(path).setPermissions(QFile::ReadOwner | QFile::WriteOwner));
    const auto files = platform::MakeFileSystem();
    jet::Connection connection(*files);
    ASSERT_TRUE(connection.Open(u"Data Source=" + path.toStdU16String()).ok());
    ASSERT_EQ(connection.database()->jet_version(), 3);
    const QStringList stored{QStringLiteral("/t/Thorn with th.vpt"),
                             QStringLiteral("/t/\u00DEorn alone.vpt"),
                             QStringLiteral("/t/stra\u00DFe.vpt"), QStringLiteral("/t/plain.vpt"),
                             QStringLiteral("/t/co-op.vpt")};
    for (const QString& name : stored)
        ASSERT_TRUE(connection
                        .Execute((QStringLiteral("Insert into Tables (FileName) Values ('") + name +
                                  QStringLiteral("')"))
                                     .toStdU16String())
                        .ok());
    const QStringList asked = stored + QStringList{QStringLiteral("/T/THORN WITH TH.VPT"),
                                                   QStringLiteral("/t/thorn alone.vpt"),
                                                   QStringLiteral("/t/\u00DEorn wi\u00FE.vpt"),
                                                   QStringLiteral("/t/\u00FEORN alone.vpt"),
                                                   QStringLiteral("/t/strasse.vpt"),
                                                   QStringLiteral("/t/STRASSE.vpt"),
                                                   QStringLiteral("/t/coop.vpt"),
                                                   QStringLiteral("/t/pl\u00E4in.vpt")};
    for (const QString& name : asked) {
        KnownNames by_database(connection, {});
        KnownNames from_memory(connection, {});
        ASSERT_TRUE(from_memory.Contains(QStringLiteral("/t/the first question.vpt")).ok());
        const auto theirs = by_database.Contains(name);
        const auto ours = from_memory.Contains(name);
        ASSERT_TRUE(theirs.ok() && ours.ok()) << name.toStdString();
        EXPECT_EQ(*theirs, *ours) << name.toStdString();
        EXPECT_TRUE(*ours || !stored.contains(name)) << name.toStdString();
    }
}

TEST_F(KnownNamesTest, ANameThatSqlMayReadInItsOwnWayIsAskedForInSql) {
    const QString bar = QStringLiteral("/tables/a | b.vpt");
    const QString lines = QStringLiteral("/tables/a\nb.vpt");
    KnownNames names(*connection, values.paths);
    EXPECT_FALSE(Contains(names, bar));
    AddRow(bar);
    AddRow(lines);
    EXPECT_TRUE(Contains(names, bar));
    EXPECT_TRUE(Contains(names, lines));
}

// A column of this kind may hold more than the key of a text does.
TEST_F(KnownNamesTest, NamesTooLongForAKeyAreComparedByTheDatabase) {
    Execute(QStringLiteral("DROP INDEX FileName ON Tables"));
    Execute(QStringLiteral("ALTER TABLE Tables ALTER COLUMN FileName MEMO"));
    const QString start = QStringLiteral("/tables/") + QString(260, u'x');
    AddRow(start + QStringLiteral("one.vpt"));
    AddRow(Number(1));
    KnownNames names(*connection, values.paths);
    EXPECT_FALSE(Contains(names, Number(3)));
    EXPECT_TRUE(Contains(names, start + QStringLiteral("ONE.vpt")));
    EXPECT_FALSE(Contains(names, start + QStringLiteral("two.vpt")));
    EXPECT_TRUE(Contains(names, Number(1)));
    EXPECT_FALSE(Contains(names, Number(2)));
}

TEST_F(KnownNamesTest, AQuestionThatFailsIsAFailure) {
    Execute(QStringLiteral("DROP INDEX FileName ON Tables"));
    Execute(QStringLiteral("ALTER TABLE Tables DROP COLUMN FileName"));
    KnownNames names(*connection, values.paths);
    EXPECT_FALSE(names.Contains(Number(1)).ok());
    connection->Close().Ignore();
    EXPECT_FALSE(names.Contains(Number(1)).ok());
}

TEST_F(KnownNamesTest, WhatThePathMapLeadsToIsKnown) {
    AddRow(QStringLiteral("C:\\Tables\\Old\\Table 1.vpt"));
    MapTablesHere();
    KnownNames names(*connection, values.paths);
    EXPECT_TRUE(Contains(names, folder.filePath(QStringLiteral("Old/Table 1.vpt"))));
    EXPECT_TRUE(Contains(names, folder.filePath(QStringLiteral("OLD/table 1.VPT"))));
    EXPECT_TRUE(Contains(names, QStringLiteral("C:\\Tables\\Old\\Table 1.vpt")));
    EXPECT_FALSE(Contains(names, folder.filePath(QStringLiteral("Table 1.vpt"))));
    AddRow(QStringLiteral("c:/tables/new.vpt"));
    EXPECT_TRUE(Contains(names, folder.filePath(QStringLiteral("new.vpt"))));
}

TEST_F(KnownNamesTest, WithAPathMapTheRowsAreReadOnceMore) {
    CountWalks();
    MapTablesHere();
    KnownNames names(*connection, values.paths);
    for (int i = 0; i < 50; ++i) {
        const QString stored = QStringLiteral("C:\\Tables\\%1.vpt").arg(i);
        const QString here = folder.filePath(QStringLiteral("%1.vpt").arg(i));
        EXPECT_FALSE(Contains(names, here));
        names.BeginAttempt();
        AddRow(stored);
        names.NoteStored(stored);
        EXPECT_TRUE(Contains(names, here));
    }
    EXPECT_EQ(walks.scans, 2);
}

}  // namespace
}  // namespace discovery
