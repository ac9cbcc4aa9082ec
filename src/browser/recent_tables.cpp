#include "browser/recent_tables.h"

#include "catalogue/field_text.h"

namespace browser {

base::Result<std::vector<RecentTable>> RecentTables(jet::Connection& connection) {
    ASSIGN_OR_RETURN(jet::Recordset rows,
                     connection.Execute(u"Select Top 10 ID, DisplayName from Tables where "
                                        u"LastPlayed is not null order by LastPlayed desc, ID"));
    std::vector<RecentTable> tables;
    while (!rows.Eof() && tables.size() < kMaxRecentTables) {
        ASSIGN_OR_RETURN(const jet::Value id, rows.Fields(std::size_t{0}));
        ASSIGN_OR_RETURN(const jet::Value name, rows.Fields(std::size_t{1}));
        tables.push_back({catalogue::FieldText(id), catalogue::FieldText(name)});
        RETURN_IF_ERROR(rows.MoveNext());
    }
    return tables;
}

}  // namespace browser
