// MainWindowFixture: the main window on a real catalogue; its questions are answered by the test,
// its commands recorded. Needs widgets; runs offscreen.
#pragma once

#include "browser/frmPinball.h"
#include "browser/tree_fixture.h"
#include "support/qt_text.h"

#include <QtGui/QAction>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QMenu>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QTreeView>

namespace browser {
using test_support::S;

struct Play {
    QString path;
    QString name;
    std::int32_t id = 0;
    bool operator==(const Play&) const = default;
};

class MainWindowTest : public TreeFixture {
protected:
    // Opens the window as the program does.
    void Open() {
        window = std::make_unique<frmPinball>(catalogue, prompts);
        window->SetPlayTable([this](const QString& path, const QString& name, std::int32_t id) {
            plays.push_back({path, name, id});
            if (while_playing) while_playing();
        });
        window->SetActions({.scan_for_tables = [this] { commands.append(S(u"scan")); },
                            .set_executable = [this] { commands.append(S(u"exe")); },
                            .load_picture = [this] { commands.append(S(u"clip")); }});
        window->Load();
        window->show();
        window->AskForWhatIsMissing();
    }
    void Save(const char16_t* key, const char16_t* value) {
        settings.values[S(u"TAVOLO/GENERAL/") + S(key)] = S(value);
    }
    QString Saved(const char16_t* key) {
        return settings.values.value(S(u"TAVOLO/GENERAL/") + S(key), S(u"<missing>"));
    }
    template <typename T>
    T* Find(const char16_t* name) {
        T* const found = window->findChild<T*>(S(name));
        EXPECT_TRUE(found) << S(name).toStdString();
        return found;
    }
    QTreeView* Tree() { return Find<QTreeView>(u"tvwDB"); }
    QModelIndex Root() { return Tree()->model()->index(0, 0); }
    QModelIndex Table(int row) { return Tree()->model()->index(row, 0, Root()); }
    QModelIndex Detail(int table, int row) { return Tree()->model()->index(row, 0, Table(table)); }
    QStringList TableNames() {
        QStringList names;
        for (int row = 0; row < Tree()->model()->rowCount(Root()); ++row)
            names.append(Table(row).data().toString());
        return names;
    }
    void Click(const QModelIndex& index, Qt::MouseButton button = Qt::LeftButton) {
        Tree()->scrollTo(index);
        QTest::mouseClick(Tree()->viewport(), button, {}, Tree()->visualRect(index).center());
    }
    void DoubleClick(const QModelIndex& index) {
        Tree()->scrollTo(index);
        const QPoint place = Tree()->visualRect(index).center();
        QTest::mouseClick(Tree()->viewport(), Qt::LeftButton, {}, place);
        QTest::mouseDClick(Tree()->viewport(), Qt::LeftButton, {}, place);
    }
    QString FieldText(int field) { return window->details().DetailText(field); }
    void PickFilter(const char16_t* text) {
        auto* combo = Find<QComboBox>(u"cboFilter");
        combo->setCurrentIndex(combo->findText(S(text)));
        Q_EMIT combo->activated(combo->currentIndex());
    }
    void TypeValue(const char16_t* text) { Find<QComboBox>(u"cboFilterDet")->setEditText(S(text)); }
    void Press(const char16_t* button) { QTest::mouseClick(Find<QWidget>(button), Qt::LeftButton); }
    bool RefreshPending() { return Find<QWidget>(u"cmdGo")->property("textEffect").toInt() == 3; }
    QString Panel(int panel) {
        return Find<QLabel>((S(u"sbrDB_") + QString::number(panel)).toStdU16String().c_str())
            ->text();
    }
    QAction* Action(const char16_t* name) { return Find<QAction>(name); }
    // Changes the name of the shown table, as a user who types.
    void EditName() { window->details().SetDetailText(2, S(u"changed")); }

    QStringList commands;
    std::vector<Play> plays;
    std::function<void()> while_playing;
    std::unique_ptr<frmPinball> window;
};

class MainWindowWithTables : public MainWindowTest {
protected:
    void SetUp() override {
        MainWindowTest::SetUp();
        values.VisualPinballExe = S(u"/bin/vp");
        alpha = MakeFile(S(u"alpha.vpt"));
        AddRow(S(u"DisplayName, FileName, Author, Year, TimesPlayed, Favorite, FileDate, Notes"),
               QStringLiteral("'Alpha', '%1', 'Bob', '1990', 3, false, '1/2/2003', 'note of alpha'")
                   .arg(alpha));
        AddRow(S(u"DisplayName, FileName, Author, Year, TimesPlayed, Favorite, PinMame, FileDate"),
               S(u"'Beta', '/gone/beta.vpt', 'Ann', '1991', 0, true, true, '5/6/2007'"));
        AddRow(S(u"DisplayName, FileName, Author, Year, TimesPlayed, FileDate"),
               QStringLiteral("'Gamma', '%1', 'Bob', '1985', 12, '1/2/2003'")
                   .arg(MakeFile(S(u"it's gamma.vpt")).replace(S(u"'"), S(u"''"))));
    }
    QString alpha;
};

}  // namespace browser
