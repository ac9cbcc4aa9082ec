#include "browser/key_sheet.h"

#include "base/marked_text.h"
#include "browser/command_table.h"
#include "browser/texts.h"
#include "platform/shown_text.h"

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
    {MARKED_TEXT("BrowserTexts", "F1"), MARKED_TEXT("BrowserTexts", "everywhere"),
     MARKED_TEXT("BrowserTexts", "help on the window in front")},
    {MARKED_TEXT("BrowserTexts", "Alt with the underlined letter"),
     MARKED_TEXT("BrowserTexts", "menus and buttons"),
     MARKED_TEXT("BrowserTexts", "opens the menu, presses the button")},
    {MARKED_TEXT("BrowserTexts", "Enter, Space"), MARKED_TEXT("BrowserTexts", "buttons"),
     MARKED_TEXT("BrowserTexts", "press the button that has the focus")},
    {MARKED_TEXT("BrowserTexts", "Enter"), MARKED_TEXT("BrowserTexts", "tree"),
     MARKED_TEXT("BrowserTexts", "plays the selected table")},
    {MARKED_TEXT("BrowserTexts", "Arrow keys, letters"), MARKED_TEXT("BrowserTexts", "tree"),
     MARKED_TEXT("BrowserTexts", "move through the tables")},
    {MARKED_TEXT("BrowserTexts", "Right and left arrow"), MARKED_TEXT("BrowserTexts", "tree"),
     MARKED_TEXT("BrowserTexts", "open and close a table's lines")},
    {MARKED_TEXT("BrowserTexts", "*"), MARKED_TEXT("BrowserTexts", "tree"),
     MARKED_TEXT("BrowserTexts", "opens all lines of the table, or of all tables")},
    {MARKED_TEXT("BrowserTexts", "Menu key, Shift+F10"), MARKED_TEXT("BrowserTexts", "tree"),
     MARKED_TEXT("BrowserTexts", "open the pop-up menu")},
    {MARKED_TEXT("BrowserTexts", "Enter, arrow keys, letters, Menu key"),
     MARKED_TEXT("BrowserTexts", "wall of pictures"),
     MARKED_TEXT("BrowserTexts", "as in the tree")},
    {MARKED_TEXT("BrowserTexts", "Ctrl with the wheel"),
     MARKED_TEXT("BrowserTexts", "wall of pictures"),
     MARKED_TEXT("BrowserTexts", "larger and smaller pictures")},
    {MARKED_TEXT("BrowserTexts", "Enter, Space"),
     MARKED_TEXT("BrowserTexts", "pictures of a table"),
     MARKED_TEXT("BrowserTexts", "show the picture large")},
};

// Behind them.
constexpr Line kLast[] = {
    {MARKED_TEXT("BrowserTexts", "F2"), MARKED_TEXT("BrowserTexts", "capture window"),
     MARKED_TEXT("BrowserTexts", "Save and Set")},
    {MARKED_TEXT("BrowserTexts", "Ctrl+S, Ctrl+V"), MARKED_TEXT("BrowserTexts", "capture window"),
     MARKED_TEXT("BrowserTexts", "Save Only, Paste")},
    {MARKED_TEXT("BrowserTexts", "Ctrl+F, Alt+Home, Alt+Left, Escape"),
     MARKED_TEXT("BrowserTexts", "help window"),
     MARKED_TEXT("BrowserTexts", "searches, shows the contents, goes back, closes")},
    {MARKED_TEXT("BrowserTexts", "+, -, 0, 1"), MARKED_TEXT("BrowserTexts", "large picture"),
     MARKED_TEXT("BrowserTexts", "larger, smaller, as large as fits, in its own size")},
    {MARKED_TEXT("BrowserTexts", "Arrow keys, Page Up, Page Down, Home, End"),
     MARKED_TEXT("BrowserTexts", "large picture"),
     MARKED_TEXT("BrowserTexts", "move it; so do dragging and Shift with the wheel")},
    {MARKED_TEXT("BrowserTexts", "Enter"), MARKED_TEXT("BrowserTexts", "dialogs"),
     MARKED_TEXT("BrowserTexts", "presses the emphasised button")},
    {MARKED_TEXT("BrowserTexts", "Escape"), MARKED_TEXT("BrowserTexts", "dialogs"),
     MARKED_TEXT("BrowserTexts", "closes the dialog without doing anything")},
    {MARKED_TEXT("BrowserTexts", "Escape"), MARKED_TEXT("BrowserTexts", "during a scan"),
     MARKED_TEXT("BrowserTexts", "\"Still scanning. Please wait...\"; the scan goes on")},
    {MARKED_TEXT("BrowserTexts", "Escape"),
     MARKED_TEXT("BrowserTexts", "during an import of VPLauncher data or Update CRC's"),
     MARKED_TEXT("BrowserTexts", "nothing")},
};

QString KeysOf(const MenuItem& item) {
    if (item.key != 0) return QKeySequence(item.key).toString(QKeySequence::PortableText);
    const QString keys = item.shortcut.toString();
    return keys == u"Esc"   ? BrowserTexts::tr("Escape")
           : keys == u"Del" ? BrowserTexts::tr("Delete", "the key")
                            : keys;
}

template <std::size_t N>
void Append(std::vector<KeyLine>& sheet, const Line (&lines)[N]) {
    for (const Line& line : lines)
        sheet.push_back({platform::Shown<BrowserTexts>(line.keys),
                         platform::Shown<BrowserTexts>(line.where),
                         platform::Shown<BrowserTexts>(line.what)});
}

}  // namespace

std::vector<KeyLine> KeySheet() {
    std::vector<KeyLine> sheet;
    Append(sheet, kFirst);
    for (const MenuLayout& menu : Menus())
        for (const MenuItem& item : menu.items)
            if (const QString keys = KeysOf(item); !keys.isEmpty())
                sheet.push_back(
                    {keys,
                     item.tree_only ? BrowserTexts::tr("tree") : BrowserTexts::tr("main window"),
                     ShownNameOf(item.action)});
    Append(sheet, kLast);
    return sheet;
}

}  // namespace browser
