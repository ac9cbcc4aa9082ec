// What the detail panel shows of a record. Needs widgets; runs offscreen.
#include "browser/detail_panel_fixture.h"

namespace browser {
namespace {

class DetailPanelTest : public DetailPanelFixture {};

TEST_F(DetailPanelTest, EveryColumnIsShownInItsField) {
    const QString file = ShowTable(
        QStringLiteral("Attack"),
        QStringLiteral("[Year]='1977', Author='Anna', Version='1.2', Company='Playmatic', "
                       "ImageFile='i', FlyerFile='f', Notes='n', RulesFile='r', RulesText='t'"));
    EXPECT_EQ(Line(0)->text(), Stored(QStringLiteral("ID"), QStringLiteral("Attack")));
    EXPECT_EQ(Line(1)->text(), QStringLiteral("1977"));
    EXPECT_EQ(Line(2)->text(), QStringLiteral("Attack"));
    EXPECT_EQ(Line(3)->text(), file);
    EXPECT_EQ(Line(4)->text(), QStringLiteral("Anna"));
    EXPECT_EQ(Line(5)->text(), QStringLiteral("1.2"));
    EXPECT_EQ(Line(6)->text(), QStringLiteral("Playmatic"));
    EXPECT_EQ(Line(7)->text(), QStringLiteral("i"));
    EXPECT_EQ(Line(8)->text(), QStringLiteral("f"));
    EXPECT_EQ(Lines(9)->toPlainText(), QStringLiteral("n"));
    EXPECT_EQ(Line(10)->text(), QStringLiteral("r"));
    EXPECT_EQ(Line(11)->text(), QStringLiteral("11/20/2026 3:04:05 PM"));
    EXPECT_EQ(Lines(12)->toPlainText(), QStringLiteral("t"));
}

TEST_F(DetailPanelTest, TheLabelsNameTheFields) {
    const QMap<int, QString> captions = {
        {1, QStringLiteral("Year")},       {2, QStringLiteral("Name")},
        {3, QStringLiteral("File Name")},  {4, QStringLiteral("Author")},
        {5, QStringLiteral("Ver.")},       {6, QStringLiteral("Company")},
        {7, QStringLiteral("Image File")}, {8, QStringLiteral("Flyer File")},
        {9, QStringLiteral("Notes:")},     {10, QStringLiteral("Rules File")},
        {11, QStringLiteral("File Date")}};
    for (auto it = captions.begin(); it != captions.end(); ++it)
        EXPECT_EQ(Find<QLabel>(QStringLiteral("Label2_%1").arg(it.key()))->text(), it.value());
}

TEST_F(DetailPanelTest, TheButtonsHaveTheirCaptions) {
    const QMap<QString, QString> captions = {
        {QStringLiteral("chkFavorite"), QStringLiteral("Favorite")},
        {QStringLiteral("chkPinMame"), QStringLiteral("PinMame")},
        {QStringLiteral("cmdChange"), QStringLiteral("Save")},
        {QStringLiteral("cmdCancel"), QStringLiteral("Cancel")},
        {QStringLiteral("cmdDelete"), QStringLiteral("Delete")},
        {QStringLiteral("cmdReadInfo"), QStringLiteral("View Table Info from VPT")},
        {QStringLiteral("cmdReadRule"), QStringLiteral("Read From File")},
        {QStringLiteral("cmdSaveRules"), QStringLiteral("Save")},
        {QStringLiteral("cmdCancelRules"), QStringLiteral("Cancel")}};
    for (auto it = captions.begin(); it != captions.end(); ++it)
        EXPECT_EQ(Find<QAbstractButton>(it.key())->text(), it.value());
}

TEST_F(DetailPanelTest, NullsAreEmptyTexts) {
    ShowTable(QStringLiteral("Attack"));
    for (const int index : {1, 4, 5, 6, 7, 8, 10})
        EXPECT_EQ(Line(index)->text(), QString());
    EXPECT_EQ(Lines(9)->toPlainText(), QString());
    EXPECT_EQ(Lines(12)->toPlainText(), QString());
}

TEST_F(DetailPanelTest, ARowWithoutAFileDateIsShownWhole) {
    ShowTable(QStringLiteral("Attack"),
              QStringLiteral("FileDate = null, RulesText = 'Hit it.', Favorite = true"));
    EXPECT_EQ(Line(11)->text(), QString());
    EXPECT_EQ(Lines(12)->toPlainText(), QStringLiteral("Hit it."));
    EXPECT_TRUE(panel->FavoriteChecked());
}

TEST_F(DetailPanelTest, TheCheckBoxesFollowTheirColumns) {
    ShowTable(QStringLiteral("Attack"), QStringLiteral("PinMame = true, Favorite = false"));
    EXPECT_TRUE(Find<QAbstractButton>(QStringLiteral("chkPinMame"))->isChecked());
    EXPECT_FALSE(panel->FavoriteChecked());
    ShowTable(QStringLiteral("Bone"), QStringLiteral("PinMame = false, Favorite = true"));
    EXPECT_FALSE(Find<QAbstractButton>(QStringLiteral("chkPinMame"))->isChecked());
    EXPECT_TRUE(panel->FavoriteChecked());
}

TEST_F(DetailPanelTest, TheStatusBarNamesTheTableItsPlaysAndItsLastPlay) {
    ShowTable(QStringLiteral("Attack"),
              QStringLiteral("TimesPlayed = 7, LastPlayed = #11/19/2026 8:00:00 AM#"));
    EXPECT_EQ(host.status[2], QStringLiteral("Current Table: Attack"));
    EXPECT_EQ(host.status[3], QStringLiteral("Times Played: 7"));
    EXPECT_EQ(host.status[4], QStringLiteral("Last Played: 11/19/2026 8:00:00 AM"));
}

TEST_F(DetailPanelTest, NullsGiveNothingAfterTheLabelsOfTheStatusBar) {
    ShowTable(QStringLiteral("Attack"), QStringLiteral("TimesPlayed = null"));
    EXPECT_EQ(host.status[3], QStringLiteral("Times Played: "));
    EXPECT_EQ(host.status[4], QStringLiteral("Last Played: "));
}

TEST_F(DetailPanelTest, TheCommentsAreTheNotesSummary) {
    ShowTable(QStringLiteral("Attack"), QStringLiteral("Notes = 'a' & chr(13) & chr(10) & 'b'"));
    EXPECT_EQ(host.comments, QStringLiteral("a\r\nb"));
    EXPECT_EQ(panel->NotesSummary(host.selected_tag), host.comments);
}

class OddNameTest : public DetailPanelFixture,
                    public testing::WithParamInterface<const char16_t*> {};

TEST_P(OddNameTest, TheRowIsFoundByItsFileName) {
    const QString name = QString::fromUtf16(GetParam());
    ShowTable(name);
    EXPECT_EQ(Line(2)->text(), name);
    EXPECT_FALSE(panel->record_changed());
}

INSTANTIATE_TEST_SUITE_P(Names, OddNameTest,
                         testing::Values(u"Bob's Table", u"a|b", u"it's a|b's", u"\"quoted\"",
                                         u"' or true or '", u"Käse [2]", u"100% #1"));

TEST_F(DetailPanelTest, AFileNameOfNoRowLeavesThePanelCleared) {
    ShowTable(QStringLiteral("Attack"), QStringLiteral("Favorite = true, Notes = 'n'"));
    panel->ShowTableDetails(QStringLiteral("/nowhere.vpt"));
    for (int index = 0; index < 13; ++index)
        EXPECT_EQ(panel->DetailText(index), QString());
    EXPECT_FALSE(panel->FavoriteChecked());
    EXPECT_EQ(host.comments, QString());
    for (const int status : {2, 3, 4})
        EXPECT_EQ(host.status[status], QString());
    EXPECT_TRUE(prompts.messages.empty());
}

TEST_F(DetailPanelTest, AFailureLeavesWhatWasFilledBeforeIt) {
    const QString file = AddTable(QStringLiteral("Attack"),
                                  QStringLiteral("Author = 'Anna', RulesText = 'Hit it.'"));
    Execute(QStringLiteral("alter table tables drop column RulesFile"));
    panel->ShowTableDetails(file);
    EXPECT_EQ(Line(4)->text(), QStringLiteral("Anna"));
    EXPECT_EQ(Line(11)->text(), QStringLiteral("11/20/2026 3:04:05 PM"));
    EXPECT_EQ(Lines(12)->toPlainText(), QString());
    EXPECT_NE(host.status[2], QString());
    EXPECT_FALSE(host.status[2].startsWith(QStringLiteral("Current Table")));
    EXPECT_TRUE(prompts.messages.empty());
}

TEST_F(DetailPanelTest, AFileNameOfNoRowIsNoFailure) {
    panel->ShowTableDetails(QStringLiteral("/nowhere.vpt"));
    EXPECT_EQ(host.status[2], QString());
    EXPECT_EQ(panel->NotesSummary(QStringLiteral("/nowhere.vpt")), QString());
    EXPECT_EQ(host.status[2], QString());
}

TEST_F(DetailPanelTest, NotesThatCannotBeReadAreSaidInTheStatusBar) {
    connection->Close().Ignore();
    EXPECT_EQ(panel->NotesSummary(QStringLiteral("/nowhere.vpt")), QString());
    EXPECT_NE(host.status[2], QString());
}

TEST_F(DetailPanelTest, AfterAFailureAnEditIsStillNoticed) {
    panel->ShowTableDetails(QStringLiteral("/nowhere.vpt"));
    EXPECT_FALSE(panel->record_changed());
    Line(4)->setText(QStringLiteral("Anna"));
    EXPECT_TRUE(panel->record_changed());
}

TEST_F(DetailPanelTest, ThereAreFiveTabsAndTheSavedOneCanBeSelected) {
    QStringList captions;
    for (int tab = 0; tab < Tabs()->count(); ++tab)
        captions.append(Tabs()->tabText(tab));
    EXPECT_EQ(captions.join(u'/').toStdString(), "Details/Screenshot/Flyer/Rules Text/Rules Sheet");
    for (int tab = 0; tab < 5; ++tab) {
        panel->SetCurrentTab(tab);
        EXPECT_EQ(panel->CurrentTab(), tab);
    }
}

TEST_F(DetailPanelTest, TheRulesTextTabHasItsOwnSaveAndCancelOnly) {
    auto* save = Find<QAbstractButton>(QStringLiteral("cmdChange"));
    auto* save_rules = Find<QAbstractButton>(QStringLiteral("cmdSaveRules"));
    for (int tab = 0; tab < 5; ++tab) {
        panel->SetCurrentTab(tab);
        EXPECT_EQ(save->isVisible(), tab != 3) << tab;
        EXPECT_EQ(save_rules->isVisible(), tab == 3) << tab;
    }
}

TEST_F(DetailPanelTest, TheInfoButtonAsksTheWindow) {
    const QSignalSpy views(panel.get(), &DetailPanel::ViewTableInfoClicked);
    Click("cmdReadInfo");
    EXPECT_EQ(views.count(), 1);
}

}  // namespace
}  // namespace browser
