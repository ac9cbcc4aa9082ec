#include "browser/find_fold.h"

#include <QtCore/QString>

#include <algorithm>

namespace browser {
namespace {

bool IsAscii(QStringView text) {
    char16_t bits = 0;
    for (const QChar c : text)
        bits |= c.unicode();
    return bits < 0x80;
}

char FoldedAscii(QChar c) {
    const char16_t unit = c.unicode();
    if (unit < u' ' || unit == 0x7F) return ' ';
    const bool is_upper = unit >= u'A' && unit <= u'Z';
    return static_cast<char>(is_upper ? unit + (u'a' - u'A') : unit);
}

// Letters that have no decomposition, after the folding of case; nullptr: the letter stays.
const char* PlainLetter(char16_t unit) {
    switch (unit) {
    case u'ø':
        return "o";
    case u'æ':
        return "ae";
    case u'œ':
        return "oe";
    case u'đ':
    case u'ð':
        return "d";
    case u'ł':
        return "l";
    case u'þ':
        return "th";
    case u'ı':
        return "i";
    case u'ß':
        return "ss";
    case u'ħ':
        return "h";
    default:
        return nullptr;
    }
}

QString WithoutAccents(const QString& decomposed) {
    QString plain;
    plain.reserve(decomposed.size());
    for (const QChar c : decomposed) {
        if (c.category() == QChar::Mark_NonSpacing) continue;
        if (c.category() == QChar::Other_Control)
            plain.append(u' ');
        else if (const char* const letter = PlainLetter(c.unicode()))
            plain.append(QLatin1String(letter));
        else
            plain.append(c);
    }
    return plain;
}

}  // namespace

void AppendFolded(QStringView text, std::string& folded) {
    if (IsAscii(text)) {
        std::transform(text.begin(), text.end(), std::back_inserter(folded), FoldedAscii);
        return;
    }
    const QString decomposed =
        text.toString().normalized(QString::NormalizationForm_KD).toCaseFolded();
    const QByteArray bytes = WithoutAccents(decomposed).toUtf8();
    folded.append(bytes.constData(), static_cast<std::size_t>(bytes.size()));
}

}  // namespace browser
