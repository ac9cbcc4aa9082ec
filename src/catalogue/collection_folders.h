// The folders in which the collection lies: each that was scanned, so that one key looks for new
// tables in all of them. They are kept beside the catalogue in `pinball.mdb-folders`, a JSON array
// of paths; without that file nothing is lost but their names.
#pragma once

#include "base/status.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

namespace catalogue {

// The one scanned longest ago leaves when there are more.
inline constexpr qsizetype kMaxCollectionFolders = 100;

// `catalogue_file`: the path of the catalogue.
QString CollectionFoldersFile(const QString& catalogue_file);

// In the order in which they were scanned first; empty: none is known. kCorruption: the file holds
// something else.
base::Result<QStringList> CollectionFolders(const QString& catalogue_file);

// A folder inside a known one is known already; those inside `folder` are no longer needed. What is
// no list is replaced.
base::Status RememberCollectionFolder(const QString& catalogue_file, const QString& folder);

// Nothing happens to a folder that is not known.
base::Status ForgetCollectionFolder(const QString& catalogue_file, const QString& folder);

}  // namespace catalogue
