#include "browser/window_layout.h"

#include "catalogue/program_settings.h"

#include <QtCore/QStringList>

namespace browser {
namespace {

constexpr QStringView kPosition = u"POSITION";
constexpr QStringView kSplitter = u"SPLITTER";
constexpr QStringView kWall = u"WALL";
constexpr QStringView kPictureWidth = u"PICTUREWIDTH";

constexpr QStringView kTrue = u"True";
constexpr QStringView kFalse = u"False";

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
    const auto text = [&](QStringView key) {
        return catalogue::ReadOwnSetting(store, catalogue::kWindowSection, key);
    };
    const auto read = [&](QStringView key) { return Numbers(text(key)); };
    WindowLayout layout;
    if (const QList<int> place = read(kPosition); place.size() == 2)
        layout.position = QPoint(place[0], place[1]);
    const QList<int> widths = read(kSplitter);
    if (widths.size() == 2 && widths[0] > 0 && widths[1] > 0) layout.splitter = widths;
    if (const QString wall = text(kWall); wall == kTrue || wall == kFalse)
        layout.shows_wall = wall == kTrue;
    if (const QList<int> width = read(kPictureWidth); width.size() == 1 && width[0] > 0)
        layout.picture_width = width[0];
    return layout;
}

base::Status WriteLayout(platform::SettingsStore& store, const WindowLayout& layout) {
    base::Status first;
    const auto write_text = [&](QStringView key, const QString& text) {
        const base::Status stored =
            catalogue::WriteOwnSetting(store, catalogue::kWindowSection, key, text);
        if (first.ok()) first = stored;
    };
    const auto write = [&](QStringView key, const QList<int>& numbers) {
        if (!numbers.isEmpty()) write_text(key, Text(numbers));
    };
    if (layout.position) write(kPosition, {layout.position->x(), layout.position->y()});
    write(kSplitter, layout.splitter);
    if (layout.shows_wall) write_text(kWall, (*layout.shows_wall ? kTrue : kFalse).toString());
    if (layout.picture_width) write(kPictureWidth, {*layout.picture_width});
    return first;
}

}  // namespace browser
