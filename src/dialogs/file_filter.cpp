#include "dialogs/file_filter.h"

#include "dialogs/texts.h"

namespace dialogs {
namespace {

// "Pictures" for "Pictures (*.bmp;*.jpg)": Qt's dialog appends the patterns itself.
QString WithoutPatterns(const QString& description) {
    const qsizetype open = description.lastIndexOf(u'(');
    const bool ends_in_parenthesis = description.trimmed().endsWith(u')');
    return (ends_in_parenthesis && open > 0 ? description.left(open) : description).trimmed();
}

bool IsExecutablePattern(const QString& pattern) {
    return pattern.endsWith(u".exe", Qt::CaseInsensitive);
}

}  // namespace

QStringList QtNameFilters(const QString& filter) {
    QStringList result;
    bool executables_only = true;
    const QStringList pieces = filter.split(u'|');
    for (qsizetype i = 0; i + 1 < pieces.size(); i += 2) {
        const QStringList patterns = pieces[i + 1].split(u';', Qt::SkipEmptyParts);
        if (patterns.isEmpty()) continue;
        for (const QString& pattern : patterns)
            executables_only &= IsExecutablePattern(pattern);
        result.append(
            QStringLiteral("%1 (%2)").arg(WithoutPatterns(pieces[i]), patterns.join(u' ')));
    }
    if (!result.isEmpty() && executables_only)
        result.append(DialogsTexts::tr("All files") + QStringLiteral(" (*)"));
    return result;
}

}  // namespace dialogs
