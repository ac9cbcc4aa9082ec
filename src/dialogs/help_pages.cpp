#include "dialogs/help_pages.h"

#include <algorithm>
#include <array>

namespace dialogs {
namespace {

struct WindowPage {
    QStringView window;
    QStringView page;
};

constexpr std::array<WindowPage, 14> kWindowPages = {{
    {u"frmPinball", u"main-window.html"},
    {u"frmsearch", u"scan.html"},
    {u"frmReadVPT", u"table-information.html"},
    {u"frmPicture", u"capture.html"},
    {u"frmSplash", u"playing.html"},
    {u"frmSettings", u"settings.html"},
    {u"frmUtility", u"reset-paths.html"},
    {u"frmPathMap", u"path-map.html"},
    {u"frmPathPair", u"path-map.html"},
    {u"frmCRC", u"crc.html"},
    {u"frmImport", u"import-launcher.html"},
    {u"frmAbout", u"about.html"},
    {u"RestoreDialog", u"snapshots.html"},
    {u"frmKeys", u"keys.html"},
}};

const WindowPage* Find(const QString& window) {
    const auto* const found =
        std::find_if(kWindowPages.begin(), kWindowPages.end(),
                     [&window](const WindowPage& entry) { return entry.window == window; });
    return found == kWindowPages.end() ? nullptr : found;
}

}  // namespace

QString HelpPageOf(const QString& window) {
    const WindowPage* entry = Find(window);
    return entry != nullptr ? entry->page.toString() : QStringLiteral("index.html");
}

bool HasHelpPage(const QString& window) {
    return Find(window) != nullptr;
}

QStringList WindowsWithHelp() {
    QStringList windows;
    for (const WindowPage& entry : kWindowPages)
        windows.append(entry.window.toString());
    return windows;
}

}  // namespace dialogs
