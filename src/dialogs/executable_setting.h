// The setting that names the simulator's executable: read, chosen, checked, stored.
#pragma once

#include "catalogue/pin_subs.h"
#include "platform/user_prompts.h"

#include <QtCore/QString>

namespace dialogs {

// The stored path; empty when none was ever stored.
QString StoredExecutable(const catalogue::Catalogue& catalogue);

// Asks for the executable, `current` offered. After a cancel the answer is `current`.
QString ChooseExecutable(platform::UserPrompts& prompts, const QString& current);

// Any existing file is taken: it is stored as VPEXE at once and is what the next play starts.
// Otherwise the user is told and nothing changes. True: taken; that it could not be stored for the
// next start, the user is told, too.
bool StoreExecutable(catalogue::Catalogue& catalogue, platform::UserPrompts& prompts,
                     const QString& path);

}  // namespace dialogs
