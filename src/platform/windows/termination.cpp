// Logging out comes to the windows, through Qt. What comes here is for programs with a console:
// Ctrl+C, Ctrl+Break, the console's close button.
#include "platform/termination.h"

#include "platform/windows/windows_header.h"

#include <QtCore/QObject>

#include <atomic>
#include <utility>

namespace platform {
namespace {

class ConsoleWatch;
std::atomic<ConsoleWatch*> g_watch = nullptr;

class ConsoleWatch final : public TerminationWatch {
public:
    explicit ConsoleWatch(std::function<void()> ask) : ask_(std::move(ask)) {
        g_watch = this;
        SetConsoleCtrlHandler(Tell, TRUE);
    }
    ~ConsoleWatch() override {
        SetConsoleCtrlHandler(Tell, FALSE);
        g_watch = nullptr;
    }
    ConsoleWatch(const ConsoleWatch&) = delete;
    ConsoleWatch& operator=(const ConsoleWatch&) = delete;

private:
    // In a thread of the system's. When it returns from a closing the process is ended, so it does
    // not: what is asked to end ends the process itself, or the system loses its patience.
    static BOOL WINAPI Tell(DWORD event) {
        ConsoleWatch* const watch = g_watch;
        if (watch == nullptr) return FALSE;
        QMetaObject::invokeMethod(
            &watch->home_, [watch] { watch->ask_(); }, Qt::QueuedConnection);
        if (event == CTRL_CLOSE_EVENT) Sleep(INFINITE);
        return TRUE;
    }

    std::function<void()> ask_;
    QObject home_;  // lives on the thread that is asked
};

}  // namespace

std::unique_ptr<TerminationWatch> WatchTermination(std::function<void()> ask) {
    return std::make_unique<ConsoleWatch>(std::move(ask));
}

}  // namespace platform
