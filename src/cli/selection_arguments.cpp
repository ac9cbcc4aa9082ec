#include "cli/selection_arguments.h"

#include "catalogue/filter_kinds.h"
#include "catalogue/selection.h"

#include <algorithm>

namespace cli {
namespace {

base::Status Wrong(const QString& text) {
    return {base::StatusCode::kInvalidArgument, text.toStdString()};
}

// By its key or by the text that the window shows, in any letter case; empty: there is none.
QString FilterKeyOf(const QString& name) {
    for (const catalogue::FilterKind& kind : catalogue::kFilterKinds)
        if (kind.key.compare(name, Qt::CaseInsensitive) == 0 ||
            kind.text.compare(name, Qt::CaseInsensitive) == 0)
            return kind.key.toString();
    return {};
}

bool IsOperator(const QString& word) {
    const auto& symbols = catalogue::OperatorSymbols;
    return std::find(symbols.begin(), symbols.end(), QStringView(word)) != symbols.end();
}

QString OperatorList() {
    QStringList symbols;
    for (const QStringView symbol : catalogue::OperatorSymbols)
        symbols.append(symbol.toString());
    return symbols.join(QStringLiteral(", "));
}

void SetFilter(catalogue::Selection& selection, const QString& name) {
    selection.filter_key = FilterKeyOf(name);
    selection.takes_value = catalogue::IsValueFilter(selection.filter_key);
}

}  // namespace

catalogue::Selection SelectionOfOptions(const Arguments& arguments) {
    catalogue::Selection selection;
    selection.order_caption =
        arguments.Value("order", catalogue::kOrderColumns.front().caption.toString());
    selection.direction =
        arguments.Has("descending") ? QStringLiteral("Desc") : QStringLiteral("Asc");
    SetFilter(selection, arguments.Value("filter", catalogue::kFilterAll.toString()));
    selection.comparison = arguments.Value("operator", QStringLiteral("="));
    selection.filter_value = arguments.Value("value");
    return selection;
}

base::Result<catalogue::Selection> SelectionOfOperands(const Arguments& arguments) {
    catalogue::Selection selection = SelectionOfOptions(arguments);
    const QStringList& words = arguments.operands;
    SetFilter(selection, words[0]);
    if (selection.filter_key.isEmpty())
        return Wrong(QStringLiteral("unknown filter '%1'").arg(words[0]));
    if (!selection.takes_value && words.size() > 1)
        return Wrong(QStringLiteral("the filter '%1' takes no value").arg(words[0]));
    if (selection.takes_value && words.size() < 3)
        return Wrong(QStringLiteral("the filter '%1' needs an operator and a value").arg(words[0]));
    if (selection.takes_value) {
        selection.comparison = words[1];
        selection.filter_value = words[2];
    }
    RETURN_IF_ERROR(CheckSelection(selection));
    return selection;
}

base::Status CheckSelection(const catalogue::Selection& selection) {
    if (!IsOperator(selection.comparison))
        return Wrong(QStringLiteral("unknown operator '%1': it is one of %2")
                         .arg(selection.comparison, OperatorList()));
    if (const auto wrong = catalogue::WrongValue(selection)) return Wrong(*wrong);
    return {};
}

base::Result<QStringList> ColumnsOf(const Arguments& arguments) {
    QStringList columns;
    for (const QString& names : arguments.Values("columns"))
        for (const QString& name : names.split(u',')) {
            if (name.trimmed().isEmpty())
                return Wrong(QStringLiteral("--columns=%1 names no column").arg(names));
            columns.append(name.trimmed());
        }
    return columns;
}

base::Result<jet::Recordset> OpenRows(jet::Connection& connection,
                                      const catalogue::Selection& selection) {
    return connection.Execute(catalogue::SelectionStatement(selection).toStdU16String());
}

base::Result<std::int64_t> IdOf(const QString& word) {
    bool is_number = false;
    const int id = word.toInt(&is_number);
    if (!is_number) return Wrong(QStringLiteral("'%1' is not an ID").arg(word));
    return std::int64_t{id};
}

base::Status NoSuchTable(std::int64_t id) {
    return {base::StatusCode::kNotFound, "there is no table " + std::to_string(id)};
}

}  // namespace cli
