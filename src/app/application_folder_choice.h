// Where the catalogue is, and what a first start puts there.
#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

namespace app {

// The folders that the choice is made of; without trailing separators.
struct KnownFolders {
    QString program;    // where the program was started from
    QString delivered;  // the untouched copies: ../share/tavolo, seen from the program
    QString user_data;
};
KnownFolders FoldersOfThisProgram();

// `wanted` (from the command line) if given, as an absolute path. Otherwise the program's folder;
// but the user's data folder when nothing can be written there, or when the program is an installed
// one, whose catalogue is only among the delivered files.
QString ChooseApplicationFolder(const QString& wanted, const KnownFolders& folders);

// A first start puts the delivered files into its folder. It is one when a folder that the user has
// named is empty, or when the user's data folder (which is made when it is missing) holds nothing
// that the program puts there: a catalogue that is gone must not be replaced by an empty one
// without a word, least of all beside its backup. A data folder with a catalogue gets what came
// with later versions. Nothing is ever overwritten. What cannot be copied is left out; opening the
// catalogue tells the user.
void PrepareFirstStart(const QString& application_folder, const KnownFolders& folders);

}  // namespace app
