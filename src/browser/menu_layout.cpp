#include "browser/menu_layout.h"

namespace browser {
namespace {

constexpr MenuItem kFile[] = {
    {u"mnuTblScan", u"&Scan for New Tables"},
    {u"mnusep1", u"-"},
    {u"mnuExit", u"E&xit"},
};

constexpr MenuItem kUtilities[] = {
    {u"mnuExe", u"Set VP Exe &Location"},
    {u"mnusep2", u"-"},
    {u"mnuDates", u"Reset File &Dates"},
    {u"mnuResetTimes", u"Reset &Times Played"},
    {u"mnuRest", u"&Reset Paths"},
    {u"", u"-"},
    {u"mnuCRC", u"&Update CRC's"},
    {u"", u"-"},
    {u"mnuVPT", u"Import Data from &VPTs"},
    {u"", u"-"},
    {u"mnuImport", u"&Import VPLauncher Data"},
    {u"mnusep3", u"-"},
    {u"mnuSize", u"Restore Default Size"},
    {u"", u"-"},
    {u"mnuPurge", u"&Purge Missing Tables"},
    {u"", u"-"},
    {u"mnuBackup", u"&Backup Data"},
};

constexpr MenuItem kOptions[] = {
    {u"mnuMin", u"&Minimize on Play", true},
    {u"", u"-"},
    {u"mnuSound", u"Toggle Sou&nd", true},
};

constexpr MenuItem kHelp[] = {
    {u"mnuHelpContents", u"&Contents"},
    {u"", u"-"},
    {u"mnuAbout", u"&About"},
};

constexpr MenuItem kPopup[] = {
    {u"mnumnu", u"Menu"},
    {u"", u"-"},
    {u"mnuPlay", u"&Play"},
    {u"mnuspace", u"-"},
    {u"mnuAddit", u"Toggle &Favorites"},
    {u"mnuspace2", u"-"},
    {u"mnuClip", u"&Load Picture From Clipboard"},
    {u"", u"-"},
    {u"mnuTI", u"View Table  &Info"},
};

constexpr MenuLayout kMenuBar[] = {
    {u"mnuFile", u"&File", kFile},
    {u"mnuUtilities", u"&Utilities", kUtilities},
    {u"mnuOptions", u"&Options", kOptions},
    {u"mnuHelp", u"&Help", kHelp},
};

constexpr MenuLayout kPopupMenu = {u"mnufavorites", u"Popup", kPopup};

}  // namespace

std::span<const MenuLayout> MenuBarLayout() {
    return kMenuBar;
}

const MenuLayout& PopupLayout() {
    return kPopupMenu;
}

}  // namespace browser
