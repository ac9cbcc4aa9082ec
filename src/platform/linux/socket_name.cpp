#include "platform/local_socket/socket_name.h"

#include "platform/application_folder.h"
#include "platform/files.h"

#include <QtCore/QCryptographicHash>
#include <QtCore/QStandardPaths>

namespace platform {

// The name of a socket has room for some hundred bytes only, so the folder's is not part of it.
QString SocketName(const QString& folder) {
    const QString sockets = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    const QString real = RealPath(folder);
    if (sockets.isEmpty() || real.isEmpty()) return {};
    const QByteArrayView bytes(reinterpret_cast<const char*>(real.utf16()), real.size() * 2);
    const QByteArray hash =
        QCryptographicHash::hash(bytes.toByteArray(), QCryptographicHash::Sha256);
    return FileIn(sockets, QStringLiteral("tavolo-") + QString::fromLatin1(hash.toHex().left(32)));
}

// Here the window manager decides.
void LetReceiverComeToFront() {}

}  // namespace platform
