#include "platform/local_socket/socket_name.h"

#include "platform/files.h"
#include "platform/windows/qt_text.h"
#include "platform/windows/windows_header.h"

#include <QtCore/QCryptographicHash>

namespace platform {

// Names of pipes are the computer's, so the user's is part of it. Two users have each their own.
QString SocketName(const QString& folder) {
    const QString real = RealPath(folder);
    if (real.isEmpty()) return {};
    std::wstring user(257, L'\0');
    auto size = static_cast<DWORD>(user.size());
    user.resize(GetUserNameW(user.data(), &size) ? size - 1 : 0);
    const QString name = FromWide(user) + u'\n' + real.toCaseFolded();
    const QByteArray hash = QCryptographicHash::hash(name.toUtf8(), QCryptographicHash::Sha256);
    return QStringLiteral("tavolo-") + QString::fromLatin1(hash.toHex().left(32));
}

void LetReceiverComeToFront() {
    AllowSetForegroundWindow(ASFW_ANY);
}

}  // namespace platform
