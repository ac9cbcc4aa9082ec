// Needs widgets; runs offscreen.
#include "browser/table_info_command.h"

#include "browser/detail_panel_fixture.h"
#include "support/vpt_builder.h"
#include "tableinfo/frmReadVPT.h"

#include <QtCore/QTimer>
#include <QtWidgets/QApplication>

namespace browser {
namespace {

using test_support::VptBuilder;

class TableInfoCommandTest : public DetailPanelFixture {
protected:
    void Write(const QString& name, const VptBuilder& table) {
        const QString path = folder.filePath(name + QStringLiteral(".vpt"));
        ASSERT_TRUE(table.Write(path.toStdU16String()).ok());
    }
    // Opens the dialog, calls `action` on it and closes it.
    void ViewAnd(const std::function<void(QWidget&)>& action) {
        bool was_open = false;
        QTimer::singleShot(0, panel.get(), [&] {
            QWidget* dialog = QApplication::activeModalWidget();
            was_open = dialog && dialog->objectName() == QStringLiteral("frmReadVPT");
            if (!was_open) return;
            action(*dialog);
            dialog->close();
        });
        ViewTableInfo(host.selected_tag, *panel, prompts, shell, panel.get());
        EXPECT_TRUE(was_open);
    }
    static void Update(QWidget& dialog) {
        dialog.findChild<QAbstractButton*>(QStringLiteral("cmdUpdateFace"))->click();
    }

    test_support::FakeShell shell;
    test_support::FakeStatusDisplay status;
};

TEST_F(TableInfoCommandTest, AFileWithoutInformationIsTold) {
    ShowTable(QStringLiteral("Attack"));
    WriteFile(QStringLiteral("Attack.vpt"), "just text");
    ViewTableInfo(host.selected_tag, *panel, prompts, shell, panel.get());
    ASSERT_EQ(prompts.messages.size(), 1u);
    EXPECT_EQ(prompts.messages[0].text,
              QStringLiteral("There is no table Information for this table"));
    EXPECT_EQ(prompts.messages[0].title, QStringLiteral("Table Info"));
    EXPECT_EQ(prompts.messages[0].icon, platform::MessageIcon::kInformation);
}

TEST_F(TableInfoCommandTest, AMissingFileAndADetailLineHaveNone) {
    ViewTableInfo(QStringLiteral("/nowhere.vpt"), *panel, prompts, shell, panel.get());
    ViewTableInfo(QStringLiteral("X"), *panel, prompts, shell, panel.get());
    EXPECT_EQ(prompts.messages.size(), 2u);
}

TEST_F(TableInfoCommandTest, UpdateStoresTheInformationInTheRow) {
    Write(QStringLiteral("Attack"), VptBuilder()
                                        .Text(u"TableName", u"Bob's Attack")
                                        .Text(u"AuthorName", u"Anna")
                                        .Text(u"TableVersion", u"2.0")
                                        .Text(u"TableBlurb", u"Blurb")
                                        .Text(u"TableRules", u"Hit it.")
                                        .Text(u"CompanyName", u"Playmatic")
                                        .Text(u"CompanyYear", u"1977"));
    ShowTable(QStringLiteral("Attack"));
    ViewAnd(Update);
    const QString name = QStringLiteral("Bob's Attack");
    EXPECT_EQ(Stored(QStringLiteral("Author"), name), QStringLiteral("Anna"));
    EXPECT_EQ(Stored(QStringLiteral("Version"), name), QStringLiteral("2.0"));
    EXPECT_EQ(Stored(QStringLiteral("Notes"), name), QStringLiteral("Blurb"));
    EXPECT_EQ(Stored(QStringLiteral("RulesText"), name), QStringLiteral("Hit it."));
    EXPECT_EQ(Stored(QStringLiteral("Company"), name), QStringLiteral("Playmatic"));
    EXPECT_EQ(Stored(QStringLiteral("[Year]"), name), QStringLiteral("1977"));
    EXPECT_FALSE(panel->record_changed());
}

TEST_F(TableInfoCommandTest, ARefusedSaveDoesNotKeepTheRulesFromBeingSaved) {
    Write(QStringLiteral("Attack"),
          VptBuilder().Text(u"AuthorName", u"Anna").Text(u"TableRules", u"Hit it."));
    ShowTable(QStringLiteral("Attack"), QStringLiteral("ImageFile = '/nowhere/a.jpg'"));
    ViewAnd(Update);
    EXPECT_EQ(prompts.messages.size(), 1u);
    EXPECT_EQ(Stored(QStringLiteral("Author"), QStringLiteral("Attack")), QString());
    EXPECT_EQ(Stored(QStringLiteral("RulesText"), QStringLiteral("Attack")),
              QStringLiteral("Hit it."));
    EXPECT_FALSE(panel->record_changed());
}

TEST_F(TableInfoCommandTest, TheImportShowsItsStatusAndRefreshesTheTree) {
    Write(QStringLiteral("Attack"), VptBuilder().Text(u"AuthorName", u"Anna's"));
    AddTable(QStringLiteral("Attack"));
    int refreshes = 0;
    std::vector<std::int64_t> steps;
    const base::Status passed_over = ImportDataFromVpts(
        catalogue, status, prompts, [&] { ++refreshes; },
        [&](std::int64_t done, std::int64_t) { steps.push_back(done); });
    EXPECT_TRUE(passed_over.ok()) << passed_over.message();
    EXPECT_FALSE(steps.empty());
    EXPECT_EQ(status.shown, std::vector<QString>{QStringLiteral("Updating from VPTs...")});
    EXPECT_EQ(refreshes, 1);
    EXPECT_EQ(Stored(QStringLiteral("Author"), QStringLiteral("Attack")),
              QStringLiteral("Anna''s"));
    EXPECT_TRUE(prompts.messages.empty());
}

TEST_F(TableInfoCommandTest, AnImportThatTheDatabaseRefusesIsTold) {
    connection->Close().Ignore();
    int refreshes = 0;
    EXPECT_TRUE(ImportDataFromVpts(catalogue, status, prompts, [&] { ++refreshes; }).ok())
        << "told already";
    ASSERT_EQ(prompts.messages.size(), 1u);
    EXPECT_EQ(prompts.messages[0].icon, platform::MessageIcon::kExclamation);
    EXPECT_EQ(status.unloads, 1);
    EXPECT_EQ(refreshes, 1);
}

}  // namespace
}  // namespace browser
