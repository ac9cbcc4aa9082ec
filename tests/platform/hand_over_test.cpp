// Two ends of the same process: what a second instance sends comes in while the first one processes
// its events.
#include "platform/hand_over.h"

#include "platform/local_socket/socket_name.h"

#include <gtest/gtest.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QTemporaryDir>
#include <QtNetwork/QLocalServer>
#include <QtNetwork/QLocalSocket>
#include <QtTest/QTest>

#include <future>

#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

namespace platform {
namespace {

constexpr int kTimeoutMs = 20'000;

class HandOverTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(folder.isValid() && sockets.isValid());
        ASSERT_EQ(chmod(QFile::encodeName(sockets.path()).constData(), 0700), 0);
        qputenv("XDG_RUNTIME_DIR", QFile::encodeName(sockets.path()));
    }
    void TearDown() override { qunsetenv("XDG_RUNTIME_DIR"); }

    std::unique_ptr<PathReceiver> Receive() {
        auto receiver = ReceivePaths(folder.path(), [this](const QString& path) {
            taken.append(path);
            return takes;
        });
        EXPECT_TRUE(receiver.ok()) << receiver.status().message();
        return receiver.ok() ? std::move(receiver).value() : nullptr;
    }
    // As another process does it: apart from this one's events.
    static base::Status HandOver(const QString& to, const QString& path,
                                 int timeout_ms = kTimeoutMs) {
        auto done =
            std::async(std::launch::async, [=] { return HandPathOver(to, path, timeout_ms); });
        EXPECT_TRUE(QTest::qWaitFor(
            [&] { return done.wait_for(std::chrono::seconds(0)) == std::future_status::ready; },
            kTimeoutMs));
        return done.get();
    }
    // What the receiver answers to these bytes: 'y', 'n', or 0 when it hangs up without a word.
    char Say(const QByteArray& bytes) {
        QLocalSocket socket;
        socket.connectToServer(SocketName(folder.path()));
        EXPECT_TRUE(socket.waitForConnected(kTimeoutMs));
        socket.write(bytes);
        EXPECT_TRUE(QTest::qWaitFor(
            [&] {
                return socket.bytesAvailable() > 0 ||
                       socket.state() == QLocalSocket::UnconnectedState;
            },
            kTimeoutMs));
        char answer = 0;
        socket.getChar(&answer);
        return answer;
    }
    static QByteArray Message(quint32 length, const QByteArray& content) {
        QByteArray message("tavolo1\n");
        for (int shift = 0; shift < 32; shift += 8)
            message += static_cast<char>(length >> shift & 0xFF);
        return message + content;
    }

    QTemporaryDir folder;
    QTemporaryDir sockets;
    QStringList taken;
    bool takes = true;
    int arguments = 0;
    QCoreApplication application{arguments, nullptr};
};

TEST_F(HandOverTest, APathArrivesAsItIs) {
    const auto receiver = Receive();
    // A name that is no UTF-8 has a lone surrogate, others have line ends.
    const QStringList paths{QStringLiteral("/tables/a b.vpt"),
                            QStringLiteral("/t/\u00E4\n\U0001F3B1"),
                            QStringLiteral("/t/") + QChar(0xDCFC) + QStringLiteral(".vpt"),
                            u'/' + QString(32766, u'x')};
    for (const QString& path : paths) {
        const auto done = HandOver(folder.path(), path);
        EXPECT_TRUE(done.ok()) << done.message();
    }
    EXPECT_EQ(taken, paths);
}

TEST_F(HandOverTest, WhoHasNothingToGiveIsHeardAllTheSame) {
    const auto receiver = Receive();
    EXPECT_TRUE(HandOver(folder.path(), {}).ok());
    EXPECT_EQ(taken, QStringList{QString()});
    EXPECT_EQ(Say(Message(0, "x")), 'n') << "more than was said";
}

TEST_F(HandOverTest, TheFolderIsTheSameByEachOfItsNames) {
    const auto receiver = Receive();
    const QString link = sockets.filePath(QStringLiteral("link"));
    ASSERT_TRUE(QFile::link(folder.path(), link));
    EXPECT_TRUE(HandOver(link, QStringLiteral("/a")).ok());
    EXPECT_EQ(HandOver(sockets.path(), QStringLiteral("/a")).code(), base::StatusCode::kNotFound);
}

TEST_F(HandOverTest, APathThatIsNotTakenIsToldSo) {
    const auto receiver = Receive();
    takes = false;
    EXPECT_EQ(HandOver(folder.path(), QStringLiteral("/a")).code(), base::StatusCode::kBusy);
    EXPECT_EQ(HandOver(folder.path(), QString(40'000, u'x')).code(),
              base::StatusCode::kInvalidArgument);
    EXPECT_EQ(taken.size(), 1);
}

TEST_F(HandOverTest, NobodyListensAfterTheEnd) {
    Receive().reset();
    EXPECT_EQ(HandOver(folder.path(), QStringLiteral("/a")).code(), base::StatusCode::kNotFound);
    EXPECT_TRUE(QDir(sockets.path())
                    .entryList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot)
                    .isEmpty());
}

TEST_F(HandOverTest, OnlyTheUserHasAccess) {
    const auto receiver = Receive();
    struct stat facts {};
    ASSERT_EQ(stat(QFile::encodeName(SocketName(folder.path())).constData(), &facts), 0);
    EXPECT_EQ(facts.st_mode & 0077, 0u);
}

TEST_F(HandOverTest, ASocketThatIsLeftBehindIsReplaced) {
    const QByteArray name = QFile::encodeName(SocketName(folder.path()));
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    ASSERT_LT(static_cast<std::size_t>(name.size()), sizeof address.sun_path);
    std::copy(name.begin(), name.end(), address.sun_path);
    const int dead = socket(AF_UNIX, SOCK_STREAM, 0);
    ASSERT_EQ(bind(dead, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    close(dead);
    const auto receiver = Receive();
    EXPECT_TRUE(HandOver(folder.path(), QStringLiteral("/a")).ok());
}

TEST_F(HandOverTest, TheSocketOfARunningInstanceIsNot) {
    const auto receiver = Receive();
    const auto second = ReceivePaths(folder.path(), [](const QString&) { return true; });
    EXPECT_EQ(second.status().code(), base::StatusCode::kBusy);
    EXPECT_TRUE(HandOver(folder.path(), QStringLiteral("/a")).ok());
    EXPECT_EQ(taken.size(), 1);
}

TEST_F(HandOverTest, AnInstanceThatDoesNotAnswerIsNotWaitedForLong) {
    QLocalServer silent;
    ASSERT_TRUE(silent.listen(SocketName(folder.path())));
    EXPECT_EQ(HandOver(folder.path(), QStringLiteral("/a"), 50).code(), base::StatusCode::kIoError);
}

TEST_F(HandOverTest, WhatIsNoMessageIsRefused) {
    const auto receiver = Receive();
    const QByteArray path("/\0a\0", 4);
    EXPECT_EQ(Say(Message(4, path)), 'y');
    EXPECT_EQ(Say("GET / HTTP/1.1\r\n\r\n"), 'n');
    EXPECT_EQ(Say(Message(3, path.left(3))), 'n');
    EXPECT_EQ(Say(Message(0xFFFFFFFF, path)), 'n');
    EXPECT_EQ(Say(Message(kMaxPathBytes + 2, path)), 'n');
    EXPECT_EQ(Say(Message(4, path + path)), 'n') << "more than was said";
    EXPECT_EQ(Say(Message(4, QByteArray("a\0b\0", 4))), 'n') << "not absolute";
    EXPECT_EQ(Say(Message(8, QByteArray("/\0.\0.\0/\0", 8))), 'n') << "not plain";
    EXPECT_EQ(Say(Message(6, QByteArray("/\0a\0\0\0", 6))), 'n') << "with an end in the middle";
    EXPECT_EQ(taken.size(), 1);
}

TEST_F(HandOverTest, MoreCallersThanCanBeDoNotKeepOthersOut) {
    const auto receiver = Receive();
    std::vector<std::unique_ptr<QLocalSocket>> idle;
    for (int i = 0; i < 40; ++i) {
        auto socket = std::make_unique<QLocalSocket>();
        socket->connectToServer(SocketName(folder.path()));
        idle.push_back(std::move(socket));
        QCoreApplication::processEvents();
    }
    const auto open = [&] {
        return std::count_if(idle.begin(), idle.end(), [](const auto& socket) {
            return socket->state() == QLocalSocket::ConnectedState;
        });
    };
    EXPECT_TRUE(QTest::qWaitFor([&] { return open() <= 8; }, kTimeoutMs)) << open();
    idle.clear();
    EXPECT_TRUE(QTest::qWaitFor([&] { return HandOver(folder.path(), QStringLiteral("/a")).ok(); },
                                kTimeoutMs));
}

}  // namespace
}  // namespace platform
