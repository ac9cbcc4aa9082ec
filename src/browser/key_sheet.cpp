#include "browser/key_sheet.h"

#include "browser/command_table.h"

#include <QtGui/QKeySequence>

namespace browser {
namespace {

struct Line {
    QStringView keys;
    QStringView where;
    QStringView what;
};

// Before the keys of the commands.
constexpr Line kFirst[] = {
    {u"F1", u"everywhere", u"help on the window in front"},
    {u"Alt with the underlined letter", u"menus and buttons",
     u"opens the menu, presses the button"},
    {u"Enter, Space", u"buttons", u"press the button that has the focus"},
    {u"Enter", u"tree", u"plays the selected table"},
    {u"Arrow keys, letters", u"tree", u"move through the tables"},
    {u"Right and left arrow", u"tree", u"open and close a table's lines"},
    {u"*", u"tree", u"opens all lines of the table, or of all tables"},
    {u"Menu key, Shift+F10", u"tree", u"open the pop-up menu"},
    {u"Enter, arrow keys, letters, Menu key", u"wall of pictures", u"as in the tree"},
    {u"Ctrl with the wheel", u"wall of pictures", u"larger and smaller pictures"},
    {u"Enter, Space", u"pictures of a table", u"show the picture large"},
};

// Behind them.
constexpr Line kLast[] = {
    {u"F2", u"capture window", u"Save and Set"},
    {u"Ctrl+S, Ctrl+V", u"capture window", u"Save Only, Paste"},
    {u"Ctrl+F, Alt+Home, Alt+Left, Escape", u"help window",
     u"searches, shows the contents, goes back, closes"},
    {u"+, -, 0, 1", u"large picture", u"larger, smaller, as large as fits, in its own size"},
    {u"Arrow keys, Page Up, Page Down, Home, End", u"large picture",
     u"move it; so do dragging and Shift with the wheel"},
    {u"Enter", u"dialogs", u"presses the emphasised button"},
    {u"Escape", u"dialogs", u"closes the dialog without doing anything"},
    {u"Escape", u"during a scan", u"\"Still scanning. Please wait...\"; the scan goes on"},
    {u"Escape", u"during an import of VPLauncher data or Update CRC's", u"nothing"},
};

QString KeysOf(const MenuItem& item) {
    if (item.key != 0) return QKeySequence(item.key).toString(QKeySequence::PortableText);
    const QString keys = item.shortcut.toString();
    return keys == u"Esc"   ? QStringLiteral("Escape")
           : keys == u"Del" ? QStringLiteral("Delete")
                            : keys;
}

template <std::size_t N>
void Append(std::vector<KeyLine>& sheet, const Line (&lines)[N]) {
    for (const Line& line : lines)
        sheet.push_back({line.keys.toString(), line.where.toString(), line.what.toString()});
}

}  // namespace

std::vector<KeyLine> KeySheet() {
    std::vector<KeyLine> sheet;
    Append(sheet, kFirst);
    for (const MenuLayout& menu : Menus())
        for (const MenuItem& item : menu.items)
            if (const QString keys = KeysOf(item); !keys.isEmpty())
                sheet.push_back(
                    {keys, item.tree_only ? QStringLiteral("tree") : QStringLiteral("main window"),
                     NameOf(item.action)});
    Append(sheet, kLast);
    return sheet;
}

}  // namespace browser
