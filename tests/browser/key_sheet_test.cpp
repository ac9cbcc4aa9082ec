#include "browser/key_sheet.h"

#include "browser/command_table.h"

#include <gtest/gtest.h>

#include <QtCore/QFile>
#include <QtCore/QRegularExpression>
#include <QtCore/QSet>

namespace browser {

void PrintTo(const KeyLine& line, std::ostream* out) {
    const QString bar = QStringLiteral(" | ");
    *out << (line.keys + bar + line.where + bar + line.what).toStdString();
}

namespace {

QString PlainText(QString html) {
    html.remove(QRegularExpression(QStringLiteral("<[^>]*>")));
    html.replace(QStringLiteral("&quot;"), QStringLiteral("\""));
    return html.replace(QStringLiteral("&amp;"), QStringLiteral("&"));
}

// The lines of the help's page.
std::vector<KeyLine> LinesOfThePage() {
    QFile file(QStringLiteral(TAVOLO_HELP_FOLDER "/keys.html"));
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    const QRegularExpression row(
        QStringLiteral("<tr><td>(.*?)</td><td>(.*?)</td><td>(.*?)</td></tr>"));
    std::vector<KeyLine> lines;
    auto rows = row.globalMatch(QString::fromUtf8(file.readAll()));
    while (rows.hasNext()) {
        const auto cells = rows.next();
        lines.push_back({PlainText(cells.captured(1)), PlainText(cells.captured(2)),
                         PlainText(cells.captured(3))});
    }
    return lines;
}

TEST(KeySheetTest, TheHelpHasTheSameLines) {
    EXPECT_EQ(LinesOfThePage(), KeySheet());
}

TEST(KeySheetTest, EveryCommandWithAKeyIsThere) {
    int commands = 0;
    for (const MenuLayout& menu : Menus())
        for (const MenuItem& item : menu.items) {
            if (item.key == 0 && item.shortcut.isEmpty()) continue;
            ++commands;
            int lines = 0;
            for (const KeyLine& line : KeySheet())
                lines += line.what == NameOf(item.action) ? 1 : 0;
            EXPECT_EQ(lines, 1) << item.name.toString().toStdString();
        }
    EXPECT_GE(commands, 12);
}

TEST(KeySheetTest, NoKeyOfTheMainWindowHasTwoMeanings) {
    QSet<QString> keys;
    for (const KeyLine& line : KeySheet()) {
        if (line.where != u"main window") continue;
        EXPECT_FALSE(keys.contains(line.keys)) << line.keys.toStdString();
        keys.insert(line.keys);
    }
}

TEST(KeySheetTest, NoTwoEntriesOfAMenuHaveTheSameLetter) {
    for (const MenuLayout& menu : Menus()) {
        if (menu.name != kTableMenu && menu.name != kEditMenu && menu.name != kDataMenu) continue;
        QSet<QChar> letters;
        for (const MenuItem& item : menu.items) {
            const auto mark = item.caption.indexOf(u'&');
            if (item.action == nullptr) continue;
            ASSERT_GE(mark, 0) << item.name.toString().toStdString();
            const QChar letter = item.caption[mark + 1].toLower();
            EXPECT_FALSE(letters.contains(letter)) << item.name.toString().toStdString();
            letters.insert(letter);
        }
    }
}

}  // namespace
}  // namespace browser
