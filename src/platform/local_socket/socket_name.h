// Where an instance of the program listens.
#pragma once

#include <QtCore/QString>

namespace platform {

// The local socket for `folder`, the same for each of its names. Empty: the user has no folder for
// sockets.
QString SocketName(const QString& folder);

// Called before something is handed over: where a program comes to the front only with leave of the
// one that is there, the receiver gets it.
void LetReceiverComeToFront();

}  // namespace platform
