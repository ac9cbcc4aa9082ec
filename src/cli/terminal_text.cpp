#include "cli/terminal_text.h"

#include "base/file_names.h"

#include <cstdio>

namespace cli {
namespace {

bool IsControl(char16_t c) {
    return c < 0x20 || (c >= 0x7F && c <= 0x9F);
}

void AppendEscape(std::string& bytes, char16_t c) {
    if (c == u'\n') {
        bytes += "\\n";
    } else if (c == u'\r') {
        bytes += "\\r";
    } else if (c == u'\t') {
        bytes += "\\t";
    } else {
        char escape[8];
        std::snprintf(escape, sizeof escape, "\\x%02x", static_cast<unsigned>(c));
        bytes += escape;
    }
}

}  // namespace

void AppendTerminalText(std::string& bytes, std::u16string_view text) {
    while (!text.empty()) {
        std::size_t plain = 0;
        while (plain < text.size() && !IsControl(text[plain]))
            ++plain;
        bytes += base::EncodeFileName(text.substr(0, plain));
        text.remove_prefix(plain);
        if (text.empty()) return;
        AppendEscape(bytes, text.front());
        text.remove_prefix(1);
    }
}

QString ShownText(const QString& text) {
    QString shown = text;
    shown.replace(QLatin1String("\r\n"), QLatin1String("\n"));
    QString clean;
    for (const QChar c : shown) {
        if (IsControl(c.unicode()) && c != u'\n' && c != u'\t')
            clean += QStringLiteral("\\x%1").arg(c.unicode(), 2, 16, QLatin1Char('0'));
        else
            clean += c;
    }
    return clean;
}

}  // namespace cli
