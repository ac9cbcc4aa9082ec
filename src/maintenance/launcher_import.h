// LauncherImport: copies version, author, year, company and the need of VPinMAME from VPLauncher's
// data file into rows of the catalogue, found by checksum, else by display name. Adds no rows.
#pragma once

#include "base/status.h"
#include "catalogue/catalogue.h"
#include "jet/connection.h"
#include "jet/pages/file_system.h"
#include "maintenance/launcher_record.h"
#include "platform/user_events.h"
#include "platform/user_prompts.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

namespace maintenance {

class MatchIndex;

// The window of an import.
class ImportDisplay {
public:
    virtual ~ImportDisplay() = default;
    // Disables everything that starts or changes an import, and keeps the window open, while busy.
    virtual void SetBusy(bool busy) = 0;
    virtual void SetReading(const QString& text) = 0;
    virtual void SetWriting(const QString& text) = 0;
    // The import is over and has changed rows: the start button becomes "Done".
    virtual void SetDone() = 0;
};

// The dates on which tables were added, as texts, in the database's order, without Nulls.
base::Result<QStringList> DatesAdded(jet::Connection& connection);

class LauncherImport {
public:
    // Everything is borrowed and outlives the import. `events` is called once per line and may
    // deliver the user's input.
    LauncherImport(catalogue::Catalogue& catalogue, platform::UserPrompts& prompts,
                   platform::UserEvents& events, ImportDisplay& display);

    // Every matching row.
    void ImportAll();
    // Rows added after `date` only; refuses a text that is not a date.
    void ImportAddedAfter(const QString& date);

    // A line that cannot be processed is skipped silently. The first failure that was not the
    // line's fault but the database's is kept here.
    const base::Status& database_failure() const { return database_failure_; }

private:
    void Run(const QString& date_condition);
    void Note(const base::Status& status);
    QString LocateDataFile();
    void ReadFile(const QString& path, const QString& date_condition);
    void ImportLine(const QString& line, const MatchIndex& index, const QString& date_condition);
    bool Update(const LauncherRecord& record, const MatchIndex& index,
                const QString& date_condition);
    void ShowResult();
    void Say(const QString& text);

    catalogue::Catalogue& catalogue_;
    platform::UserPrompts& prompts_;
    platform::UserEvents& events_;
    ImportDisplay& display_;
    std::int64_t updated_lines_ = 0;
    base::Status database_failure_;
};

}  // namespace maintenance
