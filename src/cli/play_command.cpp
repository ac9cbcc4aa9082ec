// play: the program's launcher without its window.
#include "cli/commands.h"
#include "cli/opened_catalogue.h"
#include "cli/selection_arguments.h"

#include "catalogue/field_text.h"
#include "catalogue/quoting.h"
#include "launcher/play_table.h"
#include "platform/files.h"

#include <QtCore/QThread>

#include <optional>

namespace cli {
namespace {

constexpr unsigned long kWatchMs = 50;

struct Table {
    QString id;
    QString name;
    QString path;
};

base::Result<std::vector<Table>> FindTables(jet::Connection& connection, const QString& where) {
    const QString sql =
        QStringLiteral("Select ID, DisplayName, FileName from Tables where ") + where;
    ASSIGN_OR_RETURN(jet::Recordset rows, connection.Execute(sql.toStdU16String()));
    std::vector<Table> tables;
    while (!rows.Eof()) {
        Table table;
        ASSIGN_OR_RETURN(table.id, catalogue::FieldText(rows, u"ID"));
        ASSIGN_OR_RETURN(table.name, catalogue::FieldText(rows, u"DisplayName"));
        ASSIGN_OR_RETURN(table.path, catalogue::FieldText(rows, u"FileName"));
        tables.push_back(table);
        RETURN_IF_ERROR(rows.MoveNext());
    }
    return tables;
}

// By ID, if the word is one of a table, else by name.
base::Result<Table> FindTable(jet::Connection& connection, const QString& word) {
    std::vector<Table> tables;
    if (const auto id = IdOf(word); id.ok()) {
        ASSIGN_OR_RETURN(tables,
                         FindTables(connection, QStringLiteral("ID = ") + QString::number(*id)));
    }
    if (tables.empty()) {
        ASSIGN_OR_RETURN(tables, FindTables(connection, QStringLiteral("DisplayName = '") +
                                                            catalogue::QuoteSqlExpr(word) + u'\''));
    }
    if (tables.empty())
        return base::Status(base::StatusCode::kNotFound,
                            "there is no table \"" + word.toStdString() + "\"");
    if (tables.size() == 1) return tables.front();
    QStringList ids;
    for (const Table& table : tables)
        ids.append(table.id);
    return base::Status(base::StatusCode::kInvalidArgument,
                        "several tables are called \"" + word.toStdString() +
                            "\": " + ids.join(QStringLiteral(", ")).toStdString());
}

// Messages go to the error output; a terminal has no boxes to choose files in.
class ConsolePrompts final : public platform::UserPrompts {
public:
    explicit ConsolePrompts(Console& console) : console_(console) {}
    bool has_complained() const { return has_complained_; }

    platform::MessageAnswer Ask(const platform::Message& message) override {
        has_complained_ = true;
        console_.Complain(message.text);
        return platform::MessageAnswer::kOk;
    }
    QString ChooseFileToOpen(const platform::FileDialog&) override { return {}; }
    QString ChooseFileToSave(const platform::FileDialog&) override { return {}; }
    QString ChooseFolder(const QString&, const QString&) override { return {}; }

private:
    Console& console_;
    bool has_complained_ = false;
};

// While the play is watched the catalogue is needed no more: others may have it.
class WatchPauses final : public platform::UserEvents {
public:
    explicit WatchPauses(jet::Connection& connection) : connection_(connection) {}
    const base::Status& closed() const { return closed_; }
    void ProcessEvents() override {
        if (connection_.is_open()) closed_ = connection_.Close();
        QThread::msleep(kWatchMs);
    }

private:
    jet::Connection& connection_;
    base::Status closed_;
};

// The launcher plays sounds only where the settings of a window ask for them.
class NoSounds final : public platform::SoundPlayer {
public:
    void PlaySynchronously(const QString&) override {}
};

class LoadingMessage final : public platform::StatusDisplay {
public:
    explicit LoadingMessage(Console& console) : console_(console) {}
    void Show(const QString& text) override { console_.Print(text); }
    void Unload() override {}

private:
    Console& console_;
};

int Play(Program& program, OpenedCatalogue& opened, const Table& table) {
    ConsolePrompts prompts(program.console);
    WatchPauses events(opened.connection());
    NoSounds sounds;
    LoadingMessage status(program.console);
    launcher::Launcher launcher(
        {opened.get(), program.outside.windows, program.outside.programs, sounds, events, status,
         prompts},
        {[] { return Qt::WindowStates(); }, [] {}, [](Qt::WindowStates) {}, [] {}});
    launcher.PlayTable(table.path, table.name, table.id.toLongLong());
    const int ended = Finish(program, {events.closed(), opened.Close()});
    return ended == kDone && prompts.has_complained() ? kFailed : ended;
}

}  // namespace

int RunPlay(Program& program) {
    const Access access = program.is_dry_run() ? Access::kRead : Access::kWrite;
    auto opened = OpenedCatalogue::Open(program, access);
    if (!opened.ok()) return Fail(program, opened.status());
    const auto table = FindTable((*opened)->connection(), program.arguments.operands.front());
    if (!table.ok()) return Fail(program, table.status());
    // As in the window's tree: a table whose file is gone is not played, nor counted.
    const QString file = (*opened)->get().values->paths.Of(table->path);
    if (!platform::FileExists(file))
        return Fail(program,
                    {base::StatusCode::kNotFound, file.toStdString() + ": there is no such file"});
    if (!program.is_dry_run()) return Play(program, **opened, *table);
    program.console.Print(launcher::SimulatorCommandLine((*opened)->get().values->VisualPinballExe,
                                                         platform::ExistingName(file)));
    return kDone;
}

}  // namespace cli
