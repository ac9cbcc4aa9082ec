// Editing in the detail panel: the lock, Save, Cancel, Delete and the choosers. Needs widgets; runs
// offscreen.
#include "browser/detail_panel_fixture.h"

namespace browser {
namespace {

using platform::MessageAnswer;

class DetailEditTest : public DetailPanelFixture {};

TEST_F(DetailEditTest, LoadingARecordNeverRaisesTheWarning) {
    ShowTable(QStringLiteral("Attack"), QStringLiteral("Favorite = true, PinMame = true, "
                                                       "Notes = 'n', RulesText = 't'"));
    EXPECT_FALSE(panel->record_changed());
    ShowTable(QStringLiteral("Bone"));
    panel->ClearTableDetails();
    EXPECT_FALSE(panel->record_changed());
    EXPECT_FALSE(host.locked);
}

TEST_F(DetailEditTest, AKeystrokeLocksTheWindowAndShowsTheWarningInRed) {
    ShowTable(QStringLiteral("Attack"), QStringLiteral("Notes = 'n'"));
    QTest::keyClicks(Line(4), QStringLiteral("A"));
    EXPECT_TRUE(panel->record_changed());
    EXPECT_TRUE(host.locked);
    EXPECT_TRUE(Alert()->isVisible());
    EXPECT_EQ(Alert()->text(), QStringLiteral("Record Changed! Click CANCEL or SAVE to continue."));
    EXPECT_EQ(Alert()->palette().color(QPalette::WindowText), QColor(255, 0, 0));
    EXPECT_EQ(host.comments, QString());
}

TEST_F(DetailEditTest, EveryFieldThatCanBeEditedMarksTheRecord) {
    for (const int index : {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 12}) {
        panel->SetRecordChanged(false);
        panel->SetDetailText(index, QStringLiteral("new"));
        EXPECT_TRUE(panel->record_changed()) << index;
    }
}

TEST_F(DetailEditTest, AClickOnACheckBoxMarksTheRecord) {
    for (const char* box : {"chkFavorite", "chkPinMame"}) {
        ShowTable(QLatin1String(box));
        panel->SetRecordChanged(false);
        Click(box);
        EXPECT_TRUE(panel->record_changed()) << box;
    }
}

TEST_F(DetailEditTest, IdAndFileDateCannotBeTyped) {
    EXPECT_TRUE(Line(0)->isReadOnly());
    EXPECT_TRUE(Line(11)->isReadOnly());
}

TEST_F(DetailEditTest, OnlyTheCurrentTabStaysUsable) {
    ShowTable(QStringLiteral("Attack"));
    QTest::keyClicks(Lines(9), QStringLiteral("typed"));
    EXPECT_EQ(EnabledTabs(), QList<int>({0}));
    Click("cmdCancel");
    EXPECT_EQ(EnabledTabs(), QList<int>({0, 1, 2, 3, 4}));
}

TEST_F(DetailEditTest, WhileTheRulesAreEditedTheRulesTabIsTheUsableOne) {
    ShowTable(QStringLiteral("Attack"));
    panel->SetCurrentTab(3);
    QTest::keyClicks(Lines(12), QStringLiteral("typed"));
    EXPECT_EQ(EnabledTabs(), QList<int>({3}));
}

TEST_F(DetailEditTest, SaveWritesTheFieldsAndUnlocks) {
    ShowTable(QStringLiteral("Attack"));
    const QStringList texts = {QStringLiteral("1977"), QStringLiteral("Bob's | Attack"),
                               host.selected_tag,      QStringLiteral("Anna"),
                               QStringLiteral("2.0"),  QStringLiteral("Playmatic")};
    for (int i = 0; i < texts.size(); ++i)
        Line(i + 1)->setText(texts[i]);
    Retype(9, QStringLiteral("one\ntwo"));
    Click("chkPinMame");
    Click("chkFavorite");
    Click("cmdChange");
    EXPECT_FALSE(panel->record_changed());
    EXPECT_FALSE(host.locked);
    EXPECT_EQ(host.remembered, 1);
    const QString name = texts[1];
    EXPECT_EQ(Stored(QStringLiteral("[Year]"), name), texts[0]);
    EXPECT_EQ(Stored(QStringLiteral("FileName"), name), texts[2]);
    EXPECT_EQ(Stored(QStringLiteral("Author"), name), texts[3]);
    EXPECT_EQ(Stored(QStringLiteral("Version"), name), texts[4]);
    EXPECT_EQ(Stored(QStringLiteral("Company"), name), texts[5]);
    EXPECT_EQ(Stored(QStringLiteral("Notes"), name), QStringLiteral("one\r\ntwo"));
    EXPECT_EQ(Stored(QStringLiteral("PinMame"), name), QStringLiteral("True"));
    EXPECT_EQ(Stored(QStringLiteral("Favorite"), name), QStringLiteral("True"));
    EXPECT_EQ(host.comments, QStringLiteral("one\r\ntwo"));
    EXPECT_EQ(host.refreshes, 0);
}

TEST_F(DetailEditTest, SaveLeavesRulesTextAndFileDateAlone) {
    ShowTable(QStringLiteral("Attack"), QStringLiteral("RulesText = 'kept'"));
    Retype(12, QStringLiteral("not saved"));
    Click("cmdChange");
    EXPECT_EQ(Stored(QStringLiteral("RulesText"), QStringLiteral("Attack")),
              QStringLiteral("kept"));
    EXPECT_EQ(Stored(QStringLiteral("FileDate"), QStringLiteral("Attack")),
              QStringLiteral("11/20/2026 3:04:05 PM"));
}

TEST_F(DetailEditTest, SaveKeepsNotesThatNobodyEditedByteForByte) {
    ShowTable(QStringLiteral("Attack"),
              QStringLiteral("Notes = 'a' & chr(13) & 'b' & chr(10) & 'c' & chr(160)"));
    Line(4)->setText(QStringLiteral("Anna"));
    Click("cmdChange");
    EXPECT_EQ(Stored(QStringLiteral("Notes"), QStringLiteral("Attack")),
              QStringLiteral("a\rb\nc\u00A0"));
}

TEST_F(DetailEditTest, WithoutARecordSaveDoesNothing) {
    Line(4)->setText(QStringLiteral("Anna"));
    Click("cmdChange");
    Click("cmdSaveRules");
    Click("cmdDelete");
    EXPECT_TRUE(panel->record_changed());
    EXPECT_TRUE(prompts.messages.empty());
}

class MissingFileTest : public DetailPanelFixture, public testing::WithParamInterface<int> {};

TEST_P(MissingFileTest, SaveIsRefusedAndTheFieldSelected) {
    const int field = GetParam();
    ShowTable(QStringLiteral("Attack"));
    panel->activateWindow();
    Line(4)->setText(QStringLiteral("Anna"));
    Line(field)->setText(QStringLiteral("/nowhere/picture.jpg"));
    Click("cmdChange");
    ASSERT_EQ(prompts.messages.size(), 1u);
    EXPECT_EQ(prompts.messages[0].text,
              QStringLiteral("Please select a valid file name or leave blank"));
    EXPECT_EQ(prompts.messages[0].title, QString());
    EXPECT_TRUE(panel->record_changed());
    EXPECT_TRUE(host.locked);
    EXPECT_EQ(Line(field)->selectedText(), QStringLiteral("/nowhere/picture.jpg"));
    EXPECT_EQ(panel->focusWidget(), Line(field));
    EXPECT_EQ(Stored(QStringLiteral("Author"), QStringLiteral("Attack")), QString());
}

INSTANTIATE_TEST_SUITE_P(Fields, MissingFileTest, testing::Values(7, 8, 10));

TEST_F(DetailEditTest, TheFieldWithTheMissingFileComesToTheFront) {
    ShowTable(QStringLiteral("Attack"), QStringLiteral("ImageFile = '/nowhere/picture.jpg'"));
    panel->SetCurrentTab(1);
    panel->SetDetailText(4, QStringLiteral("Anna"));
    ASSERT_EQ(EnabledTabs(), QList<int>({1}));
    panel->Save();
    EXPECT_EQ(panel->CurrentTab(), 0);
    EXPECT_EQ(EnabledTabs(), QList<int>({0}));
}

TEST_F(DetailEditTest, BlankPictureFieldsAreValid) {
    ShowTable(QStringLiteral("Attack"));
    Line(7)->setText(QStringLiteral("   "));
    Click("cmdChange");
    EXPECT_TRUE(prompts.messages.empty());
    EXPECT_FALSE(panel->record_changed());
}

TEST_F(DetailEditTest, PictureFieldsThatNameFilesAreSaved) {
    ShowTable(QStringLiteral("Attack"));
    const QString picture = WritePicture(QStringLiteral("it's.jpg"));
    for (const int field : {7, 8, 10})
        Line(field)->setText(picture);
    Click("cmdChange");
    for (const char16_t* column : {u"ImageFile", u"FlyerFile", u"RulesFile"})
        EXPECT_EQ(Stored(QString::fromUtf16(column), QStringLiteral("Attack")), picture);
}

TEST_F(DetailEditTest, AFolderIsNoPictureFile) {
    ShowTable(QStringLiteral("Attack"));
    Line(7)->setText(folder.path());
    Click("cmdChange");
    EXPECT_EQ(prompts.messages.size(), 1u);
}

TEST_F(DetailEditTest, ATextTooLongForItsColumnIsToldAndNothingIsLost) {
    ShowTable(QStringLiteral("Attack"));
    Line(4)->setText(QStringLiteral("Anna"));
    const QString text(300, QLatin1Char('x'));
    Line(6)->setText(text);
    Click("cmdChange");
    ASSERT_EQ(prompts.messages.size(), 1u);
    EXPECT_TRUE(
        prompts.messages[0].text.startsWith(QStringLiteral("Company: The field is too small")))
        << prompts.messages[0].text.toStdString();
    EXPECT_EQ(prompts.messages[0].icon, platform::MessageIcon::kExclamation);
    EXPECT_TRUE(panel->record_changed());
    EXPECT_EQ(Line(6)->text(), text);
    EXPECT_EQ(Line(6)->selectedText(), text);
    EXPECT_EQ(Stored(QStringLiteral("Author"), QStringLiteral("Attack")), QString());
}

TEST_F(DetailEditTest, NoMoreCanBeTypedThanTheColumnTakes) {
    ShowTable(QStringLiteral("Attack"));
    Line(1)->setFocus();
    QTest::keyClicks(Line(1), QString(300, QLatin1Char('7')));
    const auto most = Line(1)->text().size();
    EXPECT_GT(most, 0);
    EXPECT_LT(most, 300);
    Click("cmdChange");
    EXPECT_TRUE(prompts.messages.empty());
    EXPECT_EQ(Stored(QStringLiteral("[Year]"), QStringLiteral("Attack")).size(), most);
    QTest::keyClicks(Line(1), QStringLiteral("7"));
    EXPECT_EQ(Line(1)->text().size(), most) << "not one more";
}

TEST_F(DetailEditTest, ATextThatIsTooLongCanBeMadeShorter) {
    ShowTable(QStringLiteral("Attack"));
    Line(6)->setText(QString(300, QLatin1Char('x')));
    Line(6)->setFocus();
    Line(6)->setCursorPosition(300);
    QTest::keyClick(Line(6), Qt::Key_Backspace);
    EXPECT_EQ(Line(6)->text().size(), 299);
}

TEST_F(DetailEditTest, WithoutARecordNothingCanBeTyped) {
    const auto expect = [this](bool enabled) {
        for (int field = 1; field <= 12; ++field)
            EXPECT_EQ(Find<QWidget>(QStringLiteral("txtDet_%1").arg(field))->isEnabled(), enabled)
                << field;
        for (const char* name : {"chkFavorite", "chkPinMame", "Command2", "Command3", "Command4",
                                 "cmdChange", "cmdDelete", "cmdReadRule", "cmdSaveRules"})
            EXPECT_EQ(Find<QWidget>(QLatin1String(name))->isEnabled(), enabled) << name;
    };
    expect(false);
    ShowTable(QStringLiteral("Attack"));
    expect(true);
    panel->ClearTableDetails();
    expect(false);
    panel->ShowTableDetails(QStringLiteral("/nowhere.vpt"));
    expect(false);
}

TEST_F(DetailEditTest, AFieldKeepsTheFocusWhileItsRecordIsStored) {
    ShowTable(QStringLiteral("Attack"));
    panel->activateWindow();
    Line(4)->setFocus();
    QTest::keyClicks(Line(4), QStringLiteral("Anna"));
    panel->Save();
    EXPECT_EQ(panel->focusWidget(), Line(4));
}

TEST_F(DetailEditTest, ARowDeletedMeanwhileIsToldAndTheEditStays) {
    ShowTable(QStringLiteral("Attack"));
    Execute(QStringLiteral("delete from tables"));
    Line(4)->setText(QStringLiteral("Anna"));
    Click("cmdChange");
    ASSERT_EQ(prompts.messages.size(), 1u);
    EXPECT_TRUE(panel->record_changed());
    EXPECT_EQ(Line(4)->text(), QStringLiteral("Anna"));
    Click("cmdCancel");
    EXPECT_FALSE(panel->record_changed());
    EXPECT_EQ(Line(4)->text(), QString());
}

TEST_F(DetailEditTest, CancelShowsTheStoredRecordAgain) {
    ShowTable(QStringLiteral("Attack"), QStringLiteral("Author = 'Anna'"));
    Line(4)->setText(QStringLiteral("Bert"));
    Click("chkFavorite");
    Click("cmdCancel");
    EXPECT_EQ(Line(4)->text(), QStringLiteral("Anna"));
    EXPECT_FALSE(panel->FavoriteChecked());
    EXPECT_FALSE(panel->record_changed());
    EXPECT_FALSE(host.locked);
}

TEST_F(DetailEditTest, DeleteAsksAndDeletesTheRowOnly) {
    const QString file = AddTable(QStringLiteral("Bone"));
    WriteFile(QStringLiteral("Attack.vpt"), "table");
    ShowTable(QStringLiteral("Attack"));
    panel->SetDetailText(4, QStringLiteral("edited"));
    Click("cmdDelete");
    ASSERT_EQ(prompts.messages.size(), 1u);
    EXPECT_EQ(prompts.messages[0].text, QStringLiteral("Delete the current table?"));
    EXPECT_EQ(prompts.messages[0].title, QStringLiteral("Warning"));
    EXPECT_EQ(prompts.messages[0].buttons, platform::MessageButtons::kYesNo);
    EXPECT_TRUE(prompts.messages[0].no_is_default);
    EXPECT_EQ(Scalar(QStringLiteral("select FileName from tables")), file);
    EXPECT_FALSE(panel->record_changed());
    EXPECT_EQ(host.refreshes, 1);
    EXPECT_TRUE(QFile::exists(folder.filePath(QStringLiteral("Attack.vpt"))));
}

TEST_F(DetailEditTest, DeleteAnsweredByNoChangesNothing) {
    ShowTable(QStringLiteral("Attack"));
    Line(4)->setText(QStringLiteral("Anna"));
    prompts.answers = {MessageAnswer::kNo};
    Click("cmdDelete");
    EXPECT_EQ(prompts.messages.size(), 1u);
    EXPECT_EQ(Scalar(QStringLiteral("select DisplayName from tables")), QStringLiteral("Attack"));
    EXPECT_EQ(host.refreshes, 0);
    EXPECT_EQ(Line(2)->text(), QStringLiteral("Attack"));
    EXPECT_EQ(Line(4)->text(), QStringLiteral("Anna"));
    EXPECT_TRUE(panel->record_changed());
    EXPECT_TRUE(host.locked);
}

TEST_F(DetailEditTest, SaveShowsTheRecordUnderItsNewFileName) {
    ShowTable(QStringLiteral("Attack"));
    const QString id = panel->DetailText(0);
    Line(3)->setText(QStringLiteral("/moved/it's here.vpt"));
    Click("cmdChange");
    EXPECT_EQ(Line(2)->text(), QStringLiteral("Attack"));
    EXPECT_EQ(Line(3)->text(), QStringLiteral("/moved/it's here.vpt"));
    EXPECT_EQ(panel->DetailText(0), id);
    EXPECT_EQ(host.stored_names,
              (QMap<QString, QString>{{id, QStringLiteral("/moved/it's here.vpt")}}));
    EXPECT_FALSE(panel->record_changed());
}

TEST_F(DetailEditTest, ARefusedSaveStoresNoFileName) {
    ShowTable(QStringLiteral("Attack"));
    Line(3)->setText(QString(300, QLatin1Char('x')));
    Click("cmdChange");
    EXPECT_EQ(prompts.messages.size(), 1u);
    EXPECT_TRUE(host.stored_names.isEmpty());
}

struct Chooser {
    const char* button;
    int field;
    const char16_t* title;
};

class ChooserTest : public DetailPanelFixture, public testing::WithParamInterface<Chooser> {};

TEST_P(ChooserTest, TheChosenFileGoesIntoTheFieldAndMarksTheRecord) {
    ShowTable(QStringLiteral("Attack"), QStringLiteral("ImageFile = '/old/a.jpg', "
                                                       "FlyerFile = '/old/a.jpg', "
                                                       "RulesFile = '/old/a.jpg'"));
    prompts.files = {QStringLiteral("/pictures/new.gif")};
    Click(GetParam().button);
    ASSERT_EQ(prompts.dialogs.size(), 1u);
    EXPECT_EQ(prompts.dialogs[0].title, QString::fromUtf16(GetParam().title));
    EXPECT_EQ(prompts.dialogs[0].filter,
              QStringLiteral("Pictures (*.bmp;*.jpg;*.gif)|*.bmp;*.jpg;*.gif"));
    EXPECT_EQ(prompts.dialogs[0].file_name, QStringLiteral("/old/a.jpg"));
    EXPECT_EQ(Line(GetParam().field)->text(), QStringLiteral("/pictures/new.gif"));
    EXPECT_TRUE(panel->record_changed());
    EXPECT_EQ(values.LastPictureDir, QStringLiteral("/pictures/"));
}

TEST_P(ChooserTest, ACancelledChoiceLeavesEverything) {
    ShowTable(QStringLiteral("Attack"));
    Click(GetParam().button);
    EXPECT_EQ(Line(GetParam().field)->text(), QString());
    EXPECT_FALSE(panel->record_changed());
    EXPECT_EQ(values.LastPictureDir, QString());
}

INSTANTIATE_TEST_SUITE_P(Buttons, ChooserTest,
                         testing::Values(Chooser{"Command2", 7, u"Select Image File"},
                                         Chooser{"Command3", 8, u"Select Flyer File"},
                                         Chooser{"Command4", 10, u"Select Rules File"}),
                         [](const auto& test) { return std::string(test.param.button); });

}  // namespace
}  // namespace browser
