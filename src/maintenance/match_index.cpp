#include "maintenance/match_index.h"

#include "catalogue/text_key.h"
#include "platform/text_view.h"

namespace maintenance {
namespace {

std::optional<std::int64_t> RowId(const jet::Value& value) {
    if (value.is_null()) return std::nullopt;
    return jet::ToInteger(value);
}

}  // namespace

MatchIndex::MatchIndex(jet::Connection& connection, const QString& date_condition) {
    complete_ = ReadRows(connection, date_condition);
}

bool MatchIndex::CanAnswer(const QString& key) const {
    return complete_ && catalogue::IsPlainInSql(key) && !key.contains(u'\'') &&
           catalogue::HasTextKey(platform::View(key));
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
    if (text == nullptr || !catalogue::HasTextKey(*text)) return false;
    Rows& rows = map[catalogue::TextKey(*text)];
    ++rows.count;
    rows.id = rows.count == 1 ? id : std::nullopt;
    return true;
}

MatchIndex::Rows MatchIndex::Find(const Map& map, const QString& key) {
    const auto found = map.find(catalogue::TextKey(platform::View(key)));
    return found == map.end() ? Rows{} : found->second;
}

}  // namespace maintenance
