#include "catalogue/text_key.h"

#include "jet/text/collation.h"

#include <algorithm>

namespace catalogue {

bool HasTextKey(std::u16string_view text) {
    return text.size() <= jet::kKeyUnits;
}

std::string TextKey(std::u16string_view text) {
    jet::Bytes bytes;
    jet::AppendTextKey(text, bytes);
    std::string key(bytes.size(), '\0');
    std::transform(bytes.begin(), bytes.end(), key.begin(),
                   [](std::byte b) { return static_cast<char>(b); });
    return key;
}

bool IsPlainInSql(const QString& text) {
    return std::all_of(text.begin(), text.end(), [](QChar c) { return c != u'|' && c >= u' '; });
}

}  // namespace catalogue
