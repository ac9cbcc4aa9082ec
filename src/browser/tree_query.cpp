#include "browser/tree_query.h"

#include "browser/texts.h"

namespace browser {

QString CountText(std::int64_t tables) {
    return BrowserTexts::tr("%1 Tables in list.  ").arg(tables);
}

QString RootText(const QString& filter_text, const Selection& selection) {
    if (!selection.takes_value) return filter_text;
    return filter_text + QStringLiteral(" ") + selection.comparison + QStringLiteral(" ") +
           selection.filter_value;
}

}  // namespace browser
