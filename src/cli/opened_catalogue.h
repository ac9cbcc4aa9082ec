// OpenedCatalogue: the catalogue of the chosen folder, opened for one command.
#pragma once

#include "catalogue/catalogue.h"
#include "catalogue/process_values.h"
#include "cli/program.h"
#include "history/history_file.h"
#include "jet/connection.h"

#include <memory>

namespace cli {

enum class Access {
    kRead,   // as it is; beside a program that has it open, what was committed last
    kWrite,  // as the program opens it: missing columns are added, a first start gets an empty one
    kTrial,  // a copy in memory of what kWrite would open, brought up to date; changes are lost
};

class OpenedCatalogue {
public:
    // kBusy: another program has it (the engine's text names the user); kWrite only.
    static base::Result<std::unique_ptr<OpenedCatalogue>> Open(Program& program, Access access);

    catalogue::Catalogue& get() { return catalogue_; }
    jet::Connection& connection() { return *connection_; }
    // What was changed in it; kWrite: by this command as well.
    history::HistoryFile& history() { return *history_; }
    // Makes everything durable.
    base::Status Close() { return connection_->Close(); }

private:
    explicit OpenedCatalogue(Program& program);
    base::Status OpenForReading(jet::FileSystem& files);
    base::Status OpenCopy(jet::FileSystem& files, const QString& name);

    catalogue::ProcessValues values_;
    std::unique_ptr<history::HistoryFile> history_;  // outlives the connection
    std::unique_ptr<jet::Connection> connection_;
    catalogue::Catalogue catalogue_;
};

// The catalogue's file in the chosen folder, be it there or not.
QString CataloguePath(const Program& program);
// The access for a command that changes rows: a trial with --dry-run.
Access AccessForChanges(const Program& program);

}  // namespace cli
