#include "catalogue/selection.h"

#include "catalogue/field_text.h"
#include "catalogue/texts.h"
#include "catalogue/typed_values.h"
#include "platform/shown_text.h"

#include <algorithm>

namespace catalogue {
namespace {

bool IsTextColumn(const QString& filter_key) {
    return filter_key == kFilterAuthor || filter_key == kFilterCompany || filter_key == kFilterYear;
}

bool IsDateColumn(const QString& filter_key) {
    return filter_key == kFilterFileDate || filter_key == kFilterDateAdded;
}

// nullopt: the key is not one of the filters without a value.
std::optional<QString> FixedFilterQuery(const QString& filter_key) {
    if (filter_key == kFilterAll) return QStringLiteral("Select * from Tables");
    if (filter_key == kFilterPinMame)
        return QStringLiteral("Select * from Tables where pinmame = true");
    if (filter_key == kFilterFavorites)
        return QStringLiteral("Select * from Tables where Favorite = true");
    if (filter_key == kFilterVpOnly)
        return QStringLiteral("Select * from Tables where pinmame = false");
    return std::nullopt;
}

}  // namespace

bool IsValueFilter(const QString& filter_key) {
    return IsTextColumn(filter_key) || IsDateColumn(filter_key) || filter_key == kFilterTimesPlayed;
}

QString FilterQueryText(const QString& filter_key, const QString& value,
                        const QString& comparison) {
    if (auto fixed = FixedFilterQuery(filter_key)) return *fixed;
    if (IsDateColumn(filter_key))
        return QStringLiteral("Select * from Tables Where(([Tables]![") + filter_key +
               QStringLiteral("]") + comparison + QStringLiteral("#") + value +
               QStringLiteral("#))");
    if (!IsValueFilter(filter_key)) return {};
    const QString quote = IsTextColumn(filter_key) ? QStringLiteral("'") : QString();
    return QStringLiteral("Select * from Tables Where ") + filter_key + QStringLiteral(" ") +
           comparison + QStringLiteral(" ") + quote + value + quote;
}

base::Result<QString> ComposeFilterQuery(jet::Connection& connection, const QString& filter_key,
                                         const QString& value, const QString& comparison) {
    QString text = FilterQueryText(filter_key, value, comparison);
    ASSIGN_OR_RETURN(jet::Recordset rows, connection.Execute(text.toStdU16String()));
    if (rows.Bof() && rows.Eof()) return QStringLiteral("0");
    return text;
}

QString ComposeOrderClause(const QString& order_caption, const QString& direction) {
    const auto* const found =
        std::find_if(kOrderColumns.begin(), kOrderColumns.end(),
                     [&](const OrderColumn& order) { return order.caption == order_caption; });
    const QString column = found == kOrderColumns.end() ? QString() : found->column.toString();
    return QStringLiteral(" Order By ") + column + QStringLiteral(" ") + direction;
}

QString FilterValuesQuery(const QString& filter_key) {
    QString all = QStringLiteral("Select distinct ") + filter_key + QStringLiteral(" from Tables");
    if (!IsTextColumn(filter_key)) return all;
    return all + QStringLiteral(" Where ") + filter_key + QStringLiteral(" <> NULL And ") +
           filter_key + QStringLiteral(" <> ''");
}

base::Result<QStringList> FilterValues(jet::Connection& connection, const QString& filter_key) {
    ASSIGN_OR_RETURN(jet::Recordset rows,
                     connection.Execute(FilterValuesQuery(filter_key).toStdU16String()));
    QStringList values;
    while (!rows.Eof()) {
        ASSIGN_OR_RETURN(const jet::Value value, rows.Fields(std::size_t{0}));
        values.append(FieldText(value));
        RETURN_IF_ERROR(rows.MoveNext());
    }
    return values;
}

std::optional<QString> InvalidFilterValue(const QString& filter_key, const QString& value) {
    if (filter_key == kFilterFileDate && !IsDate(value))
        return platform::Shown<CatalogueTexts>(kInvalidDate);
    if (filter_key == kFilterTimesPlayed && !IsNumeric(value))
        return CatalogueTexts::tr("Please enter a valid number");
    return std::nullopt;
}

}  // namespace catalogue
