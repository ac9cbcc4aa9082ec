// Which table is selected after the tree was filled anew.
#include "browser/tree_place.h"

#include "browser/tree_fixture.h"
#include "support/qt_text.h"

namespace browser {
namespace {

using test_support::S;

class TreePlaceTest : public TreeFixture {
protected:
    void SetUp() override {
        TreeFixture::SetUp();
        for (const char16_t* const name : {u"A", u"B", u"C", u"D", u"E"})
            AddTable(QString::fromUtf16(name));
        Show();
    }
    void Show() {
        model.Show(Snapshot(), S(u"All"), S(u"pinball"));
        tree.expandAll();
    }
    void RememberTable(std::size_t table) {
        tree.SelectNode(model.IndexOfTable(table));
        place.Remember(model, tree);
    }
    void Delete(const QString& names) {
        Execute(S(u"DELETE FROM Tables WHERE DisplayName IN (") + names + u')');
        Show();
    }
    // The name of the found table; "-": none.
    QString Found(TreePlace::Gone gone = TreePlace::Gone::kTakesTheNeighbour) {
        const QModelIndex node = place.Find(model, gone);
        return node.isValid() ? node.data().toString() : S(u"-");
    }

    TableTreeModel model;
    TableTreeView tree{model};
    TreePlace place;
};

TEST_F(TreePlaceTest, NothingWasSelected) {
    place.Remember(model, tree);
    EXPECT_EQ(Found(), S(u"-"));
}

TEST_F(TreePlaceTest, TheSameTableIsFoundWhereItStandsNow) {
    RememberTable(3);
    Execute(S(u"UPDATE Tables SET DisplayName = '0' WHERE DisplayName = 'D'"));
    Show();
    EXPECT_EQ(place.Find(model, TreePlace::Gone::kTakesNone), model.IndexOfTable(0));
    EXPECT_EQ(Found(), S(u"0"));
}

TEST_F(TreePlaceTest, ADetailLineIsOfItsTable) {
    tree.SelectNode(model.index(2, 0, model.IndexOfTable(1)));
    place.Remember(model, tree);
    EXPECT_EQ(Found(), S(u"B"));
}

TEST_F(TreePlaceTest, TheNextOneTakesThePlaceOfATableThatIsGone) {
    RememberTable(1);
    Delete(S(u"'B'"));
    EXPECT_EQ(Found(), S(u"C"));
    EXPECT_EQ(Found(TreePlace::Gone::kTakesNone), S(u"-"));
}

TEST_F(TreePlaceTest, TheNextOneThatIsLeft) {
    RememberTable(1);
    Delete(S(u"'B', 'C', 'D'"));
    EXPECT_EQ(Found(), S(u"E"));
}

TEST_F(TreePlaceTest, OrTheNearestBeforeIt) {
    RememberTable(3);
    Delete(S(u"'C', 'D', 'E'"));
    EXPECT_EQ(Found(), S(u"B"));
}

TEST_F(TreePlaceTest, TheLastOneHasNoneBehindIt) {
    RememberTable(4);
    Delete(S(u"'E'"));
    EXPECT_EQ(Found(), S(u"D"));
}

TEST_F(TreePlaceTest, NoneIsLeft) {
    RememberTable(0);
    Delete(S(u"'A', 'B', 'C', 'D', 'E'"));
    AddTable(S(u"F"));
    Show();
    EXPECT_EQ(Found(), S(u"-"));
}

}  // namespace
}  // namespace browser
