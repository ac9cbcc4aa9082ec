#include "discovery/known_names.h"

#include "catalogue/quoting.h"
#include "catalogue/text_key.h"
#include "jet/recordset.h"
#include "jet/tables/database.h"
#include "platform/text_view.h"

#include <utility>

namespace discovery {
base::Result<bool> KnownNames::Contains(const QString& path) {
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
    const std::u16string_view text = platform::View(path);
    if (!catalogue::HasTextKey(text)) return;
    keys_.insert(catalogue::TextKey(text));
    NoteRefused();
}

void KnownNames::NoteRefused() {
    const jet::Database* const database = connection_.database();
    if (database != nullptr && changes_ && changes_ == attempt_) changes_ = database->changes();
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
