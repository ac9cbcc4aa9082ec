#include "jet/system_tables.h"

#include "jet/field_codec.h"

namespace jet {
namespace {

struct Column {
    const char16_t* name;
    ColumnType type;
    std::uint8_t flags = kColumnUpdatable | kColumnSystem;
};

struct Index {
    const char16_t* name;
    std::vector<std::uint16_t> columns;
    std::uint8_t flags;
    std::uint32_t number;
    IndexKind kind = IndexKind::kPlain;
};

constexpr std::uint16_t kLongestField = 510;
constexpr std::uint8_t kScrambled = kColumnUpdatable | kColumnSystem | kColumnScrambled;
constexpr std::uint8_t kUnique = kIndexJet4 | kIndexUnique;

// Columns get their places in the row in the order of their numbers.
void AddColumns(TableDefinition& table, const std::vector<Column>& columns) {
    std::uint16_t fixed_offset = 0;
    for (const Column& from : columns) {
        ColumnDefinition column;
        column.name = from.name;
        column.type = from.type;
        column.flags = from.flags;
        column.number = table.columns_ever++;
        column.variable_index = table.variables_ever;
        const bool variable = from.type == ColumnType::kText || from.type == ColumnType::kBinary ||
                              column.is_long_value();
        if (variable) {
            ++table.variables_ever;
            column.length = column.is_long_value() ? 0 : kLongestField;
        } else {
            column.flags |= kColumnFixed;
            const bool boolean = from.type == ColumnType::kBoolean;
            column.length = boolean ? 1 : static_cast<std::uint16_t>(FixedSize(from.type));
            column.fixed_offset = boolean ? 0 : fixed_offset;
            if (!boolean) fixed_offset = static_cast<std::uint16_t>(fixed_offset + column.length);
        }
        table.columns.push_back(column);
    }
}

class Maker {
public:
    // `long_values`: column numbers in the order in which they got their maps.
    TableDefinition Make(PageNumber page, const std::vector<Column>& columns,
                         const std::vector<std::uint16_t>& long_values,
                         const std::vector<Index>& indexes) {
        TableDefinition table;
        table.page = page;
        table.pages = {page};
        table.kind = kSystemTable;
        AddColumns(table, columns);
        table.owned = NextMap();
        table.free = NextMap();
        for (const std::uint16_t column : long_values) {
            LongValueMaps maps{column, {}, {}};
            maps.owned = NextMap();
            maps.free = NextMap();
            table.long_values.push_back(maps);
        }
        for (std::uint32_t real = 0; real < indexes.size(); ++real) {
            RealIndex index;
            for (const std::uint16_t column : indexes[real].columns)
                index.columns.push_back({column, true});
            index.map = NextMap();
            index.root = next_root_++;
            index.flags = indexes[real].flags;
            table.real_indexes.push_back(index);
            LogicalIndex logical;
            logical.number = indexes[real].number;
            logical.real = real;
            logical.kind = indexes[real].kind;
            logical.name = indexes[real].name;
            table.logical_indexes.push_back(logical);
        }
        return table;
    }

private:
    RowPointer NextMap() { return {kSystemMapPage, next_map_++}; }

    std::uint8_t next_map_ = 0;
    PageNumber next_root_ = kFirstSystemIndex;
};

}  // namespace

std::vector<TableDefinition> SystemTables() {
    using enum ColumnType;
    Maker maker;
    std::vector<TableDefinition> tables;
    tables.push_back(maker.Make(
        kObjectsPage,
        {{u"Id", kLong},
         {u"ParentId", kLong},
         {u"Name", kText},
         {u"Type", kShort},
         {u"DateCreate", kDate},
         {u"DateUpdate", kDate},
         {u"Owner", kBinary, kScrambled},
         {u"Flags", kLong},
         {u"Database", kMemo},
         {u"Connect", kMemo},
         {u"ForeignName", kText},
         {u"RmtInfoShort", kBinary},
         {u"RmtInfoLong", kOle},
         {u"Lv", kOle},
         {u"LvProp", kOle},
         {u"LvModule", kOle},
         {u"LvExtra", kOle}},
        {8, 9, 12, 13, 14, 15, 16},
        {{u"ParentIdName", {1, 2}, kUnique, 0}, {u"Id", {0}, kUnique, 1, IndexKind::kPrimary}}));
    tables.push_back(maker.Make(kAccessPage,
                                {{u"ObjectId", kLong},
                                 {u"SID", kBinary, kScrambled},
                                 {u"ACM", kLong},
                                 {u"FInheritable", kBoolean}},
                                {}, {{u"ObjectId", {0}, kIndexJet4 | kIndexRequired, 0}}));
    tables.push_back(
        maker.Make(kQueriesPage,
                   {{u"ObjectId", kLong},
                    {u"Attribute", kByte},
                    {u"Order", kBinary},
                    {u"Name1", kText},
                    {u"Name2", kText},
                    {u"Expression", kMemo},
                    {u"Flag", kShort},
                    {u"LvExtra", kLong}},
                   {5}, {{u"ObjectIdAttribute", {0, 1, 2}, kUnique, 0, IndexKind::kPrimary}}));
    tables.push_back(maker.Make(kRelationsPage,
                                {{u"szRelationship", kText},
                                 {u"grbit", kLong},
                                 {u"ccolumn", kLong},
                                 {u"icolumn", kLong},
                                 {u"szObject", kText},
                                 {u"szColumn", kText},
                                 {u"szReferencedObject", kText},
                                 {u"szReferencedColumn", kText}},
                                {},
                                {{u"szRelationship", {0}, kIndexJet4 | kIndexIgnoreNulls, 0},
                                 {u"szObject", {4}, kIndexJet4 | kIndexIgnoreNulls, 1},
                                 {u"szReferencedObject", {6}, kIndexJet4 | kIndexIgnoreNulls, 2}}));
    return tables;
}

Bytes SidBytes(std::uint16_t sid) {
    Bytes bytes(2);
    base::StoreLittle(bytes.data(), sid);
    return bytes;
}

}  // namespace jet
