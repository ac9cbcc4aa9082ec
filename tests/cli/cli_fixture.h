// CliFixture: an application folder with three tables and their files, and the program's commands
// run on it without a process.
#pragma once

#include "catalogue/new_catalogue.h"
#include "catalogue/process_values.h"
#include "catalogue/start_up.h"
#include "cli/program.h"
#include "jet/connection.h"
#include "platform/file_system.h"
#include "platform/standard_streams.h"
#include "support/fakes.h"
#include "support/temporary_dir.h"
#include "support/vpt_builder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QtCore/QDir>
#include <QtCore/QFile>

namespace cli {

class FakeConsole final : public Console {
public:
    std::string out;
    std::string error;
    QByteArray in;
    bool is_terminal = false;
    bool shows_progress = false;
    int writes_left = -1;  // -1: as many as there are
    base::Status write_error;

    base::Status WriteOut(std::string_view bytes) override {
        if (writes_left == 0) return write_error;
        if (writes_left > 0) --writes_left;
        out += bytes;
        return {};
    }
    void WriteError(std::string_view bytes) override { error += bytes; }
    base::Result<QByteArray> ReadIn(qint64) override { return in; }
    bool OutIsColoured() const override { return is_terminal; }
    bool OutIsTerminal() const override { return is_terminal; }
    bool ErrorShowsProgress() const override { return shows_progress; }
};

class CliFixture : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(folder.isValid());
        ASSERT_TRUE(QDir(folder.path()).mkpath(QStringLiteral("tables")));
        const auto made =
            catalogue::CreateEmptyCatalogue(*files, DatabasePath().toStdU16String(), 46346);
        ASSERT_TRUE(made.ok()) << made.message();
        for (const char16_t* name : {u"Attack", u"Taxi", u"Fathom"})
            WriteTableFile(QString::fromUtf16(name));
        WithConnection([](jet::Connection&) {});  // adds the columns
        Sql("INSERT INTO Tables (DisplayName, FileName, Author, Company, [Year], TimesPlayed, "
            "Favorite, Notes, FileDate) VALUES ('Attack', '" +
            TablePath("Attack") +
            "', 'Some One', 'Bally', '1995', 3, true, 'first' & chr(13) & chr(10) & 'second', "
            "#1/2/2004 10:30:00 AM#)");
        Sql("INSERT INTO Tables (DisplayName, FileName, Company, [Year], PinMame) VALUES ('Taxi', "
            "'" +
            TablePath("Taxi") + "', 'Williams', '1988', true)");
        Sql("INSERT INTO Tables (DisplayName, FileName) VALUES ('Fathom', '" + TablePath("Fathom") +
            "')");
        WithConnection([](jet::Connection&) {});  // gives the last one its date
    }

    QString DatabasePath() const { return folder.filePath(QStringLiteral("pinball.mdb")); }
    std::string TablePath(const std::string& name) const {
        return folder.filePath(QStringLiteral("tables/%1.vpt").arg(QString::fromStdString(name)))
            .toStdString();
    }
    void WriteTableFile(const QString& name) {
        test_support::VptBuilder builder;
        builder.Text(u"TableName", (name + QStringLiteral(" & Co")).toStdU16String())
            .Text(u"AuthorName", u"Its Author")
            .Text(u"Colour", u"red")
            .Screenshot(test_support::BytesOf("\xFF\xD8\xFF picture"));
        ASSERT_TRUE(builder.Write(TablePath(name.toStdString())).ok());
    }

    // Opens the catalogue as the program does, and closes it again.
    void WithConnection(const std::function<void(jet::Connection&)>& use) {
        catalogue::ProcessValues values;
        values.ApplicationFolder = folder.path();
        jet::Connection connection(*files);
        catalogue::Catalogue opened{&connection, &values, &settings, &clock};
        const auto done = catalogue::Main(opened);
        ASSERT_TRUE(done.ok()) << done.message();
        use(connection);
        EXPECT_TRUE(connection.Close().ok());
    }
    void Sql(const std::string& sql) {
        WithConnection([&](jet::Connection& connection) {
            const auto done = connection.Execute(QString::fromStdString(sql).toStdU16String());
            ASSERT_TRUE(done.ok()) << done.status().message() << " in " << sql;
        });
    }
    // First field of the first row as text; "<none>" without a row.
    std::string Scalar(const std::string& sql) {
        std::string text = "<none>";
        WithConnection([&](jet::Connection& connection) {
            auto rows = connection.Execute(QString::fromStdString(sql).toStdU16String());
            ASSERT_TRUE(rows.ok()) << rows.status().message();
            if (!rows->Eof())
                text = QString::fromStdU16String(jet::ToText(*rows->Fields(std::size_t{0})))
                           .toStdString();
        });
        return text;
    }
    QByteArray DatabaseBytes() const {
        QFile file(DatabasePath());
        EXPECT_TRUE(file.open(QIODevice::ReadOnly));
        return file.readAll();
    }

    // The words behind --folder; what was written before is forgotten.
    int Run(const QStringList& words, jet::FileSystem* other_files = nullptr) {
        console.out.clear();
        console.error.clear();
        Outside outside{other_files != nullptr ? *other_files : *files,
                        settings,
                        clock,
                        programs,
                        windows,
                        {folder.path(), folder.filePath(QStringLiteral("share")),
                         folder.filePath(QStringLiteral("home"))}};
        return cli::Run(QStringList{QStringLiteral("--folder"), folder.path()} + words, outside,
                        console);
    }
    // Words separated by blanks.
    int Run(const char* words) { return Run(QString::fromUtf8(words).split(u' ')); }

    test_support::TemporaryDir folder;
    std::unique_ptr<jet::FileSystem> files = platform::MakeFileSystem();
    test_support::FakeSettings settings;
    test_support::FakeClock clock;
    test_support::FakeProcessStarter programs;
    test_support::FakeWindows windows;
    FakeConsole console;
};

}  // namespace cli
