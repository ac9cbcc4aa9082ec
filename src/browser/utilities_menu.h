// Which entries of the Utilities menu can be chosen when it opens.
#pragma once

namespace browser {

struct UtilitiesMenuState {
    bool reset_paths = true;   // mnuRest
    bool reset_dates = true;   // mnuDates
    bool default_size = true;  // mnuSize
    bool operator==(const UtilitiesMenuState&) const = default;
};

// The tab of the rules text.
inline constexpr int kRulesTextTab = 3;

// `current_tab`: of the detail tabs, 0..4. On the rules text the commands that would reload what is
// being written there are not offered. `window_normal`: neither minimised nor maximised.
UtilitiesMenuState UtilitiesMenuFor(int current_tab, bool window_normal);

}  // namespace browser
