// The rules text tab. Needs widgets; runs offscreen.
#include "browser/detail_panel_fixture.h"

namespace browser {
namespace {

class DetailRulesTest : public DetailPanelFixture {
protected:
    void SetUp() override {
        DetailPanelFixture::SetUp();
        ShowTable(QStringLiteral("Attack"), QStringLiteral("RulesText = 'old', Author = 'Anna'"));
        panel->SetCurrentTab(3);
    }
    QString StoredRules() { return Stored(QStringLiteral("RulesText"), QStringLiteral("Attack")); }
};

TEST_F(DetailRulesTest, ReadFromFileFillsTheFieldAndLocksTheOtherTabs) {
    prompts.files = {WriteFile(QStringLiteral("rules.txt"), "Hit it.\nTwice.")};
    Click("cmdReadRule");
    ASSERT_EQ(prompts.dialogs.size(), 1u);
    EXPECT_EQ(prompts.dialogs[0].title, QStringLiteral("Select Rules File"));
    EXPECT_EQ(prompts.dialogs[0].filter, QStringLiteral("Text (*.txt)|*.txt"));
    EXPECT_EQ(panel->DetailText(12), QStringLiteral("Hit it.\r\nTwice.\r\n"));
    EXPECT_TRUE(panel->record_changed());
    EXPECT_EQ(EnabledTabs(), QList<int>({3}));
    Click("cmdReadRule");
    EXPECT_EQ(prompts.dialogs[0].folder, QString());
    EXPECT_EQ(prompts.dialogs[1].folder, folder.prefix()) << "where the last one was";
}

TEST_F(DetailRulesTest, ACancelledChoiceOrAMissingFileChangesNothing) {
    prompts.files = {QString(), folder.filePath(QStringLiteral("none.txt"))};
    Click("cmdReadRule");
    Click("cmdReadRule");
    EXPECT_EQ(panel->DetailText(12), QStringLiteral("old"));
    EXPECT_FALSE(panel->record_changed());
    EXPECT_TRUE(prompts.messages.empty());
}

TEST_F(DetailRulesTest, SaveStoresTheTextOfTheFile) {
    prompts.files = {WriteFile(QStringLiteral("rules.txt"), "K\xE4se \x80\n")};
    Click("cmdReadRule");
    Click("cmdSaveRules");
    EXPECT_EQ(StoredRules(), QStringLiteral("Käse €\r\n"));
    EXPECT_FALSE(panel->record_changed());
    EXPECT_EQ(host.remembered, 1);
}

TEST_F(DetailRulesTest, SaveStoresATypedTextWithWindowsLineEnds) {
    Retype(12, QStringLiteral("one\ntwo"));
    Click("cmdSaveRules");
    EXPECT_EQ(StoredRules(), QStringLiteral("one\r\ntwo"));
}

TEST_F(DetailRulesTest, SaveWritesTheRulesAloneAndDropsOtherEdits) {
    panel->SetDetailText(4, QStringLiteral("Bert"));
    Retype(12, QStringLiteral("new"));
    Click("cmdSaveRules");
    EXPECT_EQ(StoredRules(), QStringLiteral("new"));
    EXPECT_EQ(Stored(QStringLiteral("Author"), QStringLiteral("Attack")), QStringLiteral("Anna"));
    EXPECT_EQ(Line(4)->text(), QStringLiteral("Anna"));
}

TEST_F(DetailRulesTest, AnEmptyTextCanBeSaved) {
    Retype(12, {});
    Click("cmdSaveRules");
    EXPECT_EQ(StoredRules(), QString());
    EXPECT_TRUE(prompts.messages.empty());
}

TEST_F(DetailRulesTest, CancelShowsTheStoredText) {
    Retype(12, QStringLiteral("new"));
    Click("cmdCancelRules");
    EXPECT_EQ(Lines(12)->toPlainText(), QStringLiteral("old"));
    EXPECT_FALSE(panel->record_changed());
    EXPECT_EQ(StoredRules(), QStringLiteral("old"));
}

TEST_F(DetailRulesTest, ARowDeletedMeanwhileIsToldAndTheTextStays) {
    Retype(12, QStringLiteral("new"));
    Execute(QStringLiteral("delete from tables"));
    Click("cmdSaveRules");
    EXPECT_EQ(prompts.messages.size(), 1u);
    EXPECT_EQ(panel->DetailText(12), QStringLiteral("new"));
    EXPECT_TRUE(panel->record_changed());
}

TEST_F(DetailRulesTest, FiftyMegabytesOfRulesAreStoredWhole) {
    const QByteArray line("Hit the drop targets and the bumpers.\r\n");
    const qsizetype count = 50 * 1024 * 1024 / line.size();
    prompts.files = {WriteFile(QStringLiteral("rules.txt"), line.repeated(count))};
    Click("cmdReadRule");
    Click("cmdSaveRules");
    EXPECT_TRUE(prompts.messages.empty());
    EXPECT_EQ(StoredRules(), QString::fromLatin1(line).repeated(count));
}

}  // namespace
}  // namespace browser
