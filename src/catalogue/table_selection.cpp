#include "catalogue/table_selection.h"

#include "catalogue/quoting.h"
#include "catalogue/selection.h"

namespace catalogue {

std::optional<QString> WrongValue(const Selection& selection) {
    if (!selection.takes_value) return std::nullopt;
    return InvalidFilterValue(selection.filter_key, selection.filter_value);
}

QString SelectionStatement(const Selection& selection) {
    return FilterQueryText(selection.filter_key, QuoteSqlExpr(selection.filter_value),
                           selection.comparison) +
           ComposeOrderClause(selection.order_caption, selection.direction);
}

base::Result<std::optional<QString>> SelectionSql(jet::Connection& connection,
                                                  const Selection& selection) {
    ASSIGN_OR_RETURN(const QString query, ComposeFilterQuery(connection, selection.filter_key,
                                                             QuoteSqlExpr(selection.filter_value),
                                                             selection.comparison));
    if (query == u"0") return std::optional<QString>();
    return std::optional(SelectionStatement(selection));
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

}  // namespace catalogue
