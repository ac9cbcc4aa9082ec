// The start in an application folder that is not there yet, from an installation that is not whole,
// or of the example collection.
#pragma once

#include "app/arguments.h"
#include "catalogue/application_folder_choice.h"
#include "jet/connection.h"
#include "platform/user_prompts.h"

#include <QtCore/QString>

namespace app {

// The application folder that the arguments ask for.
QString FolderOf(const Arguments& arguments, const catalogue::KnownFolders& folders);

// Makes the folder ready: asks whether to make one that was named and is not there, copies the
// delivered files into a new one, or the example collection. False: the program cannot go on, which
// the user was told or has decided; the folder is as it was.
bool PrepareFolder(const QString& folder, const Arguments& arguments,
                   const catalogue::KnownFolders& folders, platform::UserPrompts& prompts);

}  // namespace app
