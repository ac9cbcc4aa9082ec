// Clock: what time it is here, so that a test can set it.
#pragma once

#include <QtCore/QDateTime>

namespace platform {

class Clock {
public:
    virtual ~Clock() = default;
    // Local time.
    virtual QDateTime Now() = 0;
};

class SystemClock final : public Clock {
public:
    QDateTime Now() override { return QDateTime::currentDateTime(); }
};

}  // namespace platform
