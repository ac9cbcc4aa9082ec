// The setting VPEXE, the path of the simulator's executable: reading, choosing and storing it.
#pragma once

#include "catalogue/catalogue.h"
#include "platform/user_prompts.h"

#include <QtCore/QString>

namespace dialogs {

// The stored path; empty when none is stored.
QString StoredExecutable(const catalogue::Catalogue& catalogue);

// Asks the user for the executable, offering `current`, which is also returned after a cancel.
QString ChooseExecutable(platform::UserPrompts& prompts, const QString& current);

// Makes an existing file the executable that the next play starts, and stores it. False when there
// is no such file: the user is told and nothing changes. A failure to store it is shown; the result
// is true nevertheless, because the path is used until the program ends.
bool StoreExecutable(catalogue::Catalogue& catalogue, platform::UserPrompts& prompts,
                     const QString& path);

}  // namespace dialogs
