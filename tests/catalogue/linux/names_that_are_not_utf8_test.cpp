// Folders whose names are no text: a path of Linux is bytes.
#include "catalogue/application_folder_choice.h"
#include "catalogue/catalogue.h"
#include "catalogue/new_catalogue.h"
#include "catalogue/process_values.h"
#include "catalogue/start_up.h"
#include "jet/connection.h"
#include "platform/file_system.h"
#include "platform/files.h"
#include "support/fakes.h"
#include "support/temporary_dir.h"

#include <gtest/gtest.h>

#include <QtCore/QDir>
#include <QtCore/QFile>

#include <filesystem>

namespace catalogue {
namespace {

TEST(NameThatIsNotUtf8Test, ItsFolderIsFilled) {
    const test_support::TemporaryDir root;
    const KnownFolders folders{root.filePath(QStringLiteral("program")),
                               root.filePath(QStringLiteral("delivered")),
                               root.filePath(QStringLiteral("user"))};
    ASSERT_TRUE(QDir(root.path()).mkpath(QStringLiteral("delivered")));
    QFile delivered(folders.delivered + QStringLiteral("/pinball.mdb"));
    ASSERT_TRUE(delivered.open(QIODevice::WriteOnly));
    delivered.close();
    const QString folder = root.filePath(QStringLiteral("caf")) + QChar(0xDCE9);
    ASSERT_TRUE(platform::MakeFolder(folder).ok());
    EXPECT_EQ(ChooseApplicationFolder(folder, folders), folder);
    PrepareFirstStart(folder, folders);
    const std::string name = root.path().toStdString() + "/caf\xE9";
    EXPECT_TRUE(std::filesystem::exists(name + "/pinball.mdb"));
    std::filesystem::remove_all(name);
}

TEST(NameThatIsNotUtf8Test, ItsCatalogueOpens) {
    const test_support::TemporaryDir root;
    const std::string raw = root.path().toStdString() + "/caf\xE9";
    std::filesystem::create_directory(raw);
    const auto files = platform::MakeFileSystem();
    ASSERT_TRUE(CreateEmptyCatalogue(*files, raw + "/pinball.mdb", 46000).ok());
    jet::Connection connection(*files);
    test_support::FakeSettings settings;
    test_support::FakeClock clock;
    ProcessValues values;
    values.ApplicationFolder = root.filePath(QStringLiteral("caf")) + QChar(0xDCE9);
    Catalogue catalogue{&connection, &values, &settings, &clock};
    const base::Status opened = Main(catalogue);
    EXPECT_TRUE(opened.ok()) << opened.message();
    EXPECT_TRUE(connection.Close().ok());
    std::filesystem::remove_all(raw);
}

}  // namespace
}  // namespace catalogue
