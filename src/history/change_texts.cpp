#include "history/change_texts.h"

#include "history/change_names.h"
#include "history/texts.h"
#include "platform/shown_text.h"

#include <algorithm>
#include <limits>
#include <vector>

namespace history {
namespace {

// An undo of an undo is rare; a file that others have made may hold a million of them, of which the
// others are shown as they stand.
constexpr std::size_t kMaxPrefixes = 8;

QString QtText(std::u16string_view text) {
    return QString::fromUtf16(text.data(), static_cast<qsizetype>(text.size()));
}

// By which a language chooses among its plurals.
int PluralOf(std::uint64_t number) {
    return static_cast<int>(std::min<std::uint64_t>(number, std::numeric_limits<int>::max()));
}

QString RowsInWords(const Change& change) {
    const std::uint64_t rows = change.rows();
    const int plural = PluralOf(rows);
    const QString text = AreTables(change)
                             ? (rows == 1 ? HistoryTexts::tr("%1 table", nullptr, 1)
                                          : HistoryTexts::tr("%1 tables", nullptr, plural))
                             : (rows == 1 ? HistoryTexts::tr("%1 row", nullptr, 1)
                                          : HistoryTexts::tr("%1 rows", nullptr, plural));
    return text.arg(GroupedText(rows));
}

QString WithRows(const QString& name, const Change& change) {
    return change.rows() == 0 ? name : HistoryTexts::tr("%1 (%2)").arg(name, RowsInWords(change));
}

// %1 is the name of another change.
QString Around(QStringView prefix, const QString& inner) {
    if (prefix == kUndoPrefix) return HistoryTexts::tr("Undo %1").arg(inner);
    if (prefix == kRedoPrefix) return HistoryTexts::tr("Redo %1").arg(inner);
    return HistoryTexts::tr("Put Back %1").arg(inner);
}

}  // namespace

QString GroupedText(std::uint64_t number) {
    return QtText(GroupedNumber(number));
}

QString FieldsText(std::uint64_t fields) {
    const QString text = fields == 1 ? HistoryTexts::tr("%1 field", nullptr, 1)
                                     : HistoryTexts::tr("%1 fields", nullptr, PluralOf(fields));
    return text.arg(GroupedText(fields));
}

QString ShownName(std::u16string_view name) {
    std::vector<QStringView> prefixes;
    bool is_prefixed = true;
    while (is_prefixed && prefixes.size() < kMaxPrefixes) {
        is_prefixed = false;
        for (const std::u16string_view prefix : {kUndoPrefix, kRedoPrefix, kPutBackPrefix}) {
            if (name.size() <= prefix.size() || !name.starts_with(prefix)) continue;
            prefixes.emplace_back(prefix);
            name.remove_prefix(prefix.size());
            is_prefixed = true;
            break;
        }
    }
    QString shown = platform::Shown<HistoryTexts>(name.empty() ? kUnnamed : name);
    for (; !prefixes.empty(); prefixes.pop_back())
        shown = Around(prefixes.back(), shown);
    return shown;
}

QString ShownName(const Change& change) {
    return WithRows(ShownName(change.label.name), change);
}

QString ShownName(const UndoRedo::Next& next) {
    return WithRows(ShownName(next.name), next.change);
}

QString ShownName(const UndoRedo::Done& done) {
    return Around(done.prefix, ShownName(done.of));
}

}  // namespace history
