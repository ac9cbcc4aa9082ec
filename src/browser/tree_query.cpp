#include "browser/tree_query.h"

namespace browser {

QString CountText(std::int64_t tables) {
    return QString::number(tables) + QStringLiteral(" Tables in list.  ");
}

QString RootText(const QString& filter_text, const Selection& selection) {
    if (!selection.takes_value) return filter_text;
    return filter_text + QStringLiteral(" ") + selection.comparison + QStringLiteral(" ") +
           selection.filter_value;
}

}  // namespace browser
