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

    void Save(const QString& application, const QString& section, const QString& key,
              const QString& value) {
        const base::Status saved = store_->SaveSetting(application, section, key, value);
        EXPECT_TRUE(saved.ok()) << saved.message();
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
    Save(kApplication, kSection, QStringLiteral("SUB"), {});
    EXPECT_EQ(store_->GetSetting(kApplication, kSection, QStringLiteral("SUB"),
                                 QStringLiteral("fallback")),
              QString());
}

TEST_F(SettingsStoreTest, AValueIsInTheFileAtOnce) {
    Save(kApplication, kSection, QStringLiteral("VPEXE"), QStringLiteral("/opt/vp"));
    EXPECT_TRUE(FileText().contains("VPEXE=/opt/vp")) << FileText().toStdString();
}

TEST_F(SettingsStoreTest, AFolderOfItsOwnKeepsItsSettingsApart) {
    QTemporaryDir own;
    const auto store = platform::MakeSettingsStore(own.path());
    EXPECT_TRUE(
        store->SaveSetting(kApplication, kSection, QStringLiteral("SUB"), QStringLiteral("1"))
            .ok());
    EXPECT_EQ(store_->GetSetting(kApplication, kSection, QStringLiteral("SUB")), QString());
    EXPECT_TRUE(QFile::exists(own.filePath(QStringLiteral("TAVOLO.ini"))));
    EXPECT_TRUE(FileText().isEmpty());
}

class SettingsText : public SettingsStoreTest, public testing::WithParamInterface<const char*> {};

// A new store stands for the next run of the program; the file is moved away and back so that it is
// read again.
TEST_P(SettingsText, SurvivesTheProgram) {
    const QString value = QString::fromUtf8(GetParam());
    Save(kApplication, kSection, QStringLiteral("SUB"), value);
    Save(kApplication, QStringLiteral("OTHER"), QStringLiteral("SUB"), QStringLiteral("1"));
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

// A file in place of the folder: not even root can write there.
TEST_F(SettingsStoreTest, AFileThatCannotBeWrittenIsSaidByName) {
    const QString blocked = folder_.filePath(QStringLiteral("blocked"));
    QFile in_the_way(blocked);
    ASSERT_TRUE(in_the_way.open(QIODevice::WriteOnly));
    in_the_way.close();
    qputenv("XDG_CONFIG_HOME", blocked.toUtf8());
    const auto save = [this](const QString& key) {
        return store_->SaveSetting(kApplication, kSection, key, QStringLiteral("1"));
    };
    const base::Status saved = save(QStringLiteral("SUB"));
    ASSERT_FALSE(saved.ok());
    EXPECT_NE(saved.message().find("TAVOLO.ini"), std::string::npos) << saved.message();
    EXPECT_EQ(store_->GetSetting(kApplication, kSection, QStringLiteral("SUB")),
              QStringLiteral("1"));

    ASSERT_TRUE(in_the_way.remove());
    EXPECT_TRUE(save(QStringLiteral("FILTER")).ok());
    QFile file(blocked + QStringLiteral("/TAVOLO.ini"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray text = file.readAll();
    EXPECT_TRUE(text.contains("FILTER=1") && text.contains("SUB=1")) << text.toStdString();
}

TEST_F(SettingsStoreTest, ADamagedFileIsWrittenAnewAndIsNoFailure) {
    QFile file(folder_.filePath(QStringLiteral("TAVOLO.ini")));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("[[[\n==\n");
    file.close();
    Save(kApplication, kSection, QStringLiteral("SUB"), QStringLiteral("1"));
    EXPECT_TRUE(FileText().contains("SUB=1"));
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
