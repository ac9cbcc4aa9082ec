// What the main window remembers between runs. All values are texts in the per-user settings store.
#pragma once

#include "platform/settings_store.h"

#include <QtCore/QString>

#include <cstdint>

namespace browser {

// A twip is 1/1440 inch; a screen of 96 dots per inch has 15 of them in a pixel.
inline constexpr int kTwipsPerPixel = 15;
constexpr int ToTwips(int pixels) {
    return pixels * kTwipsPerPixel;
}
constexpr int ToPixels(int twips) {
    return twips / kTwipsPerPixel;
}

// Size of a first start, and the one that "Restore Default Size" sets. The heights differ.
inline constexpr int kDefaultWidthTwips = 9570;
inline constexpr int kDefaultHeightTwips = 6885;
inline constexpr int kRestoredHeightTwips = 7005;

// As stored under WINDOWSTATE.
enum class WindowState : int { kNormal = 0, kMinimised = 1, kMaximised = 2 };

struct MainWindowSettings {
    WindowState window_state = WindowState::kNormal;
    int width_twips = kDefaultWidthTwips;
    int height_twips = kDefaultHeightTwips;
    int scale_height_twips = 0;  // the inner height; written only
    QString direction = QStringLiteral("Asc");
    QString order_by = QStringLiteral("Table Name");
    std::int64_t last_play = 0;  // a node number, see node_number.h
    QString filter = QStringLiteral("All");
    QString sub;
    QString comparison = QStringLiteral("=");
    bool sound = false;
    bool minimise = false;
    int last_tab = 0;
    QString last_picture_folder;
    bool operator==(const MainWindowSettings&) const = default;
};

// A missing value, or one that is not what it should be, is the default. The size is read only when
// the window was not maximised.
MainWindowSettings ReadSettings(platform::SettingsStore& store);
// Writes every key in a fixed order, the picture folder last and only when there is one.
// The answer is the first failure to write one.
base::Status WriteSettings(platform::SettingsStore& store, const MainWindowSettings& settings);

}  // namespace browser
