// Each command of the program on 100,000 tables, then undone and redone: another program must find
// in the catalogue what it found before. (Its rows are compared in the order of their texts: a row
// that comes back may lie on another page.)
#include "catalogue/date_texts.h"
#include "catalogue/process_values.h"
#include "catalogue/start_up.h"
#include "history/history_file.h"
#include "history/undo_redo.h"
#include "jet/connection.h"
#include "platform/file_system.h"
#include "support/changing_commands.h"
#include "support/check_database.h"
#include "support/fakes.h"
#include "support/programs.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using test_support::ChangingCommand;
using test_support::TablesFolder;

// Between rows of mdb-export, as fields have line breaks.
constexpr char kRowEnd = '\x1E';

// The header, then all rows.
QList<QByteArray> Exported(const QString& database) {
    const auto exported =
        test_support::OutputOf({"mdb-export", "-R", std::string(1, kRowEnd), "-T",
                                "%Y-%m-%d %H:%M:%S", database.toStdString(), "Tables"});
    EXPECT_TRUE(exported) << "mdb-export failed";
    QList<QByteArray> rows = QByteArray::fromStdString(exported.value_or("")).split(kRowEnd);
    std::sort(rows.begin(), rows.end());
    return rows;
}

const TablesFolder& Folder() {
    static const TablesFolder folder(TAVOLO_ROWS);
    return folder;
}
const QList<QByteArray>& AsMade() {
    static const QList<QByteArray> rows = Exported(Folder().catalogue());
    return rows;
}

class Opened {
public:
    Opened() {
        values_.ApplicationFolder = Folder().folder();
        connection_.UseNotes(&file_);
        catalogue_ = {&connection_, &values_, &settings_, &clock_};
        const auto opened = catalogue::Main(catalogue_);
        EXPECT_TRUE(opened.ok()) << opened.message();
    }
    ~Opened() { EXPECT_TRUE(connection_.Close().ok()); }
    Opened(const Opened&) = delete;
    Opened& operator=(const Opened&) = delete;

    catalogue::Catalogue& tables() { return catalogue_; }
    history::UndoRedo& undo_redo() { return undo_redo_; }
    history::Change NewestChange() {
        EXPECT_TRUE(connection_.Flush().ok());
        const auto changes = file_.Changes();
        EXPECT_TRUE(changes.ok() && !changes->empty());
        return changes.ok() && !changes->empty() ? changes->back() : history::Change();
    }

private:
    std::unique_ptr<jet::FileSystem> files_ = platform::MakeFileSystem();
    history::HistoryFile file_{*files_, Folder().database().toStdU16String()};
    test_support::FakeClock clock_;
    test_support::FakeSettings settings_;
    catalogue::ProcessValues values_;
    jet::Connection connection_{*files_, [this] { return catalogue::ToOleDate(clock_.now); }};
    history::UndoRedo undo_redo_{connection_, file_};
    catalogue::Catalogue catalogue_;
};

void ExpectDone(const base::Result<std::optional<history::UndoRedo::Done>>& done) {
    ASSERT_TRUE(done.ok()) << done.status().message();
    ASSERT_TRUE(done->has_value());
    EXPECT_EQ((*done)->result.refusals.size(), 0U);
}

void RunUndoRedo(const ChangingCommand& command) {
    const QString database = Folder().database();
    Folder().StartAgain();
    {
        Opened opened;
        const auto done = command.run(Folder(), opened.tables());
        ASSERT_TRUE(done.ok()) << done.message();
        const history::Change change = opened.NewestChange();
        EXPECT_EQ(change.label.name, QString::fromLatin1(command.name).toStdU16String());
        EXPECT_GE(change.rows(), command.is_for_all ? std::uint64_t(Folder().rows()) : 1U);
        EXPECT_EQ(change.missed, 0U);
    }
    const QList<QByteArray> changed = Exported(database);
    EXPECT_FALSE(changed == AsMade());

    // Over a restart.
    {
        Opened opened;
        ExpectDone(opened.undo_redo().Undo());
    }
    EXPECT_TRUE(Exported(database) == AsMade());
    EXPECT_TRUE(test_support::DatabaseIsSound(database.toStdU16String(), test_support::kOwnFile));

    {
        Opened opened;
        ExpectDone(opened.undo_redo().Redo());
    }
    EXPECT_TRUE(Exported(database) == changed);
}

TEST(EveryCommand, IsUndoneAndRedoneOnManyTables) {
    // The header, and what follows the last row's end.
    ASSERT_EQ(AsMade().size(), Folder().rows() + 2);
    for (const ChangingCommand& command : test_support::ChangingCommands()) {
        SCOPED_TRACE(command.name);
        RunUndoRedo(command);
    }
}

}  // namespace
