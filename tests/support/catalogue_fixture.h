// CatalogueFixture: a fresh application folder with an empty pinball.mdb, opened by Main, and fakes
// around it.
#pragma once

#include "catalogue/catalogue.h"
#include "catalogue/date_texts.h"
#include "catalogue/field_text.h"
#include "catalogue/new_catalogue.h"
#include "catalogue/process_values.h"
#include "catalogue/start_up.h"
#include "jet/connection.h"
#include "jet/pages/page_store.h"
#include "platform/file_system.h"
#include "support/counting_database.h"
#include "support/fakes.h"
#include "support/temporary_dir.h"

#include <gtest/gtest.h>

#include <QtCore/QDir>

#include <memory>

namespace test_support {

class CatalogueFixture : public testing::Test {
protected:
    CatalogueFixture() {
        values.ApplicationFolder = folder.path();
        catalogue.CatalogueConnection = connection.get();
        catalogue.values = &values;
        catalogue.settings = &settings;
        catalogue.clock = &clock;
    }

    void SetUp() override {
        ASSERT_TRUE(folder.isValid());
        const auto made = catalogue::CreateEmptyCatalogue(*files, DatabasePath().toStdU16String(),
                                                          catalogue::ToOleDate(clock.now));
        ASSERT_TRUE(made.ok()) << made.message();
        const auto opened = catalogue::Main(catalogue);
        ASSERT_TRUE(opened.ok()) << opened.message();
    }

    QString DatabasePath() const { return folder.filePath(QStringLiteral("pinball.mdb")); }

    // Opens the catalogue again, with `walks` counting.
    void CountWalks() {
        ASSERT_TRUE(connection->Close().ok());
        auto pages = jet::OpenPageStore(*files, DatabasePath().toStdU16String(), {});
        ASSERT_TRUE(pages.ok()) << pages.status().message();
        auto database = jet::OpenDatabase(std::move(pages).value(), "pinball.mdb");
        ASSERT_TRUE(database.ok()) << database.status().message();
        connection = std::make_unique<jet::Connection>(
            std::make_unique<CountingDatabase>(std::move(database).value(), walks),
            [this] { return catalogue::ToOleDate(clock.now); });
        catalogue.CatalogueConnection = connection.get();
    }

    // From now on what is stored below C:\Tables is looked for in the folder of the test.
    void MapTablesHere() {
        values.paths.Use(catalogue::PathMap(
            {{QStringLiteral("C:\\Tables"), QDir::toNativeSeparators(folder.path())}}));
    }

    // Runs a statement that must succeed.
    void Execute(const QString& sql) {
        const auto done = connection->Execute(sql.toStdU16String());
        ASSERT_TRUE(done.ok()) << done.status().message() << " in " << sql.toStdString();
    }
    // First field of the first row as text; "<none>" without a row, "<error>" with its text on
    // failure.
    QString Scalar(const QString& sql) {
        auto rows = connection->Execute(sql.toStdU16String());
        if (!rows.ok())
            return QStringLiteral("<error> ") + QString::fromStdString(rows.status().message());
        if (rows->Eof()) return QStringLiteral("<none>");
        const auto value = rows->Fields(std::size_t{0});
        return value.ok() ? catalogue::FieldText(*value) : QStringLiteral("<error>");
    }

    test_support::TemporaryDir folder;
    std::unique_ptr<jet::FileSystem> files = platform::MakeFileSystem();
    WalkCounts walks;
    std::unique_ptr<jet::Connection> connection = std::make_unique<jet::Connection>(
        *files, [this] { return catalogue::ToOleDate(clock.now); });
    FakeClock clock;
    FakeSettings settings;
    FakePrompts prompts;
    catalogue::ProcessValues values;
    catalogue::Catalogue catalogue;
};

}  // namespace test_support
