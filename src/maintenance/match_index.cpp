#include "maintenance/match_index.h"

#include "jet/text/collation.h"

#include <algorithm>

namespace maintenance {
namespace {

// What a sort key holds; the database compares longer texts in full.
constexpr qsizetype kMaxKeyLength = 255;

std::string SortKey(std::u16string_view text) {
    jet::Bytes bytes;
    jet::AppendTextKey(text, bytes);
    std::string key(bytes.size(), '\0');
    std::transform(bytes.begin(), bytes.end(), key.begin(),
                   [](std::byte b) { return static_cast<char>(b); });
    return key;
}

// False for a character that may end a text in SQL or that the database refuses inside one.
bool IsPlain(QChar c) {
    return c != u'\'' && c != u'|' && c >= u' ';
}

std::optional<std::int64_t> RowId(const jet::Value& value) {
    if (value.is_null()) return std::nullopt;
    return jet::ToInteger(value);
}

}  // namespace

MatchIndex::MatchIndex(jet::Connection& connection, const QString& date_condition) {
    complete_ = ReadRows(connection, date_condition);
}

bool MatchIndex::CanAnswer(const QString& key) const {
    return complete_ && key.size() <= kMaxKeyLength && std::all_of(key.begin(), key.end(), IsPlain);
}

bool MatchIndex::ReadRows(jet::Connection& connection, const QString& date_condition) {
    const QString sql = QStringLiteral("Select ID, CRC, DisplayName from Tables where (True") +
                        date_condition + u')';
    auto rows = connection.Execute(sql.toStdU16String());
    if (!rows.ok()) return false;
    while (!rows->Eof()) {
        const auto id = rows->Fields(std::size_t{0});
        const auto checksum = rows->Fields(1);
        const auto name = rows->Fields(2);
        if (!id.ok() || !checksum.ok() || !name.ok()) return false;
        if (!Add(by_checksum_, *checksum, RowId(*id)) || !Add(by_name_, *name, RowId(*id)))
            return false;
        if (!rows->MoveNext().ok()) return false;
    }
    return true;
}

// False: the database would not compare this value by its sort key alone.
bool MatchIndex::Add(Map& map, const jet::Value& value, std::optional<std::int64_t> id) {
    if (value.is_null()) return true;
    const auto* text = value.get_if<std::u16string>();
    if (text == nullptr || text->size() > static_cast<std::size_t>(kMaxKeyLength)) return false;
    Rows& rows = map[SortKey(*text)];
    ++rows.count;
    rows.id = rows.count == 1 ? id : std::nullopt;
    return true;
}

MatchIndex::Rows MatchIndex::Find(const Map& map, const QString& key) {
    const auto found = map.find(SortKey(key.toStdU16String()));
    return found == map.end() ? Rows{} : found->second;
}

}  // namespace maintenance
