#include "browser/utilities_menu.h"

namespace browser {
namespace {

// On this detail tab the commands that rewrite what it shows are not offered.
constexpr int kLockingTab = 3;

}  // namespace

UtilitiesMenuState UtilitiesMenuFor(int current_tab, bool window_normal) {
    const bool offered = current_tab != kLockingTab;
    return {.reset_paths = offered, .reset_dates = offered, .default_size = window_normal};
}

}  // namespace browser
