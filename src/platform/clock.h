// Clock: the current time, which a test can set.
#pragma once

#include <QtCore/QDateTime>

namespace platform {

class Clock {
public:
    virtual ~Clock() = default;
    // In local time.
    virtual QDateTime Now() = 0;
};

class SystemClock final : public Clock {
public:
    QDateTime Now() override { return QDateTime::currentDateTime(); }
};

}  // namespace platform
