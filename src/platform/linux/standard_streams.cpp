#include "platform/standard_streams.h"

#include <cerrno>
#include <csignal>
#include <poll.h>
#include <system_error>
#include <unistd.h>

namespace platform {
namespace {

static_assert(kPipeClosed == EPIPE);

constexpr std::size_t kPieceBytes = std::size_t{64} << 10;

int DescriptorOf(StandardStream stream) {
    switch (stream) {
    case StandardStream::kIn:
        return STDIN_FILENO;
    case StandardStream::kOut:
        return STDOUT_FILENO;
    case StandardStream::kError:
        break;
    }
    return STDERR_FILENO;
}

base::Status Failure(int error_number) {
    const auto code =
        error_number == ENOSPC ? base::StatusCode::kNoSpace : base::StatusCode::kIoError;
    return {code, std::generic_category().message(error_number), error_number};
}

// Waits for a stream that whoever started us has made one that does not block; false: it cannot.
bool WaitFor(int descriptor, short events) {
    pollfd stream{descriptor, events, 0};
    while (poll(&stream, 1, -1) < 0)
        if (errno != EINTR) return false;
    return true;
}

// Whether the call that has just failed may be made again.
bool MayGoOn(int descriptor, short events) {
    if (errno == EINTR) return true;
    const bool would_block = errno == EAGAIN || errno == EWOULDBLOCK;
    return would_block && WaitFor(descriptor, events);
}

}  // namespace

void KeepGoingWhenPipesClose() {
    std::signal(SIGPIPE, SIG_IGN);
}

bool IsTerminal(StandardStream stream) {
    return isatty(DescriptorOf(stream)) == 1;
}

base::Status WriteTo(StandardStream stream, std::string_view bytes) {
    while (!bytes.empty()) {
        const int descriptor = DescriptorOf(stream);
        const ssize_t written = write(descriptor, bytes.data(), bytes.size());
        if (written >= 0)
            bytes.remove_prefix(static_cast<std::size_t>(written));
        else if (!MayGoOn(descriptor, POLLOUT))
            return Failure(errno);
    }
    return {};
}

base::Result<QByteArray> ReadStandardInput(qint64 most) {
    QByteArray bytes;
    QByteArray piece(static_cast<qsizetype>(kPieceBytes), '\0');
    while (true) {
        const ssize_t got = read(STDIN_FILENO, piece.data(), kPieceBytes);
        if (got < 0 && MayGoOn(STDIN_FILENO, POLLIN)) continue;
        if (got < 0) return Failure(errno);
        if (got == 0) return bytes;
        bytes.append(piece.constData(), static_cast<qsizetype>(got));
        if (bytes.size() > most)
            return base::Status(base::StatusCode::kInvalidArgument, "There is too much to read.");
    }
}

}  // namespace platform
