#include "browser/table_tree_model.h"

#include "browser/tree_fixture.h"
#include "support/qt_text.h"
#include "support/wait_for.h"

#include <QtCore/QAbstractItemModel>
#include <QtCore/QCoreApplication>
#include <QtGui/QFont>
#include <QtTest/QAbstractItemModelTester>
#include <QtTest/QSignalSpy>

#include <atomic>
#include <mutex>

namespace browser {
namespace {

using test_support::S;

class TableTreeModelTest : public TreeFixture {
protected:
    void Show() { model.Show(Snapshot(), S(u"All"), S(u"pinball")); }
    QModelIndex Table(int row) const { return model.index(row, 0, model.RootIndex()); }
    QStringList DetailLines(const QModelIndex& table) const {
        QStringList lines;
        for (int row = 0; row < model.rowCount(table); ++row)
            lines.append(model.index(row, 0, table).data().toString());
        return lines;
    }
    static QString IconKey(const QModelIndex& index) {
        return index.data(TableTreeModel::kIconKeyRole).toString();
    }
    // The icon of the table after its file has been tested.
    QString SettledIconKey(const QModelIndex& table) {
        QSignalSpy changes(&model, &QAbstractItemModel::dataChanged);
        IconKey(table);
        EXPECT_TRUE(changes.count() > 0 || changes.wait());
        EXPECT_EQ(changes.value(0).value(0).toModelIndex(), table);
        return IconKey(table);
    }

    TableTreeModel model;
};

TEST_F(TableTreeModelTest, IsEmptyAtFirst) {
    EXPECT_FALSE(model.has_nodes());
    EXPECT_EQ(model.rowCount(), 0);
    EXPECT_FALSE(model.RootIndex().isValid());
}

TEST_F(TableTreeModelTest, AssistiveTechnologyIsToldLevelAndStateInWords) {
    AddRow(S(u"DisplayName, FileName, Favorite"), S(u"'Alpha', '/gone/alpha.vpt', true"));
    AddTable(S(u"Beta"), MakeFile(S(u"beta.vpt")));
    Show();
    const auto spoken = [](const QModelIndex& index) {
        return index.data(Qt::AccessibleTextRole).toString() + u'|' +
               index.data(Qt::AccessibleDescriptionRole).toString();
    };
    EXPECT_EQ(spoken(model.RootIndex()), S(u"All|Level 1"));
    EXPECT_EQ(SettledIconKey(Table(0)), S(u"stop"));
    EXPECT_EQ(spoken(Table(0)), S(u"Alpha, favorite, its file is missing|Level 2"));
    EXPECT_EQ(spoken(Table(1)), S(u"Beta|Level 2"));
    const QModelIndex line = model.index(0, 0, Table(0));
    EXPECT_EQ(spoken(line), line.data().toString() + S(u"|Level 3"));
    model.SetTableIcon(Table(1), S(u"favorite"));
    EXPECT_EQ(spoken(Table(1)), S(u"Beta, favorite|Level 2"));
}

TEST_F(TableTreeModelTest, ARootNamesTheSelectionInBold) {
    Show();
    const QModelIndex root = model.RootIndex();
    EXPECT_EQ(model.rowCount(), 1);
    EXPECT_EQ(root.data().toString(), S(u"All"));
    EXPECT_EQ(TableTreeModel::Tag(root), S(u"X1"));
    EXPECT_TRUE(root.data(Qt::FontRole).value<QFont>().bold());
    EXPECT_EQ(IconKey(root), S(u"pinball"));
}

TEST_F(TableTreeModelTest, ATableShowsItsNameAndCarriesItsFile) {
    AddTable(S(u"Taxi"), S(u"C:\\Tables\\taxi.vpt"));
    Show();
    EXPECT_EQ(Table(0).data().toString(), S(u"Taxi"));
    EXPECT_EQ(TableTreeModel::Tag(Table(0)), S(u"C:\\Tables\\taxi.vpt"));
    EXPECT_EQ(Table(0).data(TableTreeModel::kNodeKeyRole).toString(), S(u"X1"));
    EXPECT_FALSE(Table(0).data(Qt::FontRole).isValid());
}

TEST_F(TableTreeModelTest, SixDetailLinesStandUnderEveryTable) {
    AddRow(S(u"DisplayName, FileDate, Author, Company, Year, LastPlayed, DateAdded"),
           S(u"'Taxi', #11/20/2026 3:04:05 PM#, 'Bob', 'Bally', '1988', #1/2/2003#, '20-Nov-26'"));
    AddRow(S(u"DisplayName"), S(u"'Zero'"));
    Show();
    EXPECT_EQ(DetailLines(Table(0)),
              QStringList({S(u"File Date: 11/20/2026 3:04:05 PM"), S(u"Author: Bob"),
                           S(u"Company: Bally"), S(u"Year: 1988"), S(u"Last Played: 1/2/2003"),
                           S(u"Date Added: 11/20/2026")}));
    EXPECT_EQ(DetailLines(Table(1)),
              QStringList({S(u"File Date: "), S(u"Author: "), S(u"Company: "), S(u"Year: "),
                           S(u"Last Played: "), S(u"Date Added: ")}));
    const QModelIndex line = model.index(2, 0, Table(0));
    EXPECT_EQ(TableTreeModel::Tag(line), S(u"X"));
    EXPECT_EQ(IconKey(line), S(u"detail"));
    EXPECT_FALSE(model.hasChildren(line));
}

struct IconCase {
    const char* name;
    bool exists;
    const char16_t* flags;  // PinMame, Favorite
    const char16_t* icon;
};

class TableIconTest : public TableTreeModelTest, public testing::WithParamInterface<IconCase> {};

TEST_P(TableIconTest, FollowsFileAndFlags) {
    const QString file =
        GetParam().exists ? MakeFile(S(u"t.vpt")) : folder.filePath(S(u"gone.vpt"));
    AddRow(S(u"DisplayName, FileName, PinMame, Favorite"),
           QStringLiteral("'T', '%1', %2").arg(file, S(GetParam().flags)));
    Show();
    EXPECT_EQ(SettledIconKey(Table(0)), S(GetParam().icon));
}

INSTANTIATE_TEST_SUITE_P(
    Tables, TableIconTest,
    testing::Values(IconCase{"Plain", true, u"false, false", u"pinball"},
                    IconCase{"PinMame", true, u"true, false", u"mame"},
                    IconCase{"Favourite", true, u"false, true", u"favorite"},
                    IconCase{"FavouriteWinsOverPinMame", true, u"true, true", u"favorite"},
                    IconCase{"MissingFileWinsOverBoth", false, u"true, true", u"stop"}),
    [](const auto& variant) { return std::string(variant.param.name); });

TEST_F(TableTreeModelTest, AFolderAndAnEmptyNameAreMissingFiles) {
    AddTable(S(u"A"), folder.path());
    AddTable(S(u"B"), {});
    Show();
    EXPECT_EQ(SettledIconKey(Table(0)), S(u"stop"));
    EXPECT_EQ(SettledIconKey(Table(1)), S(u"stop"));
}

TEST_F(TableTreeModelTest, UntilTheFileSystemAnswersATableHasTheIconOfItsRecord) {
    AddRow(S(u"DisplayName, FileName, Favorite"), S(u"'A', '/gone/a.vpt', true"));
    Show();
    EXPECT_EQ(IconKey(Table(0)), S(u"favorite"));
    EXPECT_EQ(SettledIconKey(Table(0)), S(u"stop"));
}

TEST_F(TableTreeModelTest, ATableThatStandsForAnotherFileHasItsTagAndItsIcon) {
    AddTable(S(u"A"), MakeFile(S(u"a.vpt")));
    Show();
    EXPECT_EQ(SettledIconKey(Table(0)), S(u"pinball"));
    const QString gone = folder.filePath(S(u"gone.vpt"));
    model.SetFileName(Table(0), gone);
    EXPECT_EQ(TableTreeModel::Tag(Table(0)), gone);
    EXPECT_EQ(SettledIconKey(Table(0)), S(u"stop"));
    Show();
    EXPECT_EQ(TableTreeModel::Tag(Table(0)), folder.filePath(S(u"a.vpt")));
}

TEST_F(TableTreeModelTest, FilesAreLookedUpOnceAndOnlyWhenTheirRowIsDrawn) {
    for (const char16_t* name : {u"a", u"b", u"c"})
        AddTable(S(name), S(name));
    std::mutex mutex;
    QStringList asked;
    TableTreeModel counting({}, [&](const QString& path) {
        const std::lock_guard lock(mutex);
        asked.append(path);
        return true;
    });
    QSignalSpy answers(&counting, &QAbstractItemModel::dataChanged);
    counting.Show(Snapshot(), S(u"All"), S(u"pinball"));
    for (const int row : {1, 1, 0, 1}) {
        IconKey(counting.index(row, 0, counting.RootIndex()));
        if (row == 0) {
            ASSERT_TRUE(answers.wait());
        }
    }
    ASSERT_TRUE(test_support::WaitFor([&] {
        QCoreApplication::processEvents();
        const std::lock_guard lock(mutex);
        return asked.size() == 2;
    }));
    asked.sort();
    EXPECT_EQ(asked, QStringList({S(u"a"), S(u"b")}));
}

TEST_F(TableTreeModelTest, AnswersThatCameTogetherAreToldTogether) {
    constexpr int kTables = 20;
    constexpr int kNotDrawn = 7;
    for (int i = 0; i < kTables; ++i)
        AddTable(QStringLiteral("Table %1").arg(i, 2, 10, QLatin1Char('0')), S(u"/gone"));
    std::atomic<int> asked = 0;
    TableTreeModel counting({}, [&](const QString&) {
        ++asked;
        return false;
    });
    QSignalSpy changes(&counting, &QAbstractItemModel::dataChanged);
    counting.Show(Snapshot(), S(u"All"), S(u"pinball"));
    const auto table = [&](int row) { return counting.index(row, 0, counting.RootIndex()); };
    for (int row = 0; row < kTables; ++row)
        if (row != kNotDrawn) IconKey(table(row));
    ASSERT_TRUE(test_support::WaitFor([&] { return asked == kTables - 1; }));
    const auto all_are_told = [&] {
        QCoreApplication::processEvents();
        for (int row = 0; row < kTables; ++row)
            if (row != kNotDrawn && IconKey(table(row)) != u"stop") return false;
        return true;
    };
    ASSERT_TRUE(test_support::WaitFor(all_are_told));
    // The last answer may come when those before it have been taken.
    EXPECT_GE(changes.count(), 2);
    EXPECT_LE(changes.count(), 4);
    for (const auto& change : changes)
        EXPECT_TRUE(change[0].toModelIndex().row() > kNotDrawn ||
                    change[1].toModelIndex().row() < kNotDrawn);
}

TEST_F(TableTreeModelTest, AnIconThatWasSetStaysUntilTheNextSelection) {
    AddTable(S(u"A"), MakeFile(S(u"a.vpt")));
    Show();
    model.SetTableIcon(Table(0), S(u"favorite"));
    EXPECT_EQ(IconKey(Table(0)), S(u"favorite"));
    Show();
    EXPECT_EQ(IconKey(Table(0)), S(u"pinball"));
}

TEST_F(TableTreeModelTest, NodeNumbersCountRootTablesAndTheirDetails) {
    for (const char16_t* name : {u"a", u"b", u"c"})
        AddTable(S(name));
    Show();
    EXPECT_EQ(model.NodeNumber(model.RootIndex()), 1);
    EXPECT_EQ(model.NodeNumber(Table(0)), 2);
    EXPECT_EQ(model.NodeNumber(Table(2)), 16);
    EXPECT_EQ(model.NodeNumber(model.index(5, 0, Table(1))), 15);
    EXPECT_EQ(model.NodeNumber({}), 0);
    EXPECT_EQ(model.IndexOfNode(16), Table(2));
    EXPECT_EQ(model.IndexOfNode(10), model.index(0, 0, Table(1)));
    EXPECT_FALSE(model.IndexOfNode(23).isValid());
    EXPECT_FALSE(model.IndexOfNode(0).isValid());
}

TEST_F(TableTreeModelTest, ObeysTheRulesOfModels) {
    for (const char16_t* name : {u"a", u"b"})
        AddTable(S(name));
    const QAbstractItemModelTester tester(&model,
                                          QAbstractItemModelTester::FailureReportingMode::Fatal);
    Show();
    model.SetRootIcon(S(u"open"));
    model.SetTableIcon(Table(1), S(u"favorite"));
    model.Clear();
    EXPECT_FALSE(model.has_nodes());
}

TEST_F(TableTreeModelTest, NamesOfAnyScriptAreShownWhole) {
    const QString name = S(u"Käfer – 弾球 \xd83c\xdfb1 'x' | y");
    AddTable(name);
    Show();
    EXPECT_EQ(Table(0).data().toString(), name);
}

}  // namespace
}  // namespace browser
