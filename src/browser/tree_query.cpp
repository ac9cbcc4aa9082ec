#include "browser/tree_query.h"

#include "catalogue/quoting.h"
#include "catalogue/selection.h"

namespace browser {

std::optional<QString> WrongValue(const Selection& selection) {
    if (!selection.takes_value) return std::nullopt;
    return catalogue::InvalidFilterValue(selection.filter_key, selection.filter_value);
}

base::Result<std::optional<QString>> SelectionSql(jet::Connection& connection,
                                                  const Selection& selection) {
    ASSIGN_OR_RETURN(const QString query,
                     catalogue::ComposeFilterQuery(connection, selection.filter_key,
                                                   catalogue::QuoteSqlExpr(selection.filter_value),
                                                   selection.comparison));
    if (query == u"0") return std::optional<QString>();
    return std::optional(
        query + catalogue::ComposeOrderClause(selection.order_caption, selection.direction));
}

base::Result<std::optional<jet::Recordset>> OpenSelection(jet::Connection& connection,
                                                          const Selection& selection) {
    ASSIGN_OR_RETURN(const auto sql, SelectionSql(connection, selection));
    if (!sql) return std::optional<jet::Recordset>();
    jet::Recordset rows;
    RETURN_IF_ERROR(rows.Open(sql->toStdU16String(), connection, jet::CursorType::kKeyset,
                              jet::LockType::kOptimistic));
    return std::optional<jet::Recordset>(std::move(rows));
}

QString CountText(std::int64_t tables) {
    return QString::number(tables) + QStringLiteral(" Tables in list.  ");
}

QString RootText(const QString& filter_text, const Selection& selection) {
    if (!selection.takes_value) return filter_text;
    return filter_text + QStringLiteral(" ") + selection.comparison + QStringLiteral(" ") +
           selection.filter_value;
}

}  // namespace browser
