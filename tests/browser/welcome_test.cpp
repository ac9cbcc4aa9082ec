// The page in the tree's place while there are no tables.
#include "browser/main_window_fixture.h"

#include <QtWidgets/QAbstractButton>

namespace browser {
namespace {

class WelcomeTest : public MainWindowTest {
protected:
    void SetUp() override {
        MainWindowTest::SetUp();
        values.VisualPinballExe = S(u"/bin/vp");
    }
    bool IsShown() {
        EXPECT_NE(Find<QWidget>(u"WelcomePage")->isVisible(), Tree()->isVisible());
        return Find<QWidget>(u"WelcomePage")->isVisible();
    }
    void Choose(const char16_t* name) { Find<QAbstractButton>(name)->click(); }
};

TEST_F(WelcomeTest, AnEmptyCatalogueIsWelcomed) {
    Open();
    EXPECT_TRUE(IsShown());
    EXPECT_EQ(commands, QStringList({S(u"scan")}));
}

TEST_F(WelcomeTest, ATableBringsTheTree) {
    Open();
    AddTable(S(u"Alpha"), S(u"/t/alpha.vpt"));
    window->RefreshTree();
    EXPECT_FALSE(IsShown());
    Execute(S(u"DELETE FROM Tables"));
    Press(u"cmdGo");
    EXPECT_TRUE(IsShown());
}

TEST_F(WelcomeTest, AQuestionThatFindsNothingIsNoEmptyCatalogue) {
    AddTable(S(u"Alpha"), S(u"/t/alpha.vpt"));
    Open();
    PickFilter(u"Favorites");
    Press(u"cmdGo");
    EXPECT_FALSE(IsShown());
}

TEST_F(WelcomeTest, EachOfferDoesWhatItSays) {
    QStringList done;
    Open();
    window->SetWelcomeActions(
        {[&] { done.append(S(u"example")); }, [&] { done.append(S(u"folder")); }});
    Choose(u"cmdWelcomeScan");
    Choose(u"cmdWelcomeExample");
    Choose(u"cmdWelcomeFolder");
    EXPECT_EQ(commands, QStringList({S(u"scan"), S(u"scan")}));
    EXPECT_EQ(done, QStringList({S(u"example"), S(u"folder")}));
}

TEST_F(WelcomeTest, ThereIsNothingToFind) {
    Open();
    Action(u"mnuFind")->trigger();
    EXPECT_FALSE(Find<QWidget>(u"FindBar")->isVisible());
}

}  // namespace
}  // namespace browser
