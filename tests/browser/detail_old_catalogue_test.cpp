// Details of a catalogue that an older program created. Needs widgets; runs offscreen.
#include "browser/detail_panel.h"
#include "browser/fake_detail_host.h"
#include "catalogue/catalogue.h"
#include "catalogue/field_text.h"
#include "catalogue/process_values.h"
#include "catalogue/start_up.h"
#include "jet/connection.h"
#include "platform/file_system.h"
#include "support/fakes.h"
#include "support/temporary_dir.h"
#include "support/test_data.h"

#include <gtest/gtest.h>

#include <QtCore/QFile>
#include <QtWidgets/QAbstractButton>

namespace browser {
namespace {

class OldCatalogueTest : public testing::TestWithParam<std::filesystem::path> {
protected:
    void SetUp() override {
        const QString copy = folder.filePath(QStringLiteral("pinball.mdb"));
        ASSERT_TRUE(QFile::copy(QString::fromStdString(GetParam().string()), copy));
        ASSERT_TRUE(QFile::setPermissions(copy, QFile::ReadOwner | QFile::WriteOwner));
        values.ApplicationFolder = folder.path();
        catalogue.CatalogueConnection = &connection;
        catalogue.values = &values;
        catalogue.settings = &settings;
        catalogue.clock = &clock;
        const auto opened = catalogue::Main(catalogue);
        ASSERT_TRUE(opened.ok()) << opened.message();
        panel = std::make_unique<DetailPanel>(catalogue, prompts, host);
        auto rows = connection.Execute(u"select FileName from tables order by ID");
        ASSERT_TRUE(rows.ok()) << rows.status().message();
        host.selected_tag = catalogue::FieldText(*rows, u"FileName").value();
        panel->ShowTableDetails(host.selected_tag);
    }

    test_support::TemporaryDir folder;
    std::unique_ptr<jet::FileSystem> files = platform::MakeFileSystem();
    jet::Connection connection{*files};
    test_support::FakeClock clock;
    test_support::FakeSettings settings;
    test_support::FakePrompts prompts;
    catalogue::ProcessValues values;
    catalogue::Catalogue catalogue;
    FakeDetailHost host;
    std::unique_ptr<DetailPanel> panel;
};

TEST_P(OldCatalogueTest, ARowIsShownToItsEndThoughItsNewColumnsAreNull) {
    EXPECT_EQ(panel->DetailText(3), host.selected_tag);
    EXPECT_FALSE(panel->DetailText(2).isEmpty());
    EXPECT_EQ(host.status[2], QStringLiteral("Current Table: ") + panel->DetailText(2));
}

TEST_P(OldCatalogueTest, SaveStoresEmptiedFields) {
    for (const int index : {1, 4, 5, 6, 7, 8, 9, 10})
        panel->SetDetailText(index, {});
    panel->SetDetailText(2, QStringLiteral("New Name"));
    panel->Save();
    EXPECT_TRUE(prompts.messages.empty())
        << (prompts.messages.empty() ? "" : prompts.messages[0].text.toStdString());
    EXPECT_FALSE(panel->record_changed());
    EXPECT_EQ(panel->DetailText(2), QStringLiteral("New Name"));
    EXPECT_EQ(panel->DetailText(4), QString());
}

TEST_P(OldCatalogueTest, RulesCanBeStoredAndEmptied) {
    panel->SetDetailText(12, QStringLiteral("Hit it."));
    panel->SaveRules();
    EXPECT_EQ(panel->DetailText(12), QStringLiteral("Hit it."));
    panel->SetDetailText(12, {});
    panel->SaveRules();
    EXPECT_EQ(panel->DetailText(12), QString());
    EXPECT_TRUE(prompts.messages.empty());
}

INSTANTIATE_TEST_SUITE_P(Files, OldCatalogueTest, testing::ValuesIn(test_support::OldCatalogues()),
                         test_support::NameOfFile);

}  // namespace
}  // namespace browser
