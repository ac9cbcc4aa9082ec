#include "browser/utilities_menu.h"

namespace browser {

UtilitiesMenuState UtilitiesMenuFor(int current_tab, bool window_normal) {
    const bool offered = current_tab != kRulesTextTab;
    return {.reset_paths = offered, .reset_dates = offered, .default_size = window_normal};
}

}  // namespace browser
