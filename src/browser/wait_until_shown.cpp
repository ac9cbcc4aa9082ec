#include "browser/wait_until_shown.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QElapsedTimer>
#include <QtGui/QWindow>
#include <QtWidgets/QWidget>

namespace browser {
namespace {

// Some window systems never report that a window is exposed.
constexpr int kMaxWaitMs = 500;
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
    } while (!is_shown() && waited.elapsed() < kMaxWaitMs);
}

}  // namespace browser
