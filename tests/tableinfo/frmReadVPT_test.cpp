// Needs widgets; runs offscreen.
#include "tableinfo/frmReadVPT.h"

#include "support/fakes.h"
#include "support/temporary_dir.h"
#include "support/vpt_builder.h"
#include "tableinfo/recorded_details.h"
#include "widgets/picture_box.h"

#include <gtest/gtest.h>

#include <QtCore/QBuffer>
#include <QtCore/QFile>
#include <QtTest/QTest>
#include <QtWidgets/QComboBox>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPlainTextEdit>
#include <QtWidgets/QPushButton>

namespace tableinfo {
namespace {

using test_support::BytesOf;
using test_support::VptBuilder;

std::vector<std::byte> Jpeg(int width, int height) {
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(Qt::red);
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    EXPECT_TRUE(image.save(&buffer, "jpg"));
    return BytesOf(bytes.toStdString());
}

class frmReadVPTTest : public testing::Test {
protected:
    void Open(const VptBuilder& table) {
        ASSERT_TRUE(table.Write(path().toStdU16String()).ok());
        OpenFile();
    }
    void OpenFile() {
        dialog = std::make_unique<frmReadVPT>(path(), prompts, shell, details);
        dialog->show();
    }
    QString path() const { return folder.filePath(QStringLiteral("table.vpt")); }

    template <typename Widget>
    Widget* Find(const QString& name) {
        auto* widget = dialog->findChild<Widget*>(name);
        EXPECT_NE(widget, nullptr) << name.toStdString();
        return widget;
    }
    QString Info(int index) {
        const QString name = QStringLiteral("txtInfo_%1").arg(index);
        if (auto* line = dialog->findChild<QLineEdit*>(name)) return line->text();
        return Find<QPlainTextEdit>(name)->toPlainText();
    }
    // As a user does who picks an entry of the list.
    void PickCustom(const QString& name) {
        auto* names = Find<QComboBox>(QStringLiteral("cboCustom"));
        const int index = names->findText(name);
        names->setCurrentIndex(index);
        Q_EMIT names->activated(index);
    }
    void Click(const char* button) {
        QTest::mouseClick(Find<QPushButton>(QLatin1String(button)), Qt::LeftButton);
    }

    test_support::TemporaryDir folder;
    test_support::FakePrompts prompts;
    test_support::FakeShell shell;
    RecordedDetails details;
    std::unique_ptr<frmReadVPT> dialog;
};

TEST_F(frmReadVPTTest, ItsCaptionIsTableInformation) {
    Open(VptBuilder().WithTableInfo());
    EXPECT_EQ(dialog->windowTitle(), QStringLiteral("Table Information"));
}

struct ExpectedBox {
    int index;
    const char16_t* stream;
    const char16_t* label;
};

class InfoBoxOfTheDialog : public frmReadVPTTest,
                           public testing::WithParamInterface<ExpectedBox> {};

// All ten streams hold something, each its own.
TEST_P(InfoBoxOfTheDialog, ShowsItsStreamBesideItsLabel) {
    VptBuilder table;
    for (const char16_t* stream :
         {u"TableName", u"AuthorName", u"TableBlurb", u"TableRules", u"AuthorEmail", u"ReleaseDate",
          u"TableVersion", u"AuthorWebSite", u"TableDescription"})
        table.Text(stream, std::u16string(u"the text of ") + stream);
    Open(table.Screenshot(Jpeg(8, 8)));
    const auto& [index, stream, label] = GetParam();
    EXPECT_EQ(Info(index), QStringLiteral("the text of ") + QString::fromUtf16(stream));
    EXPECT_EQ(Find<QLabel>(QStringLiteral("lblInfo_%1").arg(index))->text(),
              QString::fromUtf16(label));
}

INSTANTIATE_TEST_SUITE_P(frmReadVPTTest, InfoBoxOfTheDialog,
                         testing::Values(ExpectedBox{0, u"TableName", u"Table Name"},
                                         ExpectedBox{1, u"AuthorName", u"Table Author"},
                                         ExpectedBox{2, u"TableVersion", u"Version"},
                                         ExpectedBox{3, u"ReleaseDate", u"Release Date"},
                                         ExpectedBox{4, u"AuthorEmail", u"E-Mail"},
                                         ExpectedBox{5, u"AuthorWebSite", u"Web Site"},
                                         ExpectedBox{6, u"TableBlurb", u"Short Blurb"},
                                         ExpectedBox{7, u"TableDescription", u"Description"},
                                         ExpectedBox{8, u"TableRules", u"Rules"}));

TEST_F(frmReadVPTTest, ButtonsAndTheOtherLabelsSayWhatTheyAreFor) {
    Open(VptBuilder().WithTableInfo());
    EXPECT_EQ(Find<QPushButton>(QStringLiteral("cmdUpdateFace"))->text(),
              QStringLiteral("Update Tavolo Details"));
    EXPECT_EQ(Find<QPushButton>(QStringLiteral("cmdMail"))->text(), QStringLiteral("Send Mail"));
    EXPECT_EQ(Find<QPushButton>(QStringLiteral("cmdSite"))->text(), QStringLiteral("Go To Site"));
    EXPECT_EQ(Find<QPushButton>(QStringLiteral("Command1"))->text(), QStringLiteral("Close"));
    QStringList others;
    for (const QLabel* label : dialog->findChildren<QLabel*>())
        if (!label->objectName().startsWith(QLatin1String("lblInfo_")) && !label->text().isEmpty())
            others << label->text();
    others.sort();
    EXPECT_EQ(others, (QStringList{QStringLiteral("Custom:"), QStringLiteral("Picture Preview")}));
}

TEST_F(frmReadVPTTest, AbsentStreamsAreEmptyBoxes) {
    Open(VptBuilder().Text(u"TableName", u"Attack"));
    EXPECT_EQ(Info(0), QStringLiteral("Attack"));
    for (int i = 1; i < kInfoBoxCount; ++i)
        EXPECT_EQ(Info(i), QString()) << i;
}

TEST_F(frmReadVPTTest, CustomFieldsAreListedAndAChosenOneIsShown) {
    Open(VptBuilder()
             .Text(u"TableName", u"Attack")
             .Text(u"CompanyName", u"Playmatic")
             .Text(u"CompanyYear", u"1977"));
    auto* names = Find<QComboBox>(QStringLiteral("cboCustom"));
    auto* text = Find<QPlainTextEdit>(QStringLiteral("txtCustom"));
    ASSERT_EQ(names->count(), 2);
    EXPECT_EQ(names->currentIndex(), -1);
    EXPECT_EQ(text->toPlainText(), QString());
    PickCustom(QStringLiteral("CompanyYear"));
    EXPECT_EQ(text->toPlainText(), QStringLiteral("1977"));
    PickCustom(QStringLiteral("CompanyName"));
    EXPECT_EQ(text->toPlainText(), QStringLiteral("Playmatic"));
}

TEST_F(frmReadVPTTest, ACustomFieldThatIsChosenAgainIsShownAgain) {
    Open(VptBuilder().Text(u"CompanyYear", u"1977"));
    auto* text = Find<QPlainTextEdit>(QStringLiteral("txtCustom"));
    PickCustom(QStringLiteral("CompanyYear"));
    text->setPlainText(QStringLiteral("overtyped"));
    PickCustom(QStringLiteral("CompanyYear"));
    EXPECT_EQ(text->toPlainText(), QStringLiteral("1977"));
}

TEST_F(frmReadVPTTest, WithoutCustomFieldsThereIsNothingToChoose) {
    Open(VptBuilder().Text(u"TableName", u"Attack"));
    EXPECT_FALSE(Find<QComboBox>(QStringLiteral("cboCustom"))->isEnabled());
}

TEST_F(frmReadVPTTest, TheScreenshotIsShown) {
    Open(VptBuilder().Screenshot(Jpeg(64, 48)));
    EXPECT_EQ(Find<widgets::PictureBox>(QStringLiteral("picThm"))->ShownImage().size(),
              QSize(64, 48));
}

TEST_F(frmReadVPTTest, AnUndecodableScreenshotIsThePlaceholder) {
    Open(VptBuilder().Screenshot(BytesOf("no picture")).Text(u"TableName", u"Attack"));
    EXPECT_TRUE(Find<widgets::PictureBox>(QStringLiteral("picThm"))->shows_placeholder());
    EXPECT_EQ(Info(0), QStringLiteral("Attack"));
}

TEST_F(frmReadVPTTest, UpdateCopiesWhatTheBoxesShow) {
    Open(VptBuilder()
             .Text(u"TableName", u"Attack")
             .Text(u"TableRules", u"Hit it.")
             .Text(u"CompanyName", u"Playmatic"));
    auto* author = Find<QLineEdit>(QStringLiteral("txtInfo_1"));
    author->setText(QStringLiteral("Anna"));
    Click("cmdUpdateFace");
    EXPECT_EQ(details.steps.join(QLatin1Char('|')),
              QStringLiteral("2=Attack|4=Anna|6=Playmatic|Save|12=Hit it.|SaveRules"));
}

TEST_F(frmReadVPTTest, WhetherTheDetailsWereUpdatedIsSaid) {
    Open(VptBuilder().Text(u"TableName", u"Attack").Text(u"TableRules", u"Hit it."));
    auto* result = Find<QLabel>(QStringLiteral("lblResult"));
    EXPECT_EQ(result->text(), QString());
    Click("cmdUpdateFace");
    EXPECT_EQ(result->text(), QStringLiteral("The details were updated."));
    details.saves_rules = false;
    Click("cmdUpdateFace");
    EXPECT_EQ(result->text(), QStringLiteral("The details were not updated."));
    details = {};
    details.saves = false;
    Click("cmdUpdateFace");
    EXPECT_EQ(result->text(), QStringLiteral("The details were not updated."));
}

TEST_F(frmReadVPTTest, ItFitsASmallScreen) {
    Open(VptBuilder().WithTableInfo());
    const QSize least = dialog->minimumSizeHint();
    EXPECT_LE(least.width(), 1000);
    EXPECT_LE(least.height(), 550);
}

TEST_F(frmReadVPTTest, NothingIsCopiedUntilUpdate) {
    Open(VptBuilder().Text(u"TableName", u"Attack"));
    Click("Command1");
    EXPECT_TRUE(details.steps.isEmpty());
    EXPECT_FALSE(dialog->isVisible());
}

TEST_F(frmReadVPTTest, AFileReplacedByGarbageIsEmpty) {
    QFile file(path());
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(QByteArray(4096, 'x'));
    file.close();
    OpenFile();
    for (int i = 0; i < kInfoBoxCount; ++i)
        EXPECT_EQ(Info(i), QString()) << i;
    Click("cmdUpdateFace");
    EXPECT_EQ(details.steps, QStringList{QStringLiteral("Save")});
}

TEST_F(frmReadVPTTest, AFileReplacedWhileItIsShownGivesNoCustomText) {
    Open(VptBuilder().Text(u"Custom", u"text"));
    ASSERT_TRUE(QFile::remove(path()));
    PickCustom(QStringLiteral("Custom"));
    EXPECT_EQ(Find<QPlainTextEdit>(QStringLiteral("txtCustom"))->toPlainText(), QString());
}

TEST_F(frmReadVPTTest, TheMailAddressIsOneArgumentOfTheOpenCall) {
    Open(VptBuilder()
             .Text(u"TableName", u"Bob's; rm -rf \"x\" & Table")
             .Text(u"AuthorEmail", u"a@b.org --option $(date)"));
    Click("cmdMail");
    ASSERT_EQ(shell.opened.size(), 1u);
    EXPECT_EQ(
        shell.opened[0],
        QStringLiteral("Mailto:a@b.org --option $(date)?subject=Bob's; rm -rf \"x\" & Table"));
    EXPECT_TRUE(prompts.messages.empty());
}

TEST_F(frmReadVPTTest, TheSiteAddressIsOpened) {
    Open(VptBuilder().Text(u"AuthorWebSite", u"www.b.org/a b"));
    Click("cmdSite");
    ASSERT_EQ(shell.opened.size(), 1u);
    EXPECT_EQ(shell.opened[0], QStringLiteral("http://www.b.org/a b"));
}

TEST_F(frmReadVPTTest, AnAddressThatCannotBeOpenedIsTold) {
    shell.answer = base::Status(base::StatusCode::kNotFound, "no program");
    Open(VptBuilder().Text(u"AuthorWebSite", u"b.org").Text(u"AuthorEmail", u"a@b.org"));
    Click("cmdSite");
    Click("cmdMail");
    ASSERT_EQ(prompts.messages.size(), 2u);
    EXPECT_EQ(prompts.messages[0].text, QStringLiteral("Cannot open site: http://b.org"));
    EXPECT_EQ(prompts.messages[0].icon, platform::MessageIcon::kInformation);
    EXPECT_EQ(prompts.messages[1].text,
              QStringLiteral("Cannot open site: Mailto:a@b.org?subject="));
}

}  // namespace
}  // namespace tableinfo
