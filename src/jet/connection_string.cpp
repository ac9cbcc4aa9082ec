#include "jet/connection_string.h"

#include "jet/values/calendar_names.h"

#include <algorithm>

namespace jet {
namespace {

base::Status BadFormat() {
    return {base::StatusCode::kInvalidArgument,
            "Format of the initialization string is not correct."};
}

// The value at the front of `text`, which is left at the semicolon behind it or at the end.
base::Result<std::u16string> TakeValue(std::u16string_view& text) {
    while (!text.empty() && IsBlank(text.front()))
        text.remove_prefix(1);
    std::u16string value;
    if (text.empty() || (text.front() != u'"' && text.front() != u'\'')) {
        const std::size_t end = std::min(text.find(u';'), text.size());
        value = TrimBlanks(text.substr(0, end));
        text.remove_prefix(end);
        return value;
    }
    const char16_t quote = text.front();
    text.remove_prefix(1);
    for (;;) {
        const std::size_t end = text.find(quote);
        if (end == std::u16string_view::npos) return BadFormat();
        value += text.substr(0, end);
        text.remove_prefix(end + 1);
        if (text.empty() || text.front() != quote) break;
        value += quote;
        text.remove_prefix(1);
    }
    text = TrimBlanks(text);
    if (!text.empty() && text.front() != u';') return BadFormat();
    return value;
}

void Apply(std::u16string_view key, std::u16string value, ConnectionSettings& settings) {
    if (SameWord(key, u"Data Source"))
        settings.data_source = std::move(value);
    else if (SameWord(key, u"Mode"))
        settings.read_only = SameWord(value, u"Read");
}

}  // namespace

base::Result<ConnectionSettings> ParseConnectionString(std::u16string_view text) {
    ConnectionSettings settings;
    while (!(text = TrimBlanks(text)).empty()) {
        if (text.front() == u';') {
            text.remove_prefix(1);
            continue;
        }
        const std::size_t equals = text.find(u'=');
        if (equals == std::u16string_view::npos || text.substr(0, equals).find(u';') != text.npos)
            return BadFormat();
        const std::u16string_view key = TrimBlanks(text.substr(0, equals));
        text.remove_prefix(equals + 1);
        ASSIGN_OR_RETURN(std::u16string value, TakeValue(text));
        Apply(key, std::move(value), settings);
    }
    if (settings.data_source.empty()) return BadFormat();
    return settings;
}

}  // namespace jet
