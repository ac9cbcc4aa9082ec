// What an import says on the command line.
#pragma once

#include "cli/program.h"
#include "exchange/row_import.h"
#include "jet/connection.h"

namespace cli {

// Imports the rows and tells what that has changed; nothing where they were not accepted.
base::Result<exchange::ImportReport> ImportAndTell(Program& program, jet::Connection& connection,
                                                   exchange::RowSource& source,
                                                   const exchange::ImportOptions& options);

// The first reason for which nothing was imported; ok: there is none.
base::Status FirstProblem(const exchange::ImportReport& report);

// Tells each reason with its line, "FILE:LINE: text", and the columns that were left out.
void TellProblems(Console& console, const QString& file, const exchange::ImportReport& report);

}  // namespace cli
