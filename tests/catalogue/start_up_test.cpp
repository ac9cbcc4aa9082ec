#include "base/status.h"
#include "catalogue/date_texts.h"
#include "catalogue/field_text.h"
#include "catalogue/new_catalogue.h"
#include "jet/tables/database.h"
#include "support/catalogue_fixture.h"
#include "support/forwarding_files.h"
#include "support/temporary_dir.h"

#include <QtCore/QDir>
#include <QtCore/QFile>

#include <filesystem>

namespace catalogue {
namespace {

class StartUpTest : public test_support::CatalogueFixture {
protected:
    // A second start, on the same file.
    base::Status StartAgain() {
        connection->Close().Ignore();
        return Main(catalogue);
    }
    QStringList ColumnNames() {
        QStringList names;
        const auto rows = connection->Execute(u"Select * from Tables");
        for (std::size_t i = 0; rows.ok() && i < rows->FieldCount(); ++i)
            names.append(QString::fromStdU16String(rows->FieldName(i)));
        return names;
    }
};

// Columns of a catalogue, in the order in which they came into being.
const QStringList& AllColumns() {
    static const QStringList names =
        QStringLiteral(
            "ID DisplayName FileName Author Company Year Version ImageFile FlyerFile Notes PinMame "
            "Favorite RulesFile FileDate RulesText TimesPlayed LastPlayed DateAdded CRC")
            .split(u' ');
    return names;
}

// A folder whose catalogue has never been opened by Main.
class FreshFolder : public testing::Test {
protected:
    void SetUp() override {
        values.ApplicationFolder = folder.path();
        path = folder.filePath(QStringLiteral("pinball.mdb"));
        catalogue = {connection.get(), &values, &settings, &clock};
    }
    void MakeCatalogue() {
        ASSERT_TRUE(CreateEmptyCatalogue(*files, path.toStdU16String(), 46000).ok());
    }
    void ExecuteAlone(const QString& sql) {
        jet::Connection other(*files);
        const QString connection_string = QStringLiteral("Data Source=") + path;
        ASSERT_TRUE(other.Open(connection_string.toStdU16String()).ok());
        const auto done = other.Execute(sql.toStdU16String());
        ASSERT_TRUE(done.ok()) << done.status().message();
    }
    QByteArray Content() const {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }

    test_support::TemporaryDir folder;
    QString path;
    std::unique_ptr<jet::FileSystem> files = platform::MakeFileSystem();
    std::unique_ptr<jet::Connection> connection = std::make_unique<jet::Connection>(*files);
    test_support::FakeClock clock;
    test_support::FakeSettings settings;
    ProcessValues values;
    Catalogue catalogue;
};

TEST_F(StartUpTest, ABaseCatalogueGainsAllSevenColumns) {
    EXPECT_EQ(ColumnNames(), AllColumns());
}

TEST_F(StartUpTest, ASecondStartChangesNothing) {
    Execute(QStringLiteral("INSERT INTO Tables (DisplayName) VALUES ('One')"));
    ASSERT_TRUE(StartAgain().ok());
    EXPECT_EQ(ColumnNames(), AllColumns());
    EXPECT_EQ(Scalar(QStringLiteral("Select DisplayName from Tables")), QStringLiteral("One"));
}

TEST_F(FreshFolder, OnlyMissingColumnsAreAdded) {
    MakeCatalogue();
    ExecuteAlone(QStringLiteral("Alter Table Tables ADD CRC VarChar(50) NULL"));
    ExecuteAlone(QStringLiteral("Alter Table Tables ADD FileDate DATE NULL"));
    ASSERT_TRUE(Main(catalogue).ok());
    const auto rows = connection->Execute(u"Select * from Tables");
    ASSERT_TRUE(rows.ok());
    EXPECT_EQ(rows->FieldCount(), 19U);
    EXPECT_EQ(rows->FieldName(12), u"CRC");
}

TEST_F(StartUpTest, UndatedRowsAreStampedWithToday) {
    Execute(QStringLiteral("INSERT INTO Tables (DisplayName) VALUES ('undated')"));
    Execute(
        QStringLiteral("INSERT INTO Tables (DisplayName, DateAdded) VALUES ('dated', '3/4/2001')"));
    clock.now = QDateTime(QDate(2026, 12, 1), QTime(8, 0));
    ASSERT_TRUE(StartAgain().ok());
    EXPECT_EQ(Scalar(QStringLiteral("Select DateAdded from Tables where DisplayName='undated'")),
              QStringLiteral("12/1/2026"));
    EXPECT_EQ(Scalar(QStringLiteral("Select DateAdded from Tables where DisplayName='dated'")),
              QStringLiteral("3/4/2001"));
}

TEST_F(StartUpTest, TimesPlayedStartsAtZeroForNewRowsOnly) {
    Execute(QStringLiteral("INSERT INTO Tables (DisplayName) VALUES ('new')"));
    EXPECT_EQ(Scalar(QStringLiteral("Select TimesPlayed from Tables")), QStringLiteral("0"));
}

TEST_F(FreshFolder, RowsThatExistedBeforeTheColumnHaveNoPlayCount) {
    MakeCatalogue();
    ExecuteAlone(QStringLiteral("INSERT INTO Tables (DisplayName) VALUES ('old')"));
    ASSERT_TRUE(Main(catalogue).ok());
    const auto rows = connection->Execute(u"Select TimesPlayed, DateAdded from Tables");
    ASSERT_TRUE(rows.ok());
    auto current = connection->Execute(u"Select TimesPlayed, DateAdded from Tables");
    EXPECT_TRUE(current->Fields(u"TimesPlayed")->is_null());
    EXPECT_EQ(FieldText(*current, u"DateAdded").value_or(QStringLiteral("<error>")),
              QStringLiteral("11/20/2026"));
}

TEST_F(StartUpTest, ProcessValuesAreFilled) {
    EXPECT_EQ(values.StatusColours, (StatusColourTable{0, 65535, 255, 65280}));
    EXPECT_EQ(values.VisualPinballExe, QString());
}

TEST_F(StartUpTest, TheExecutableComesFromTheSettings) {
    settings.values[QStringLiteral("TAVOLO/GENERAL/VPEXE")] =
        QStringLiteral("C:\\VP\\VPinball.exe");
    ASSERT_TRUE(StartAgain().ok());
    EXPECT_EQ(values.VisualPinballExe, QStringLiteral("C:\\VP\\VPinball.exe"));
}

TEST_F(FreshFolder, AMissingDatabaseIsTheEnginesErrorAndMakesNoFile) {
    const base::Status opened = Main(catalogue);
    ASSERT_FALSE(opened.ok());
    EXPECT_FALSE(opened.message().empty());
    EXPECT_FALSE(QFile::exists(path));
    EXPECT_FALSE(connection->is_open());
}

TEST_F(FreshFolder, ATextFileUnderTheNameIsRefusedAndStaysAsItIs) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("dear diary\n");
    file.close();
    const base::Status opened = Main(catalogue);
    ASSERT_FALSE(opened.ok());
    EXPECT_FALSE(opened.message().empty());
    EXPECT_EQ(Content(), QByteArray("dear diary\n"));
}

TEST_F(FreshFolder, ACutDatabaseIsRefusedOrOpensButIsNotMadeWorse) {
    MakeCatalogue();
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::ReadWrite));
    ASSERT_TRUE(file.resize(4096 + 100));
    file.close();
    const QByteArray before = Content();
    const base::Status opened = Main(catalogue);
    EXPECT_FALSE(opened.ok());
    EXPECT_FALSE(opened.message().empty());
    EXPECT_EQ(Content(), before);
}

// A file system that lets nobody write, root included.
class ReadOnlyFiles final : public test_support::ForwardingFiles {
public:
    explicit ReadOnlyFiles(jet::FileSystem& files) : ForwardingFiles(files) {}
    base::Result<std::unique_ptr<jet::File>> Open(const std::filesystem::path& path,
                                                  jet::OpenMode mode) override {
        if (mode != jet::OpenMode::kRead) return Refusal();
        return ForwardingFiles::Open(path, mode);
    }
    base::Status Remove(const std::filesystem::path&) override { return Refusal(); }
    base::Status Rename(const std::filesystem::path&, const std::filesystem::path&) override {
        return Refusal();
    }

private:
    static base::Status Refusal() { return {base::StatusCode::kPermissionDenied, "read only"}; }
};

TEST_F(FreshFolder, AReadOnlyDatabaseOpensAndKeepsItsColumns) {
    MakeCatalogue();
    ExecuteAlone(QStringLiteral("INSERT INTO Tables (DisplayName) VALUES ('kept')"));
    const QByteArray before = Content();
    ReadOnlyFiles read_only(*files);
    jet::Connection reader(read_only);
    catalogue.CatalogueConnection = &reader;
    const base::Status opened = Main(catalogue);
    ASSERT_TRUE(opened.ok()) << opened.message();
    auto rows = reader.Execute(u"Select * from Tables");
    ASSERT_TRUE(rows.ok()) << rows.status().message();
    EXPECT_EQ(rows->FieldCount(), 12U);
    EXPECT_EQ(FieldText(*rows, u"DisplayName").value_or(QStringLiteral("<error>")),
              QStringLiteral("kept"));
    rows->Close();
    ASSERT_TRUE(reader.Close().ok());
    EXPECT_EQ(Content(), before);
}

TEST_F(FreshFolder, AnEmptyTextDateIsStampedToo) {
    MakeCatalogue();
    ExecuteAlone(QStringLiteral("Alter Table Tables ADD DateAdded VarChar(50) NULL"));
    ExecuteAlone(QStringLiteral("INSERT INTO Tables (DisplayName, DateAdded) VALUES ('a', '')"));
    ASSERT_TRUE(Main(catalogue).ok());
    auto rows = connection->Execute(u"Select DateAdded from Tables");
    ASSERT_TRUE(rows.ok());
    EXPECT_EQ(FieldText(*rows, u"DateAdded").value_or(QStringLiteral("<error>")),
              MediumDate(clock.now));
}

TEST(StartUpFolderTest, AFolderWithASemicolonInItsNameOpens) {
    test_support::TemporaryDir root;
    const QString folder = root.filePath(QStringLiteral("a;b"));
    ASSERT_TRUE(QDir().mkpath(folder));
    const auto files = platform::MakeFileSystem();
    const QString path = folder + QStringLiteral("/pinball.mdb");
    ASSERT_TRUE(CreateEmptyCatalogue(*files, path.toStdU16String(), 46000).ok());
    jet::Connection connection(*files);
    test_support::FakeSettings settings;
    test_support::FakeClock clock;
    ProcessValues values;
    values.ApplicationFolder = folder;
    Catalogue catalogue{&connection, &values, &settings, &clock};
    const base::Status opened = Main(catalogue);
    EXPECT_TRUE(opened.ok()) << opened.message();
}

TEST_F(FreshFolder, ADatabaseHeldByAnotherConnectionSaysSo) {
    MakeCatalogue();
    jet::Connection holder(*files);
    const QString connection_string = QStringLiteral("Data Source=") + path;
    ASSERT_TRUE(holder.Open(connection_string.toStdU16String()).ok());
    ASSERT_TRUE(holder.Execute(u"INSERT INTO Tables (DisplayName) VALUES ('held')").ok());
    const base::Status opened = Main(catalogue);
    ASSERT_FALSE(opened.ok());
    EXPECT_EQ(opened.code(), base::StatusCode::kBusy) << opened.message();
}

// Two digits of a year are those of 1930 to 2029.
class Century : public StartUpTest, public testing::WithParamInterface<QDate> {};

TEST_P(Century, TheStampIsTheDayOfTheStart) {
    Execute(QStringLiteral("INSERT INTO Tables (DisplayName) VALUES ('undated')"));
    clock.now = QDateTime(GetParam(), QTime(23, 59, 58));
    ASSERT_TRUE(StartAgain().ok());
    EXPECT_EQ(Scalar(QStringLiteral("Select DateAdded from Tables")), QStringLiteral("%1/%2/%3")
                                                                          .arg(GetParam().month())
                                                                          .arg(GetParam().day())
                                                                          .arg(GetParam().year()));
}

INSTANTIATE_TEST_SUITE_P(StartUpTest, Century,
                         testing::Values(QDate(2026, 11, 21), QDate(2029, 12, 31),
                                         QDate(2030, 1, 1), QDate(2099, 12, 31)));

// As stored, not as a query shows them.
TEST_F(StartUpTest, TheUpgradeStoresTheTypesAndSizesItNames) {
    const auto table = connection->database()->FindTable(u"Tables");
    ASSERT_TRUE(table.ok());
    QStringList stored;
    for (const jet::ColumnDesign& column : (*table)->design().columns)
        stored.append(QStringLiteral("%1 %2 %3 %4")
                          .arg(QString::fromStdU16String(column.name))
                          .arg(static_cast<int>(column.type))
                          .arg(column.size)
                          .arg(column.required ? QStringLiteral("required") : QString())
                          .trimmed());
    const auto is = [](const char* name, jet::ColumnType type, int size) {
        return QStringLiteral("%1 %2 %3")
            .arg(QLatin1String(name))
            .arg(static_cast<int>(type))
            .arg(size);
    };
    EXPECT_EQ(stored.mid(12), (QStringList{is("RulesFile", jet::ColumnType::kText, 255),
                                           is("FileDate", jet::ColumnType::kDate, 0),
                                           is("RulesText", jet::ColumnType::kMemo, 0),
                                           is("TimesPlayed", jet::ColumnType::kLong, 0),
                                           is("LastPlayed", jet::ColumnType::kDate, 0),
                                           is("DateAdded", jet::ColumnType::kDate, 0),
                                           is("CRC", jet::ColumnType::kText, 50)}));
}

TEST_F(StartUpTest, AnUpgradeThatFailsEndsNothingAndIsKnown) {
    EXPECT_TRUE(values.UpgradeFailure.ok());
    ASSERT_TRUE(StartAgain().ok());
    EXPECT_TRUE(values.UpgradeFailure.ok()) << "the columns are there: that is no failure";
    connection->Close().Ignore();
    EXPECT_FALSE(UpgradeCatalogue(catalogue).ok());
}

TEST_F(StartUpTest, ThatNobodyMayChangeTheCatalogueIsNoFailureOfItsUpgrade) {
    Execute(QStringLiteral("Alter Table Tables drop column CRC"));
    ASSERT_TRUE(connection->Close().ok());
    ASSERT_TRUE(
        connection
            ->Open((QStringLiteral("Mode=Read;Data Source=") + DatabasePath()).toStdU16String())
            .ok());
    EXPECT_TRUE(UpgradeCatalogue(catalogue).ok());
}

// A catalogue that was copied from another system: its name may be written in capitals.
TEST_F(FreshFolder, ACatalogueWhoseNameIsInCapitalsIsOpened) {
    MakeCatalogue();
    ASSERT_TRUE(QFile::rename(path, folder.filePath(QStringLiteral("PINBALL.MDB"))));
    const base::Status opened = Main(catalogue);
    EXPECT_TRUE(opened.ok()) << opened.message();
}

}  // namespace
}  // namespace catalogue
