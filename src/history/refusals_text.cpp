#include "history/refusals_text.h"

#include "history/change_names.h"
#include "history/change_texts.h"
#include "history/texts.h"
#include "platform/shown_text.h"

#include <QtCore/QStringList>

#include <algorithm>

namespace history {
namespace {

// A message box with more lines does not fit on a small screen.
constexpr std::size_t kShownRefusals = 12;

QString Text(const std::u16string& text) {
    return QString::fromStdU16String(text);
}

// "ID 12, Name: now 'a', was 'b'. It was changed since."
QString RefusalLine(const Refusal& refusal) {
    QStringList where;
    for (const std::u16string& part : {refusal.row, refusal.field})
        if (!part.empty()) where.append(Text(part));
    QString line = where.isEmpty() ? Text(refusal.table) : where.join(QStringLiteral(", "));
    if (!refusal.field.empty())
        line +=
            HistoryTexts::tr(": now '%1', was '%2'.").arg(Text(refusal.now), Text(refusal.then));
    else
        line += u'.';
    return line + u' ' + platform::Shown<HistoryTexts>(refusal.reason);
}

}  // namespace

QString RefusalsText(const std::vector<Refusal>& refusals) {
    if (refusals.empty()) return {};
    QString text = HistoryTexts::tr("This was left as it is now, because others have changed it:") +
                   QStringLiteral("\r\r");
    const std::size_t shown = std::min(refusals.size(), kShownRefusals);
    for (std::size_t i = 0; i < shown; ++i)
        text += RefusalLine(refusals[i]) + u'\r';
    if (refusals.size() > shown)
        text += HistoryTexts::tr("and %1 more").arg(GroupedText(refusals.size() - shown));
    return text;
}

}  // namespace history
