// What the program has that changes rows, to be run on a catalogue of any number of tables: for the
// test that undoes each command, and for the benchmark of what remembering them costs.
#pragma once

#include "base/status.h"
#include "catalogue/catalogue.h"
#include "support/temporary_dir.h"

#include <QtCore/QStringList>

#include <functional>
#include <vector>

namespace test_support {

// A folder with a catalogue, table files that its rows name in turn, as many table files that it
// does not have, a launcher's data file and a file of rows, each about every row. All of it lies on
// the disk; IDs are 1 to rows().
class TablesFolder {
public:
    // Ends the program when something cannot be made.
    explicit TablesFolder(int rows);

    int rows() const { return rows_; }
    // The catalogue as it was made, which the commands are run on copies of.
    QString catalogue() const { return Path(QStringLiteral("as made.mdb")); }
    // Where the program looks for its catalogue.
    QString folder() const { return folder_.path(); }
    QString database() const { return Path(QStringLiteral("pinball.mdb")); }
    QString table_folder() const { return Path(QStringLiteral("tables")); }
    QString new_folder() const { return Path(QStringLiteral("new tables")); }
    QString launcher_file() const { return Path(QStringLiteral("vpLauncher.dat")); }
    QString rows_file() const { return Path(QStringLiteral("rows.csv")); }

    // A fresh copy of the catalogue at database(), without anything beside it.
    void StartAgain() const;

private:
    QString Path(const QString& name) const { return folder_.filePath(name); }
    void MakeTableFiles() const;
    void MakeCatalogue() const;
    void WriteLauncherFile() const;
    void WriteRowsFile() const;

    test_support::TemporaryDir folder_;
    int rows_;
};

// Runs the command on the open catalogue as its menu entry does, every question answered with yes.
struct ChangingCommand {
    const char* name;        // of the change that it makes
    bool is_for_all = true;  // false: it changes one row
    std::function<base::Status(const TablesFolder&, catalogue::Catalogue&)> run;
};

std::vector<ChangingCommand> ChangingCommands();

}  // namespace test_support
