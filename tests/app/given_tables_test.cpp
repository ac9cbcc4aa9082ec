// New tables of known folders, without a window.
#include "app/given_tables.h"

#include "support/catalogue_fixture.h"
#include "support/unreadable.h"
#include "support/vpt_builder.h"

#include <gtest/gtest.h>

#include <QtCore/QDir>
#include <QtCore/QFile>

namespace app {
namespace {

class NewTablesTest : public test_support::CatalogueFixture {
protected:
    QString MakeFolder(const QString& name) {
        const QString made = folder.filePath(name);
        EXPECT_TRUE(QDir().mkpath(made));
        return made;
    }
    // A folder with two tables.
    QString MakeFolderOfTables(const QString& name) {
        const QString made = MakeFolder(name);
        for (const char16_t* const title : {u"A", u"B"}) {
            test_support::VptBuilder builder;
            builder.Text(u"TableName", name.toStdU16String() + title);
            const QString file = made + u'/' + QString::fromUtf16(title) + QStringLiteral(".vpt");
            EXPECT_TRUE(builder.Write(file.toStdU16String()).ok());
        }
        return made;
    }
    base::Result<std::int64_t> Add(const QStringList& folders) {
        passed_over = {};
        return AddNewTables(catalogue, folders, {}, passed_over);
    }

    catalogue::PassedOver passed_over;
};

TEST_F(NewTablesTest, ThoseOfAllFoldersAreAddedWithWhatTheirFilesSay) {
    const auto added =
        Add({MakeFolderOfTables(QStringLiteral("one")), MakeFolderOfTables(QStringLiteral("two"))});
    ASSERT_TRUE(added.ok()) << added.status().message();
    EXPECT_EQ(*added, 4);
    EXPECT_EQ(Scalar(QStringLiteral("Select Count(*) from Tables where DisplayName in "
                                    "('oneA', 'oneB', 'twoA', 'twoB')")),
              QStringLiteral("4"));
    EXPECT_TRUE(passed_over.Summary().ok());
}

// What was found until then is in, with what its file says.
TEST_F(NewTablesTest, AStopEndsTheSearchAndKeepsWhatItHasFound) {
    const QStringList folders{MakeFolderOfTables(QStringLiteral("one")),
                              MakeFolderOfTables(QStringLiteral("two"))};
    std::stop_source stop;
    const base::RunSteps steps{[&](std::int64_t, std::int64_t) { stop.request_stop(); },
                               stop.get_token()};
    const auto added = AddNewTables(catalogue, folders, steps, passed_over);
    ASSERT_TRUE(added.ok()) << added.status().message();
    EXPECT_EQ(*added, 2);
    EXPECT_EQ(Scalar(QStringLiteral("Select Count(*) from Tables where DisplayName in "
                                    "('oneA', 'oneB')")),
              QStringLiteral("2"));
    EXPECT_EQ(Scalar(QStringLiteral("Select Count(*) from Tables")), QStringLiteral("2"));
}

// An unplugged drive, a share that is not to be read: the other folders have their turn.
TEST_F(NewTablesTest, AFolderThatCannotBeListedIsNotedAndTheOthersFollow) {
    const QString gone = folder.filePath(QStringLiteral("gone"));
    const QString locked = MakeFolder(QStringLiteral("locked"));
    const QString last = MakeFolderOfTables(QStringLiteral("last"));
    {
        const test_support::Unreadable unreadable({locked.toStdU16String()});
        const auto added = Add({gone, locked, last});
        ASSERT_TRUE(added.ok()) << added.status().message();
        EXPECT_EQ(*added, 2);
    }
    EXPECT_EQ(passed_over.count(), 2);
    EXPECT_EQ(passed_over.Summary().message(),
              "2 could not be read. The first: There is no folder " + gone.toStdString());
}

TEST_F(NewTablesTest, WhatIsKnownIsReadOnceForAllFolders) {
    QStringList folders;
    for (const char16_t* const name : {u"one", u"two", u"three", u"four"})
        folders.append(MakeFolderOfTables(QString::fromUtf16(name)));
    ASSERT_TRUE(Add(folders).ok());
    CountWalks();
    const auto added = Add(folders);
    ASSERT_TRUE(added.ok()) << added.status().message();
    EXPECT_EQ(*added, 0);
    EXPECT_LE(walks.all(), 2);  // the first file's question, and the names for all others
}

TEST_F(NewTablesTest, AFailureOfTheDatabaseIsToldAndEndsTheRun) {
    const QString tables = MakeFolderOfTables(QStringLiteral("tables"));
    ASSERT_TRUE(connection->Close().ok());
    EXPECT_FALSE(Add({tables, tables}).ok());
}

}  // namespace
}  // namespace app
