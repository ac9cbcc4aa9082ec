// The folders in which the dialogs of each purpose were last, kept between runs in a section of
// their own. The documented folder for pictures is not among them.
#pragma once

#include "catalogue/process_values.h"
#include "catalogue/program_settings.h"

#include <array>
#include <utility>

namespace catalogue {

inline constexpr QStringView kFolderSection = u"FOLDERS";

inline constexpr std::array<std::pair<QStringView, QString LastFolders::*>, 3> kLastFolders = {{
    {u"CAPTURE", &LastFolders::capture},
    {u"RULES", &LastFolders::rules},
    {u"SCAN", &LastFolders::scan},
}};

inline LastFolders ReadLastFolders(platform::SettingsStore& store) {
    LastFolders folders;
    for (const auto& [key, folder] : kLastFolders)
        folders.*folder = ReadOwnSetting(store, kFolderSection, key);
    return folders;
}

// Folders that are not known are not written. Returns the first failure.
inline base::Status WriteLastFolders(platform::SettingsStore& store, const LastFolders& folders) {
    base::Status first;
    for (const auto& [key, folder] : kLastFolders) {
        if ((folders.*folder).isEmpty()) continue;
        const base::Status stored = WriteOwnSetting(store, kFolderSection, key, folders.*folder);
        if (first.ok()) first = stored;
    }
    return first;
}

}  // namespace catalogue
