// Where an instance of the program listens.
#pragma once

#include <QtCore/QString>

namespace platform {

// The local socket for `folder`, the same for each of its names. Empty: the user has no folder for
// sockets.
QString SocketName(const QString& folder);

}  // namespace platform
