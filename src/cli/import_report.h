// What an import says on the command line.
#pragma once

#include "cli/console.h"
#include "exchange/row_import.h"

namespace cli {

// The first reason for which nothing was imported; ok: there is none.
base::Status FirstProblem(const exchange::ImportReport& report);

// Tells each reason with its line, "FILE:LINE: text", and the columns that were left out.
void TellProblems(Console& console, const QString& file, const exchange::ImportReport& report);

}  // namespace cli
