// The pages of DetTab in their order. The settings store these numbers.
#pragma once

namespace browser {

inline constexpr int kDetailsTab = 0;
inline constexpr int kScreenshotTab = 1;
inline constexpr int kFlyerTab = 2;
inline constexpr int kRulesTextTab = 3;
inline constexpr int kRulesSheetTab = 4;
inline constexpr int kDetailTabCount = 5;

}  // namespace browser
