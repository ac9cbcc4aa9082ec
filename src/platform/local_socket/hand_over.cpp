#include "platform/hand_over.h"

#include "platform/files.h"
#include "platform/local_socket/socket_name.h"

#include <QtCore/QTimer>
#include <QtCore/QtEndian>
#include <QtNetwork/QLocalServer>
#include <QtNetwork/QLocalSocket>

#include <optional>
#include <utility>

namespace platform {
namespace {

constexpr QByteArrayView kGreeting = "tavolo1\n";
constexpr qsizetype kLengthBytes = 4;
constexpr qsizetype kHeadBytes = kGreeting.size() + kLengthBytes;
constexpr char kYes = 'y';
constexpr char kNo = 'n';
// Whoever says nothing more is sent away.
constexpr int kPatienceMs = 5000;
constexpr int kMaxCallers = 8;

QByteArray MessageOf(const QString& path) {
    QByteArray message = kGreeting.toByteArray();
    message.resize(kHeadBytes + path.size() * 2);
    qToLittleEndian(static_cast<quint32>(path.size() * 2), message.data() + kGreeting.size());
    qToLittleEndian<char16_t>(path.utf16(), path.size(), message.data() + kHeadBytes);
    return message;
}

// What a caller has said so far.
struct Heard {
    bool is_wrong = false;
    std::optional<QString> path;  // nullopt: not all of it is there
};

Heard Understand(const QByteArray& bytes) {
    if (!kGreeting.startsWith(bytes.left(kGreeting.size()))) return {.is_wrong = true, .path = {}};
    if (bytes.size() < kHeadBytes) return {};
    const auto length = qFromLittleEndian<quint32>(bytes.constData() + kGreeting.size());
    if (length > kMaxPathBytes || length % 2 != 0) return {.is_wrong = true, .path = {}};
    const auto whole = kHeadBytes + static_cast<qsizetype>(length);
    if (bytes.size() > whole) return {.is_wrong = true, .path = {}};
    if (bytes.size() < whole) return {};
    QString path(static_cast<qsizetype>(length / 2), Qt::Uninitialized);
    qFromLittleEndian<char16_t>(bytes.constData() + kHeadBytes, path.size(), path.data());
    if (path.contains(QChar(0)) || (!path.isEmpty() && AbsolutePath(path) != path))
        return {.is_wrong = true, .path = {}};
    return {.is_wrong = false, .path = path};
}

class LocalReceiver final : public PathReceiver {
public:
    explicit LocalReceiver(TakePath take) : take_(std::move(take)) {
        server_.setSocketOptions(QLocalServer::UserAccessOption);
        server_.setMaxPendingConnections(kMaxCallers);
        QObject::connect(&server_, &QLocalServer::newConnection, &server_, [this] { Welcome(); });
    }

    // Qt puts a new socket in the place of an old one, whether that is dead or not.
    base::Status Listen(const QString& name) {
        QLocalSocket caller;
        caller.connectToServer(name);
        if (caller.waitForConnected(kPatienceMs))
            return {base::StatusCode::kBusy, "another program listens at " + name.toStdString()};
        QLocalServer::removeServer(name);
        if (server_.listen(name)) return {};
        return {base::StatusCode::kIoError,
                name.toStdString() + ": " + server_.errorString().toStdString()};
    }

private:
    void Welcome() {
        while (QLocalSocket* const caller = server_.nextPendingConnection()) {
            QObject::connect(caller, &QLocalSocket::disconnected, caller, &QObject::deleteLater);
            if (server_.findChildren<QLocalSocket*>().size() > kMaxCallers) {
                caller->abort();
                continue;
            }
            caller->setReadBufferSize(kHeadBytes + kMaxPathBytes + 1);
            QObject::connect(caller, &QLocalSocket::readyRead, caller,
                             [this, caller] { Hear(*caller); });
            QTimer::singleShot(kPatienceMs, caller, [caller] { caller->abort(); });
            Hear(*caller);
        }
    }

    // Nothing is taken from the socket before all is there: it holds no more than a message has.
    void Hear(QLocalSocket& caller) {
        const Heard heard = Understand(caller.peek(kHeadBytes + kMaxPathBytes + 1));
        if (!heard.is_wrong && !heard.path) return;
        caller.disconnect(&caller, &QLocalSocket::readyRead, nullptr, nullptr);
        const bool is_taken = !heard.is_wrong && take_(*heard.path);
        caller.putChar(is_taken ? kYes : kNo);
        caller.disconnectFromServer();
    }

    TakePath take_;
    QLocalServer server_;
};

base::Status Silent(const QLocalSocket& socket) {
    return {base::StatusCode::kIoError,
            "the running program does not answer: " + socket.errorString().toStdString()};
}

}  // namespace

base::Result<std::unique_ptr<PathReceiver>> ReceivePaths(const QString& folder, TakePath take) {
    const QString name = SocketName(folder);
    if (name.isEmpty())
        return base::Status(base::StatusCode::kIoError, "there is no folder for sockets");
    auto receiver = std::make_unique<LocalReceiver>(std::move(take));
    RETURN_IF_ERROR(receiver->Listen(name));
    return std::unique_ptr<PathReceiver>(std::move(receiver));
}

base::Status HandPathOver(const QString& folder, const QString& path, int timeout_ms) {
    const QString name = SocketName(folder);
    if (path.size() * 2 > kMaxPathBytes)
        return {base::StatusCode::kInvalidArgument, "the path is too long"};
    QLocalSocket socket;
    if (!name.isEmpty()) socket.connectToServer(name);
    if (name.isEmpty() || !socket.waitForConnected(timeout_ms))
        return {base::StatusCode::kNotFound, "no program listens for " + folder.toStdString()};
    LetReceiverComeToFront();
    socket.write(MessageOf(path));
    while (socket.bytesToWrite() > 0)
        if (!socket.waitForBytesWritten(timeout_ms)) return Silent(socket);
    while (socket.bytesAvailable() == 0)
        if (!socket.waitForReadyRead(timeout_ms)) return Silent(socket);
    char answer = kNo;
    if (!socket.getChar(&answer)) return Silent(socket);
    if (answer == kYes) return {};
    return {base::StatusCode::kBusy, "the running program does not take the path"};
}

}  // namespace platform
