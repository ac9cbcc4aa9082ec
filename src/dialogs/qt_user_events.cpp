#include "dialogs/qt_user_events.h"

#include <QtCore/QCoreApplication>

namespace dialogs {

void QtUserEvents::ProcessEvents() {
    QCoreApplication::processEvents(input_ == UserInput::kDelivered
                                        ? QEventLoop::AllEvents
                                        : QEventLoop::ExcludeUserInputEvents);
}

}  // namespace dialogs
