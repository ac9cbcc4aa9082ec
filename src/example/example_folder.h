// The example collection as a user opens it: a copy of what is delivered, in an application folder
// of its own, that may be changed and thrown away.
#pragma once

#include "base/status.h"
#include "jet/connection.h"

#include <QtCore/QString>

namespace example {

// Folders of the collection, beside its catalogue.
inline constexpr QStringView kTablesFolder = u"tables";
inline constexpr QStringView kPicturesFolder = u"pictures";
// Of the collection as delivered, in the folder of the delivered files, and of the copy, in the
// user's data folder.
inline constexpr QStringView kDeliveredFolder = u"example";
inline constexpr QStringView kUsersFolder = u"Example Collection";

// Copies the delivered collection `from` into `folder`, which is made if it must be; does nothing
// if there is a catalogue already. The catalogue comes last, so that a copy that fails is made
// again the next time. kNotFound: it was not delivered.
base::Status CopyExample(const QString& from, const QString& folder);

// The delivered catalogue names its files from its own folder on; this makes them paths below
// `folder`. Rows that have such paths already stay as they are.
base::Status SetExamplePaths(jet::Connection& connection, const QString& folder);

}  // namespace example
