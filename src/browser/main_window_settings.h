// The settings that the main window keeps between runs, stored as texts in the SettingsStore.
#pragma once

#include "catalogue/selection.h"
#include "platform/settings_store.h"

#include <QtCore/QString>

#include <cstdint>

namespace browser {

// A twip is 1/1440 inch: 15 in a pixel at 96 dots per inch.
inline constexpr int kTwipsPerPixel = 15;
constexpr int ToTwips(int pixels) {
    return pixels * kTwipsPerPixel;
}
constexpr int ToPixels(int twips) {
    return twips / kTwipsPerPixel;
}

// The size at a first start, and the one that "Restore Default Size" sets; the heights differ.
inline constexpr int kDefaultWidthTwips = 9570;
inline constexpr int kDefaultHeightTwips = 6885;
inline constexpr int kRestoredHeightTwips = 7005;

// The values of WINDOWSTATE.
enum class WindowState : int { kNormal = 0, kMinimised = 1, kMaximised = 2 };

struct MainWindowSettings {
    WindowState window_state = WindowState::kNormal;
    int width_twips = kDefaultWidthTwips;
    int height_twips = kDefaultHeightTwips;
    int scale_height_twips = 0;  // height without the menu bar; written, never read
    QString direction = QStringLiteral("Asc");
    QString order_by = catalogue::kOrderColumns.front().caption.toString();
    std::int64_t last_play = 0;  // node number (node_number.h) of the last selected node
    QString filter = QStringLiteral("All");
    QString sub;
    QString comparison = QStringLiteral("=");
    bool sound = false;
    bool minimise = false;
    int last_tab = 0;
    QString last_picture_folder;
    bool operator==(const MainWindowSettings&) const = default;
};

// Missing and invalid values are replaced by the defaults. The size is read only if the window was
// not maximised.
MainWindowSettings ReadSettings(platform::SettingsStore& store);
// Writes all values in a fixed order; the picture folder is the last and is not written if it is
// empty. Returns the first failure.
base::Status WriteSettings(platform::SettingsStore& store, const MainWindowSettings& settings);

}  // namespace browser
