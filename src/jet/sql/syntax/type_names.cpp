#include "jet/sql/syntax/type_names.h"

#include "jet/values/calendar_names.h"

namespace jet::sql {
namespace {

constexpr std::uint16_t kText = 255;
constexpr std::uint16_t kBinary = 510;

constexpr TypeName kTypes[] = {
    {u"COUNTER", ColumnType::kLong, true},
    {u"AUTOINCREMENT", ColumnType::kLong, true},
    {u"IDENTITY", ColumnType::kLong, true},
    {u"BIT", ColumnType::kBoolean},
    {u"YESNO", ColumnType::kBoolean},
    {u"LOGICAL", ColumnType::kBoolean},
    {u"LOGICAL1", ColumnType::kBoolean},
    {u"BOOLEAN", ColumnType::kBoolean},
    {u"BYTE", ColumnType::kByte},
    {u"INTEGER1", ColumnType::kByte},
    {u"TINYINT", ColumnType::kByte},
    {u"SHORT", ColumnType::kShort},
    {u"SMALLINT", ColumnType::kShort},
    {u"INTEGER2", ColumnType::kShort},
    {u"LONG", ColumnType::kLong},
    {u"INTEGER", ColumnType::kLong},
    {u"INT", ColumnType::kLong},
    {u"INTEGER4", ColumnType::kLong},
    {u"SINGLE", ColumnType::kSingle},
    {u"REAL", ColumnType::kSingle},
    {u"FLOAT4", ColumnType::kSingle},
    {u"IEEESINGLE", ColumnType::kSingle},
    {u"DOUBLE", ColumnType::kDouble},
    {u"FLOAT", ColumnType::kDouble},
    {u"FLOAT8", ColumnType::kDouble},
    {u"IEEEDOUBLE", ColumnType::kDouble},
    {u"NUMBER", ColumnType::kDouble},
    {u"CURRENCY", ColumnType::kMoney},
    {u"MONEY", ColumnType::kMoney},
    {u"DATETIME", ColumnType::kDate},
    {u"DATE", ColumnType::kDate},
    {u"TIME", ColumnType::kDate},
    {u"TIMESTAMP", ColumnType::kDate},
    {u"CHAR", ColumnType::kText, false, true, kText},
    {u"CHARACTER", ColumnType::kText, false, true, kText},
    {u"NCHAR", ColumnType::kText, false, true, kText},
    {u"VARCHAR", ColumnType::kText, false, false, kText},
    {u"NVARCHAR", ColumnType::kText, false, false, kText},
    {u"TEXT", ColumnType::kText, false, false, kText},
    {u"STRING", ColumnType::kText, false, false, kText},
    {u"ALPHANUMERIC", ColumnType::kText, false, false, kText},
    {u"MEMO", ColumnType::kMemo},
    {u"LONGTEXT", ColumnType::kMemo},
    {u"LONGCHAR", ColumnType::kMemo},
    {u"NOTE", ColumnType::kMemo},
    {u"NTEXT", ColumnType::kMemo},
    {u"BINARY", ColumnType::kBinary, false, false, kBinary},
    {u"VARBINARY", ColumnType::kBinary, false, false, kBinary},
    {u"LONGBINARY", ColumnType::kOle},
    {u"IMAGE", ColumnType::kOle},
    {u"OLEOBJECT", ColumnType::kOle},
    {u"GENERAL", ColumnType::kOle},
    {u"GUID", ColumnType::kGuid},
    {u"UNIQUEIDENTIFIER", ColumnType::kGuid},
    {u"DECIMAL", ColumnType::kNumeric},
    {u"NUMERIC", ColumnType::kNumeric},
    {u"DEC", ColumnType::kNumeric},
};

}  // namespace

const TypeName* FindTypeName(std::u16string_view name) {
    for (const TypeName& type : kTypes)
        if (SameWord(type.name, name)) return &type;
    return nullptr;
}

}  // namespace jet::sql
