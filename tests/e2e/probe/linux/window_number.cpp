#include "window_number.h"

namespace probe {

qint64 WindowNumber(WId window) {
    return static_cast<qint64>(window);
}

}  // namespace probe
