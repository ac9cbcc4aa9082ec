#include "platform/termination.h"

#include <QtCore/QSocketNotifier>

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace platform {
namespace {

constexpr std::array kSignals = {SIGTERM, SIGHUP, SIGINT};

// The end of the pipe that the handler writes to; a handler may do little else.
volatile int g_pipe_end = -1;

void Tell(int) {
    const int saved = errno;
    const char byte = 0;
    [[maybe_unused]] const auto written = write(g_pipe_end, &byte, 1);
    errno = saved;
}

class SignalWatch final : public TerminationWatch {
public:
    SignalWatch(std::array<int, 2> ends, std::function<void()> ask)
        : ends_(ends), ask_(std::move(ask)), notifier_(ends[0], QSocketNotifier::Read) {
        g_pipe_end = ends_[1];
        struct sigaction action {};
        action.sa_handler = Tell;
        action.sa_flags = SA_RESTART;
        for (std::size_t i = 0; i < kSignals.size(); ++i)
            sigaction(kSignals[i], &action, &before_[i]);
        QObject::connect(&notifier_, &QSocketNotifier::activated, &notifier_, [this] {
            char byte = 0;
            while (read(ends_[0], &byte, 1) > 0) {
            }
            ask_();
        });
    }
    ~SignalWatch() override {
        for (std::size_t i = 0; i < kSignals.size(); ++i)
            sigaction(kSignals[i], &before_[i], nullptr);
        g_pipe_end = -1;
        for (const int end : ends_)
            close(end);
    }
    SignalWatch(const SignalWatch&) = delete;
    SignalWatch& operator=(const SignalWatch&) = delete;

private:
    std::array<int, 2> ends_;
    std::function<void()> ask_;
    QSocketNotifier notifier_;
    std::array<struct sigaction, kSignals.size()> before_{};
};

}  // namespace

std::unique_ptr<TerminationWatch> WatchTermination(std::function<void()> ask) {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC | O_NONBLOCK) != 0) return nullptr;
    return std::make_unique<SignalWatch>(ends, std::move(ask));
}

}  // namespace platform
