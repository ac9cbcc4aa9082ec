// Wine notes the number at each window of its own.
#include "window_number.h"

#include "support/windows/system_header.h"

namespace probe {

qint64 WindowNumber(WId window) {
    const HANDLE number = GetPropW(reinterpret_cast<HWND>(window), L"__wine_x11_whole_window");
    return static_cast<qint64>(reinterpret_cast<quintptr>(number));
}

}  // namespace probe
