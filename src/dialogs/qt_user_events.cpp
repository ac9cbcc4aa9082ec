#include "dialogs/qt_user_events.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QEventLoop>
#include <QtCore/QTimer>

namespace dialogs {

namespace {

QEventLoop::ProcessEventsFlags FlagsOf(UserInput input) {
    return input == UserInput::kDelivered ? QEventLoop::AllEvents
                                          : QEventLoop::ExcludeUserInputEvents;
}

}  // namespace

void QtUserEvents::ProcessEvents() {
    QCoreApplication::processEvents(FlagsOf(input_));
}

void QtUserEvents::ProcessEventsFor(int milliseconds) {
    QEventLoop loop;
    QTimer::singleShot(milliseconds, &loop, &QEventLoop::quit);
    loop.exec(FlagsOf(input_));
}

}  // namespace dialogs
