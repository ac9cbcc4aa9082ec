// SELECT ... INTO: a new table of the rows of a query.
#include "jet/errors.h"
#include "jet/sql/plans/query.h"
#include "jet/sql/statements/executor.h"
#include "jet/sql/statements/transaction.h"
#include "jet/values/coerce.h"
#include "jet/values/column_limits.h"

#include <algorithm>

namespace jet::sql {
namespace {

using base::Result;
using base::Status;

// The type that holds all values of a computed column.
class TypeFinder {
public:
    void Add(const Value& value) {
        if (value.is_null()) return;
        const ColumnType type = TypeOf(value);
        if (const auto* text = value.get_if<std::u16string>())
            longest_ = std::max(longest_, text->size());
        if (!type_ || *type_ == type)
            type_ = type;
        else
            type_ = IsWhole(*type_) && IsWhole(type)     ? ColumnType::kLong
                    : IsNumber(*type_) && IsNumber(type) ? ColumnType::kDouble
                                                         : ColumnType::kText;
        // Mixed values become texts; how long these are is not known.
        mixed_ = mixed_ || (*type_ == ColumnType::kText && type != ColumnType::kText);
    }

    ColumnDesign Design() const {
        ColumnDesign design;
        design.type = type_.value_or(ColumnType::kText);
        design.size = design.type == ColumnType::kText ? kMaxTextCharacters : 0;
        if (design.type != ColumnType::kText) return design;
        if (longest_ > kMaxTextCharacters || mixed_) {
            design.type = ColumnType::kMemo;
            design.size = 0;
        }
        return design;
    }

private:
    static bool IsWhole(ColumnType type) {
        return type == ColumnType::kByte || type == ColumnType::kShort || type == ColumnType::kLong;
    }
    static bool IsNumber(ColumnType type) {
        return IsWhole(type) || type == ColumnType::kSingle || type == ColumnType::kDouble ||
               type == ColumnType::kMoney;
    }

    static ColumnType TypeOf(const Value& value) {
        if (value.is<bool>() || value.is<std::int16_t>()) return ColumnType::kShort;
        if (value.is<std::uint8_t>()) return ColumnType::kByte;
        if (value.is<std::int32_t>()) return ColumnType::kLong;
        if (value.is<Money>()) return ColumnType::kMoney;
        if (value.is<float>()) return ColumnType::kSingle;
        if (value.is<double>() || value.is<Numeric>()) return ColumnType::kDouble;
        if (value.is<Date>()) return ColumnType::kDate;
        if (value.is<Bytes>()) return ColumnType::kOle;
        if (value.is<Guid>()) return ColumnType::kGuid;
        return ColumnType::kText;
    }

    std::optional<ColumnType> type_;
    std::size_t longest_ = 0;
    bool mixed_ = false;
};

// Type and size go over to the new column, nothing else.
ColumnDesign CopyOf(const ColumnDesign& column) {
    ColumnDesign copy;
    copy.type = column.type == ColumnType::kFixedBinary ? ColumnType::kBinary : column.type;
    copy.size = column.size;
    copy.precision = column.precision;
    copy.scale = column.scale;
    copy.compressed = column.compressed;
    copy.fixed_text = column.fixed_text;
    return copy;
}

TableDesign DesignFor(const Query& query, const std::u16string& name,
                      const std::vector<ResultRow>& rows) {
    TableDesign design;
    design.name = name;
    for (std::size_t i = 0; i < query.names().size(); ++i) {
        ColumnDesign column;
        if (const ColumnDesign* origin = query.OutputColumn(i)) {
            column = CopyOf(*origin);
        } else {
            TypeFinder finder;
            for (const ResultRow& row : rows)
                finder.Add(row[i]);
            column = finder.Design();
        }
        column.name = query.names()[i];
        design.columns.push_back(std::move(column));
    }
    return design;
}

}  // namespace

Result<std::int64_t> Execute(SelectStatement& select, Session& session) {
    if (session.database->read_only()) return JetError(ErrorNumber::kReadOnly);
    const std::u16string name = std::exchange(select.into, {});
    std::vector<ResultRow> rows;
    TableDesign design;
    {
        ASSIGN_OR_RETURN(const std::unique_ptr<Query> query,
                         Query::Prepare(std::move(select), session));
        ASSIGN_OR_RETURN(rows, query->Rows());
        design = DesignFor(*query, name, rows);
    }
    Transaction transaction(*session.database);
    RETURN_IF_ERROR(transaction.Begin());
    RETURN_IF_ERROR(session.database->CreateTable(design));
    ASSIGN_OR_RETURN(Table* const table, session.database->FindTable(name));
    for (ResultRow& row : rows) {
        for (std::size_t i = 0; i < row.size(); ++i) {
            ASSIGN_OR_RETURN(row[i], Coerce(row[i], design.columns[i]));
        }
        const auto inserted = table->Insert(row);
        if (!inserted.ok()) return inserted.status();
    }
    RETURN_IF_ERROR(transaction.Commit());
    return static_cast<std::int64_t>(rows.size());
}

}  // namespace jet::sql
