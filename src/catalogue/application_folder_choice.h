// The choice of the application folder, which holds the catalogue, and what a first start copies
// there.
#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

namespace catalogue {

// Folders without trailing separators.
struct KnownFolders {
    QString program;    // of the executable
    QString delivered;  // the files as delivered: ../share/tavolo, relative to `program`
    QString user_data;
};
KnownFolders FoldersOfThisProgram();

// `wanted` (from the command line), made absolute, unless it is empty. Otherwise the program's
// folder, or the user's data folder if the program's is not writable or if the program is
// installed, that is, there is a catalogue among the delivered files and none beside the program.
QString ChooseApplicationFolder(const QString& wanted, const KnownFolders& folders);

// The delivered files that are not there and without which the program cannot work in
// `application_folder` for the first time, with their paths; empty when nothing is missing or it is
// no first start.
QStringList MissingForFirstStart(const QString& application_folder, const KnownFolders& folders);

// Copies the delivered files into the application folder at a first start: into the user's data
// folder (which is created if it is missing) when it contains none of the program's files, into any
// other folder when it is empty. The conditions are strict so that a lost catalogue is never
// replaced by an empty one without notice. A user's data folder with a catalogue gets the other
// delivered files if they are missing. Nothing is overwritten. Failures are ignored: if the
// catalogue is missing, opening it reports that.
void PrepareFirstStart(const QString& application_folder, const KnownFolders& folders);

// The delivered catalogue that PrepareFirstStart would copy into the application folder; empty: it
// would not copy one.
QString CatalogueOfFirstStart(const QString& application_folder, const KnownFolders& folders);

}  // namespace catalogue
