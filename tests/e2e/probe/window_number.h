// The number by which the X server knows a window. One backend for each system, in linux/ and
// windows/.
#pragma once

#include <QtGui/qwindowdefs.h>

namespace probe {

// 0: the X server has none for it, or not yet.
qint64 WindowNumber(WId window);

}  // namespace probe
