#include "browser/utilities_menu.h"

namespace browser {
namespace {

// The rules text. While it is the open tab, Reset Paths and Reset File Dates cannot be chosen.
constexpr int kLockingTab = 3;

}  // namespace

UtilitiesMenuState UtilitiesMenuFor(int current_tab, bool window_normal) {
    const bool offered = current_tab != kLockingTab;
    return {.reset_paths = offered, .reset_dates = offered, .default_size = window_normal};
}

}  // namespace browser
