#include "discovery/known_names.h"

#include "catalogue/field_text.h"
#include "catalogue/quoting.h"
#include "catalogue/text_key.h"
#include "jet/recordset.h"
#include "jet/tables/database.h"
#include "platform/files.h"
#include "platform/text_view.h"

#include <utility>

namespace discovery {
namespace {

catalogue::PathMap RealMap(const catalogue::PathMap& map) {
    std::vector<catalogue::PathPair> pairs = map.pairs();
    for (catalogue::PathPair& pair : pairs)
        if (QString real = platform::RealPath(pair.here); !real.isEmpty()) pair.here = real;
    return catalogue::PathMap(std::move(pairs));
}

}  // namespace

base::Result<bool> KnownNames::Contains(const QString& path) {
    ASSIGN_OR_RETURN(const bool is_stored, IsStored(path));
    return is_stored ? true : IsMapped(path);
}

base::Result<bool> KnownNames::IsMapped(const QString& path) {
    if (paths_.map()->is_empty()) return false;
    const jet::Database* const database = connection_.database();
    const auto changes = database ? std::optional(database->changes()) : std::nullopt;
    if (!changes || mapped_changes_ != changes) RETURN_IF_ERROR(ReadMapped());
    mapped_changes_ = changes;
    return mapped_.contains(path.toCaseFolded());
}

base::Status KnownNames::ReadMapped() {
    mapped_.clear();
    real_map_ = RealMap(*paths_.map());
    ASSIGN_OR_RETURN(auto rows, connection_.Execute(u"Select FileName from Tables"));
    while (!rows.Eof()) {
        ASSIGN_OR_RETURN(const QString stored, catalogue::FieldText(rows, u"FileName"));
        InsertMapped(stored);
        RETURN_IF_ERROR(rows.MoveNext());
    }
    return {};
}

void KnownNames::InsertMapped(const QString& stored) {
    const auto map = paths_.map();
    if (!map->PairOf(stored)) return;
    mapped_.insert(map->Local(stored).toCaseFolded());
    mapped_.insert(real_map_.Local(stored).toCaseFolded());
}

base::Result<bool> KnownNames::IsStored(const QString& path) {
    const std::u16string_view text = platform::View(path);
    const jet::Database* const database = connection_.database();
    const bool is_first = !std::exchange(was_asked_, true);
    if (is_first || database == nullptr || !catalogue::HasTextKey(text) ||
        !catalogue::IsPlainInSql(path))
        return AskDatabase(path);
    const std::uint64_t changes = database->changes();
    if (changes_ != changes) are_held_ = Read();
    changes_ = changes;
    return are_held_ ? keys_.contains(catalogue::TextKey(text)) : AskDatabase(path);
}

void KnownNames::BeginAttempt() {
    const jet::Database* const database = connection_.database();
    attempt_ = database != nullptr ? std::optional(database->changes()) : std::nullopt;
}

void KnownNames::NoteStored(const QString& path) {
    InsertMapped(path);
    const std::u16string_view text = platform::View(path);
    if (!catalogue::HasTextKey(text)) return;
    keys_.insert(catalogue::TextKey(text));
    NoteRefused();
}

void KnownNames::NoteRefused() {
    const jet::Database* const database = connection_.database();
    if (database == nullptr || !attempt_) return;
    for (std::optional<std::uint64_t>* const known : {&changes_, &mapped_changes_})
        if (*known == attempt_) *known = database->changes();
}

bool KnownNames::Read() {
    keys_.clear();
    auto rows = connection_.Execute(u"Select FileName from Tables");
    if (!rows.ok()) return false;
    while (!rows->Eof()) {
        const auto name = rows->Fields(std::size_t{0});
        if (!name.ok()) return false;
        const auto* text = name->get_if<std::u16string>();
        if (text && catalogue::HasTextKey(*text))
            keys_.insert(catalogue::TextKey(*text));
        else if (!name->is_null())
            return false;
        if (!rows->MoveNext().ok()) return false;
    }
    return true;
}

base::Result<bool> KnownNames::AskDatabase(const QString& path) {
    const QString query = QStringLiteral("Select FileName from Tables where filename = '") +
                          catalogue::QuoteSql(path) + u'\'';
    ASSIGN_OR_RETURN(const auto rows, connection_.Execute(query.toStdU16String()));
    return !(rows.Bof() && rows.Eof());
}

}  // namespace discovery
