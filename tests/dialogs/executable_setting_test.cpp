#include "dialogs/executable_setting.h"

#include "catalogue/catalogue.h"
#include "catalogue/process_values.h"
#include "support/fakes.h"
#include "support/temporary_dir.h"

#include <gtest/gtest.h>

#include <QtCore/QFile>

namespace dialogs {
namespace {

const QString kKey = QStringLiteral("TAVOLO/GENERAL/VPEXE");

class ExecutableSettingTest : public testing::Test {
protected:
    ExecutableSettingTest() {
        catalogue.settings = &settings;
        catalogue.values = &values;
    }

    QString MakeFile(const QString& name) {
        QFile file(folder.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        return file.fileName();
    }

    // Expects that `path` is refused with a message and nothing is changed.
    void ExpectRefused(const QString& path) {
        settings.values[kKey] = QStringLiteral("before");
        values.VisualPinballExe = QStringLiteral("before");
        EXPECT_FALSE(StoreExecutable(catalogue, prompts, path));
        ASSERT_EQ(prompts.messages.size(), 1U);
        EXPECT_EQ(prompts.messages[0].text, QStringLiteral("Please select a valid Executable"));
        EXPECT_EQ(prompts.messages[0].icon, platform::MessageIcon::kInformation);
        EXPECT_EQ(prompts.messages[0].title, QString()) << "empty stands for the program's title";
        EXPECT_EQ(settings.values[kKey], QStringLiteral("before"));
        EXPECT_EQ(values.VisualPinballExe, QStringLiteral("before"));
    }

    test_support::TemporaryDir folder;
    test_support::FakeSettings settings;
    test_support::FakePrompts prompts;
    catalogue::ProcessValues values;
    catalogue::Catalogue catalogue;
};

TEST_F(ExecutableSettingTest, AnEmptyPathIsRefused) {
    ExpectRefused(QString());
}

TEST_F(ExecutableSettingTest, AMissingFileIsRefused) {
    ExpectRefused(folder.filePath(QStringLiteral("gone.exe")));
}

TEST_F(ExecutableSettingTest, AFolderIsRefused) {
    ExpectRefused(folder.path());
}

TEST_F(ExecutableSettingTest, AnExistingFileOfAnyKindIsStoredAndUsedAtOnce) {
    const QString path = MakeFile(QStringLiteral("notes.txt"));
    EXPECT_TRUE(StoreExecutable(catalogue, prompts, path));
    EXPECT_TRUE(prompts.messages.empty());
    EXPECT_EQ(settings.values[kKey], path);
    EXPECT_EQ(values.VisualPinballExe, path);
}

TEST_F(ExecutableSettingTest, TheDialogOffersTheCurrentPath) {
    prompts.files = {QStringLiteral("/vp/VPinball.exe")};
    EXPECT_EQ(ChooseExecutable(prompts, QStringLiteral("/old/VPinball.exe")),
              QStringLiteral("/vp/VPinball.exe"));
    ASSERT_EQ(prompts.dialogs.size(), 1U);
    EXPECT_EQ(prompts.dialogs[0].name, QStringLiteral("ComDialog"));
    EXPECT_EQ(prompts.dialogs[0].title, QStringLiteral("Select Visual Pinball Executable"));
    EXPECT_EQ(prompts.dialogs[0].filter, QStringLiteral("Executables (*.Exe)|*.Exe"));
    EXPECT_EQ(prompts.dialogs[0].file_name, QStringLiteral("/old/VPinball.exe"));
}

TEST_F(ExecutableSettingTest, CancellingTheDialogKeepsTheTypedPath) {
    EXPECT_EQ(ChooseExecutable(prompts, QStringLiteral("typed")), QStringLiteral("typed"));
}

TEST_F(ExecutableSettingTest, AKeyThatWasNeverWrittenReadsAsEmpty) {
    EXPECT_EQ(StoredExecutable(catalogue), QString());
}

}  // namespace
}  // namespace dialogs
