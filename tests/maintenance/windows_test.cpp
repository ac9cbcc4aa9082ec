#include "maintenance/command_fixture.h"
#include "maintenance/frmImport.h"
#include "maintenance/frmUtility.h"
#include "support/control.h"

#include <QtTest/QTest>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QRadioButton>

namespace maintenance {
namespace {

using test_support::Control;

void Press(QWidget& window, const char* button) {
    QTest::mouseClick(&Control<QPushButton>(window, button), Qt::LeftButton);
}

class UtilityWindowTest : public test_support::CommandFixture {
protected:
    void SetUp() override {
        CommandFixture::SetUp();
        Execute(QStringLiteral("insert into Tables (DisplayName, FileName, FlyerFile) values "
                               "('t', 'C:\\a\\t.vpt', 'C:\\a\\f.jpg')"));
        window = std::make_unique<frmUtility>(catalogue, prompts, [this] { ++refreshes; });
        window->show();
    }
    void TearDown() override { window.reset(); }
    void Enter(const QString& existing, const QString& next) {
        Control<QLineEdit>(*window, "txtExisting").setText(existing);
        Control<QLineEdit>(*window, "txtNew").setText(next);
    }

    std::unique_ptr<frmUtility> window;
};

TEST_F(UtilityWindowTest, OffersTheFourKindsTablesFirst) {
    EXPECT_EQ(window->windowTitle(), QStringLiteral("Global Path Change"));
    EXPECT_TRUE(Control<QRadioButton>(*window, "optType_0").isChecked());
    EXPECT_EQ(Control<QRadioButton>(*window, "optType_0").text(),
              QStringLiteral("Tables (File Names)"));
    EXPECT_EQ(Control<QRadioButton>(*window, "optType_1").text(), QStringLiteral("Picture"));
    EXPECT_EQ(Control<QRadioButton>(*window, "optType_2").text(), QStringLiteral("Flyers"));
    EXPECT_EQ(Control<QRadioButton>(*window, "optType_3").text(), QStringLiteral("Rules"));
}

TEST_F(UtilityWindowTest, OkChangesTheChosenKindRebuildsTheTreeAndCloses) {
    Enter(QStringLiteral("C:\\a"), QStringLiteral("D:\\b"));
    QTest::mouseClick(&Control<QRadioButton>(*window, "optType_2"), Qt::LeftButton, {},
                      QPoint(8, 8));
    Press(*window, "OKButton");
    EXPECT_EQ(Scalar(QStringLiteral("select FlyerFile from Tables")),
              QStringLiteral("D:\\b\\f.jpg"));
    EXPECT_EQ(Scalar(QStringLiteral("select FileName from Tables")),
              QStringLiteral("C:\\a\\t.vpt"));
    EXPECT_EQ(refreshes, 1);
    EXPECT_FALSE(window->isVisible());
    ASSERT_EQ(prompts.messages.size(), 1U);
    EXPECT_EQ(prompts.messages[0].text, QStringLiteral("Paths Changed"));
}

TEST_F(UtilityWindowTest, ABlankPathIsRefusedAndTheWindowCloses) {
    Enter(QStringLiteral("   "), QStringLiteral("D:\\b"));
    Press(*window, "OKButton");
    EXPECT_EQ(prompts.messages,
              std::vector{(platform::Message{
                  QStringLiteral("Both EXISTING and NEW paths are required!"),
                  QStringLiteral("Global Path Change"), platform::MessageIcon::kExclamation,
                  platform::MessageButtons::kOk})});
    EXPECT_EQ(refreshes, 0);
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(Scalar(QStringLiteral("select FileName from Tables")),
              QStringLiteral("C:\\a\\t.vpt"));
}

TEST_F(UtilityWindowTest, ABlankNewPathIsRefusedToo) {
    Enter(QStringLiteral("C:\\a"), QStringLiteral(" \t "));
    Press(*window, "OKButton");
    ASSERT_EQ(prompts.messages.size(), 1U);
    EXPECT_EQ(prompts.messages[0].text,
              QStringLiteral("Both EXISTING and NEW paths are required!"));
    EXPECT_EQ(refreshes, 0);
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(Scalar(QStringLiteral("select FileName from Tables")),
              QStringLiteral("C:\\a\\t.vpt"));
}

TEST_F(UtilityWindowTest, BlanksAroundThePathsArePartOfThem) {
    Enter(QStringLiteral(" C:\\a"), QStringLiteral("D:\\b"));
    Press(*window, "OKButton");
    EXPECT_EQ(Scalar(QStringLiteral("select FileName from Tables")),
              QStringLiteral("C:\\a\\t.vpt"));
    window->show();
    Enter(QStringLiteral("C:\\a"), QStringLiteral(" D:\\b "));
    Press(*window, "OKButton");
    EXPECT_EQ(Scalar(QStringLiteral("select FileName from Tables")),
              QStringLiteral(" D:\\b \\t.vpt"));
}

TEST_F(UtilityWindowTest, CancelChangesNothing) {
    Enter(QStringLiteral("C:\\a"), QStringLiteral("D:\\b"));
    Press(*window, "CancelButton");
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(refreshes, 0);
    EXPECT_EQ(Scalar(QStringLiteral("select FileName from Tables")),
              QStringLiteral("C:\\a\\t.vpt"));
}

TEST_F(UtilityWindowTest, ADatabaseErrorIsShown) {
    Enter(QStringLiteral("C:\\a"), QStringLiteral("D:\\") + QString(300, u'b'));
    Press(*window, "OKButton");
    ASSERT_EQ(prompts.messages.size(), 1U);
    EXPECT_NE(prompts.messages[0].text, QStringLiteral("Paths Changed"));
    EXPECT_FALSE(window->isVisible());
}

class ImportWindowTest : public test_support::CommandFixture {
protected:
    void SetUp() override {
        CommandFixture::SetUp();
        Execute(QStringLiteral("insert into Tables (DisplayName, CRC, DateAdded) values "
                               "('t', 'AB', #1/2/2003#)"));
        window = std::make_unique<frmImport>(catalogue, prompts, events, [this] { ++refreshes; });
        window->show();
    }
    void TearDown() override { window.reset(); }
    QString Author() { return Scalar(QStringLiteral("select Author from Tables")); }
    QString Caption() { return Control<QPushButton>(*window, "cmdImport").text(); }

    std::unique_ptr<frmImport> window;
    const QByteArray line = "n\\1\\AB\\new\\1999\\c\\\n";
};

TEST_F(ImportWindowTest, OpensIdleWithTheDatesOfTheCatalogue) {
    EXPECT_EQ(window->windowTitle(), QStringLiteral("Import VPLauncher Data"));
    EXPECT_EQ(Caption(), QStringLiteral("Start"));
    EXPECT_EQ(Control<QRadioButton>(*window, "optImport_0").text(), QStringLiteral("All Files"));
    EXPECT_EQ(Control<QRadioButton>(*window, "optImport_1").text(), QStringLiteral("Files added"));
    EXPECT_EQ(Control<QLabel>(*window, "Label1").text(), QStringLiteral("AFTER"));
    auto& dates = Control<QComboBox>(*window, "Combo1");
    EXPECT_EQ(dates.currentText(), QStringLiteral("Select a Date"));
    ASSERT_EQ(dates.count(), 1);
    EXPECT_EQ(dates.itemText(0), QStringLiteral("1/2/2003"));
}

TEST_F(ImportWindowTest, DatesThatCannotBeReadAreSaid) {
    ASSERT_TRUE(connection->Close().ok());
    window = std::make_unique<frmImport>(catalogue, prompts, events, [this] { ++refreshes; });
    ASSERT_EQ(prompts.messages.size(), 1U);
    EXPECT_EQ(prompts.messages[0].icon, platform::MessageIcon::kExclamation);
    EXPECT_EQ(Control<QComboBox>(*window, "Combo1").currentText(), QStringLiteral("Select a Date"));
}

TEST_F(ImportWindowTest, DoneRebuildsTheTreeAndCloses) {
    MakeFile(QStringLiteral("vpLauncher.dat"), line);
    Press(*window, "cmdImport");
    EXPECT_EQ(Author(), QStringLiteral("new"));
    EXPECT_EQ(Caption(), QStringLiteral("Done"));
    EXPECT_EQ(refreshes, 0);
    EXPECT_TRUE(window->isVisible());
    Press(*window, "cmdImport");
    EXPECT_EQ(refreshes, 1);
    EXPECT_FALSE(window->isVisible());
}

TEST_F(ImportWindowTest, WithoutAMatchTheButtonStaysStart) {
    MakeFile(QStringLiteral("vpLauncher.dat"), "n\\1\\XX\\new\\1999\\c\\\n");
    Press(*window, "cmdImport");
    EXPECT_EQ(Caption(), QStringLiteral("Start"));
    EXPECT_EQ(Control<QLabel>(*window, "lblWriting").text(),
              QStringLiteral("Task Complete 0 records updated"));
    EXPECT_EQ(refreshes, 0);
}

TEST_F(ImportWindowTest, FilesAddedNeedsADate) {
    Control<QRadioButton>(*window, "optImport_1").setChecked(true);
    Press(*window, "cmdImport");
    ASSERT_EQ(prompts.messages.size(), 1U);
    EXPECT_EQ(prompts.messages[0].text, QStringLiteral("Please enter a valid date"));
    EXPECT_EQ(Caption(), QStringLiteral("Start"));
}

TEST_F(ImportWindowTest, FilesAddedTakesTheTypedDate) {
    MakeFile(QStringLiteral("vpLauncher.dat"), line);
    Control<QRadioButton>(*window, "optImport_1").setChecked(true);
    Control<QComboBox>(*window, "Combo1").setEditText(QStringLiteral("1/2/2003"));
    Press(*window, "cmdImport");
    EXPECT_NE(Author(), QStringLiteral("new")) << "added on that very day";
    Control<QComboBox>(*window, "Combo1").setEditText(QStringLiteral("1-Jan-2003"));
    Press(*window, "cmdImport");
    EXPECT_EQ(Author(), QStringLiteral("new"));
}

TEST_F(ImportWindowTest, WhileBusyNothingCanBeStartedAndTheWindowStays) {
    MakeFile(QStringLiteral("vpLauncher.dat"), line);
    int looked = 0;
    events.on_round = [&] {
        ++looked;
        for (const char* name : {"optImport_0", "optImport_1", "Combo1", "cmdImport"})
            EXPECT_FALSE(Control<QWidget>(*window, name).isEnabled()) << name;
        window->close();
        QTest::keyClick(window.get(), Qt::Key_Escape);
        EXPECT_TRUE(window->isVisible());
    };
    Press(*window, "cmdImport");
    EXPECT_EQ(looked, 1);
    EXPECT_TRUE(window->isVisible());
    EXPECT_TRUE(Control<QPushButton>(*window, "cmdImport").isEnabled());
    QTest::keyClick(window.get(), Qt::Key_Escape);
    EXPECT_FALSE(window->isVisible());
}

TEST_F(ImportWindowTest, ALineOfAMegabyteIsShownShortened) {
    MakeFile(QStringLiteral("vpLauncher.dat"),
             QByteArray(1 << 20, 'x') + "\\1\\XX\\new\\1999\\c\\\n");
    Press(*window, "cmdImport");
    EXPECT_LT(Control<QLabel>(*window, "lblReading").text().size(), 600);
    EXPECT_TRUE(
        Control<QLabel>(*window, "lblReading").text().startsWith(QStringLiteral("Reading: xxx")));
}

}  // namespace
}  // namespace maintenance
