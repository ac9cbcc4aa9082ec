#include "browser/wait_until_shown.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QElapsedTimer>
#include <QtGui/QWindow>
#include <QtWidgets/QWidget>

namespace browser {
namespace {

// A window system that never says that the window is visible must not hold up the work.
constexpr int kLongestWaitMs = 500;
constexpr int kRoundMs = 20;

}  // namespace

void WaitUntilShown(const QWidget& window) {
    const auto is_shown = [&] {
        return window.windowHandle() && window.windowHandle()->isExposed();
    };
    QElapsedTimer waited;
    waited.start();
    do {
        QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents, kRoundMs);
    } while (!is_shown() && waited.elapsed() < kLongestWaitMs);
}

}  // namespace browser
