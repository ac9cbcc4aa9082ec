// The values that every part of the program shares; filled by Main.
#pragma once

#include "base/status.h"
#include "catalogue/local_paths.h"

#include <QtCore/QString>

#include <array>
#include <cstdint>

namespace catalogue {

// Colours of the play button, Windows 0x00BBGGRR; index 0 is not used.
using StatusColourTable = std::array<std::uint32_t, 4>;

// Where the dialogs of each purpose were last; empty: nowhere yet.
struct LastFolders {
    QString capture;
    QString rules;
    QString scan;
    bool operator==(const LastFolders&) const = default;
};

struct ProcessValues {
    QString ApplicationFolder;  // without a trailing separator
    QString VisualPinballExe;
    StatusColourTable StatusColours{};
    bool SoundOn = false;
    bool MinimiseOnPlay = false;
    bool WaitForSimulator = false;  // before the watch of a play
    QString LastPictureDir;
    LastFolders last_folders;
    LocalPaths paths;
    base::Status PathMapFailure;  // why the path map cannot be read; ok: it was
    base::Status UpgradeFailure;  // why the catalogue could not be brought up to date; ok: it was
};

}  // namespace catalogue
