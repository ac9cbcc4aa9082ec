// SnapshotBefore: what a command that changes many rows does first.
#pragma once

#include "cli/opened_catalogue.h"

namespace cli {

// Makes a snapshot of the opened catalogue, named after the command; a dry run makes none. A
// failure is told, and the command goes on. It is checked when something is to be restored.
void SnapshotBefore(Program& program, OpenedCatalogue& opened, const char* command);

// The same for the command that needs the catalogue closed.
void SnapshotBefore(Program& program, const char* command);

}  // namespace cli
