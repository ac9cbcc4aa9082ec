// How the main window is laid out, kept between runs beside its documented settings, in a section
// of its own: it may be lost without harm.
#pragma once

#include "base/status.h"
#include "platform/settings_store.h"

#include <QtCore/QList>
#include <QtCore/QPoint>

#include <optional>

namespace browser {

struct WindowLayout {
    std::optional<QPoint> position;    // of the frame, in pixels; nullopt: the desktop chooses it
    QList<int> splitter;               // widths of tree and details, in pixels; empty: as laid out
    std::optional<bool> shows_wall;    // instead of the tree; nullopt: nothing was chosen yet
    std::optional<int> picture_width;  // of the wall, in pixels
    bool operator==(const WindowLayout&) const = default;
};

// Whatever is missing or makes no sense is left out.
WindowLayout ReadLayout(platform::SettingsStore& store);
// Returns the first failure.
base::Status WriteLayout(platform::SettingsStore& store, const WindowLayout& layout);

}  // namespace browser
