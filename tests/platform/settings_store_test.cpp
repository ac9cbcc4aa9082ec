#include "platform/settings_store.h"

#include <gtest/gtest.h>

#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>

namespace {

const QString kApplication = QStringLiteral("TAVOLO");
const QString kSection = QStringLiteral("GENERAL");

class SettingsStoreTest : public testing::Test {
protected:
    void SetUp() override { qputenv("XDG_CONFIG_HOME", folder_.path().toUtf8()); }
    void TearDown() override { qunsetenv("XDG_CONFIG_HOME"); }

    QByteArray FileText() const {
        QFile file(folder_.filePath(QStringLiteral("TAVOLO.ini")));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    QTemporaryDir folder_;
    std::unique_ptr<platform::SettingsStore> store_ = platform::MakeSettingsStore();
};

TEST_F(SettingsStoreTest, AMissingKeyGivesTheFallback) {
    EXPECT_EQ(
        store_->GetSetting(kApplication, kSection, QStringLiteral("FILTER"), QStringLiteral("All")),
        QStringLiteral("All"));
}

TEST_F(SettingsStoreTest, AnEmptyValueIsNotMissing) {
    store_->SaveSetting(kApplication, kSection, QStringLiteral("SUB"), {});
    EXPECT_EQ(store_->GetSetting(kApplication, kSection, QStringLiteral("SUB"),
                                 QStringLiteral("fallback")),
              QString());
}

TEST_F(SettingsStoreTest, AValueIsInTheFileAtOnce) {
    store_->SaveSetting(kApplication, kSection, QStringLiteral("VPEXE"), QStringLiteral("/opt/vp"));
    EXPECT_TRUE(FileText().contains("VPEXE=/opt/vp")) << FileText().toStdString();
}

class SettingsText : public SettingsStoreTest, public testing::WithParamInterface<const char*> {};

// A new store in the place of the next run of the program; the file is taken away and put back so
// that it is read anew.
TEST_P(SettingsText, SurvivesTheProgram) {
    const QString value = QString::fromUtf8(GetParam());
    store_->SaveSetting(kApplication, kSection, QStringLiteral("SUB"), value);
    store_->SaveSetting(kApplication, QStringLiteral("OTHER"), QStringLiteral("SUB"),
                        QStringLiteral("1"));
    store_.reset();
    QTemporaryDir next;
    ASSERT_TRUE(QFile::copy(folder_.filePath(QStringLiteral("TAVOLO.ini")),
                            next.filePath(QStringLiteral("TAVOLO.ini"))));
    qputenv("XDG_CONFIG_HOME", next.path().toUtf8());
    EXPECT_EQ(
        platform::MakeSettingsStore()->GetSetting(kApplication, kSection, QStringLiteral("SUB")),
        value);
}

INSTANTIATE_TEST_SUITE_P(SettingsStoreTest, SettingsText,
                         testing::Values("True", "9570", "=", "<>", "Table Name", " blanks ",
                                         "a, b", "\"quoted\"", "/the \"vp\", two/r\"un",
                                         "@Variant(x)", "C:\\VP\\VPinball.exe", "semi;colon",
                                         "50% off", "Ünïcödé \xF0\x9F\x98\x80", "two\nlines",
                                         "[GENERAL]", ""));

TEST_F(SettingsStoreTest, ACommaTypedIntoTheFileIsPartOfTheValue) {
    QFile file(folder_.filePath(QStringLiteral("TAVOLO.ini")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("[General]\nVPEXE=/opt/a, b/vp\n");
    file.close();
    EXPECT_EQ(store_->GetSetting(kApplication, kSection, QStringLiteral("VPEXE")),
              QStringLiteral("/opt/a, b/vp"));
}

TEST_F(SettingsStoreTest, ADamagedFileGivesTheFallbacks) {
    QFile file(folder_.filePath(QStringLiteral("TAVOLO.ini")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(QByteArray(5000, '\xFF') + QByteArray(100, '\0') + "[[[\n==\n");
    file.close();
    EXPECT_EQ(
        store_->GetSetting(kApplication, kSection, QStringLiteral("WIDTH"), QStringLiteral("9570")),
        QStringLiteral("9570"));
}

}  // namespace
