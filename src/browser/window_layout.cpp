#include "browser/window_layout.h"

#include "catalogue/program_settings.h"

#include <QtCore/QStringList>

namespace browser {
namespace {

constexpr QStringView kPosition = u"POSITION";
constexpr QStringView kSplitter = u"SPLITTER";

// Of a coordinate in X11 and Windows.
constexpr int kMost = 32767;

// Numbers of the range -kMost..kMost, parted by blanks; empty when one is none.
QList<int> Numbers(const QString& text) {
    QList<int> numbers;
    for (const QString& word : text.split(u' ', Qt::SkipEmptyParts)) {
        bool is_number = false;
        const int number = word.toInt(&is_number);
        if (!is_number || number < -kMost || number > kMost) return {};
        numbers.append(number);
    }
    return numbers;
}

QString Text(const QList<int>& numbers) {
    QStringList words;
    for (const int number : numbers)
        words.append(QString::number(number));
    return words.join(u' ');
}

}  // namespace

WindowLayout ReadLayout(platform::SettingsStore& store) {
    const auto read = [&](QStringView key) {
        return Numbers(catalogue::ReadOwnSetting(store, catalogue::kWindowSection, key));
    };
    WindowLayout layout;
    if (const QList<int> place = read(kPosition); place.size() == 2)
        layout.position = QPoint(place[0], place[1]);
    const QList<int> widths = read(kSplitter);
    if (widths.size() == 2 && widths[0] > 0 && widths[1] > 0) layout.splitter = widths;
    return layout;
}

base::Status WriteLayout(platform::SettingsStore& store, const WindowLayout& layout) {
    base::Status first;
    const auto write = [&](QStringView key, const QList<int>& numbers) {
        if (numbers.isEmpty()) return;
        const base::Status stored =
            catalogue::WriteOwnSetting(store, catalogue::kWindowSection, key, Text(numbers));
        if (first.ok()) first = stored;
    };
    if (layout.position) write(kPosition, {layout.position->x(), layout.position->y()});
    write(kSplitter, layout.splitter);
    return first;
}

}  // namespace browser
