#include "exchange/csv_writer.h"

#include "exchange/wtf8.h"

namespace exchange {
namespace {

// Blanks at the ends are kept by every reader only inside quotes; a byte order mark at the start of
// a file would not be taken for text.
bool NeedsQuotes(std::string_view text) {
    return text.empty() || text.starts_with(kByteOrderMark) ||
           text.find_first_of(",\"\r\n") != std::string_view::npos || text.front() == ' ' ||
           text.front() == '\t' || text.back() == ' ' || text.back() == '\t';
}

}  // namespace

void AppendCsvText(std::string& line, std::string_view text) {
    if (!NeedsQuotes(text)) {
        line += text;
        return;
    }
    line += '"';
    for (const char c : text) {
        if (c == '"') line += c;
        line += c;
    }
    line += '"';
}

bool LooksLikeFormula(std::string_view text) {
    const std::size_t first = text.find_first_not_of('\'');
    if (first == std::string_view::npos) return false;
    return std::string_view("=+-@\t\r\n").find(text[first]) != std::string_view::npos;
}

}  // namespace exchange
