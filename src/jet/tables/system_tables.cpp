#include "jet/tables/system_tables.h"

#include "jet/rows/field_codec.h"
#include "jet/tables/catalog.h"

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

constexpr std::uint8_t kScrambled = kColumnUpdatable | kColumnSystem | kColumnScrambled;

constexpr SystemPages::MapPage kMapsJet4[] = {{6, 31}};
constexpr PageNumber kRootsJet4[] = {7, 8, 9, 10, 11, 12, 13};
constexpr SystemPages kPagesJet4 = {kMapsJet4, kRootsJet4, 14, 15, 16};

// A page has room for 15 maps; the two indexes of MSysObjects have a page each for theirs.
constexpr SystemPages::MapPage kMapsJet3[] = {{6, 15}, {7, 1}, {8, 1}, {10, 1}, {12, 13}};
constexpr PageNumber kRootsJet3[] = {9, 11, 13, 14, 15, 16, 17};
constexpr SystemPages kPagesJet3 = {kMapsJet3, kRootsJet3, 18, 19, 20};

// Columns get their places in the row in the order of their numbers.
void AddColumns(TableDefinition& table, const std::vector<Column>& columns, int version) {
    const std::uint16_t longest_field = version == 3 ? 255 : 510;
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
            column.length = column.is_long_value() ? 0 : longest_field;
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
    explicit Maker(int version) : version_(version), pages_(SystemPagesOf(version)) {}

    // `long_values`: column numbers in the order in which they got their maps.
    TableDefinition Make(PageNumber page, const std::vector<Column>& columns,
                         const std::vector<std::uint16_t>& long_values,
                         const std::vector<Index>& indexes) {
        TableDefinition table;
        table.page = page;
        table.pages = {page};
        table.kind = kSystemTable;
        AddColumns(table, columns, version_);
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
            index.root = pages_.index_roots[next_root_++];
            index.flags = indexes[real].flags;
            if (version_ == 4) index.flags |= kIndexJet4;
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
    RowPointer NextMap() {
        if (next_map_ == pages_.maps[map_page_].rows) {
            ++map_page_;
            next_map_ = 0;
        }
        return {pages_.maps[map_page_].page, next_map_++};
    }

    int version_;
    const SystemPages& pages_;
    std::size_t map_page_ = 0;
    std::uint8_t next_map_ = 0;
    std::size_t next_root_ = 0;
};

}  // namespace

const SystemPages& SystemPagesOf(int version) {
    return version == 3 ? kPagesJet3 : kPagesJet4;
}

std::vector<TableDefinition> SystemTables(int version) {
    using enum ColumnType;
    Maker maker(version);
    std::vector<TableDefinition> tables;
    tables.push_back(maker.Make(kObjectsPage,
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
                                {{u"ParentIdName", {1, 2}, kIndexUnique, 0},
                                 {u"Id", {0}, kIndexUnique, 1, IndexKind::kPrimary}}));
    tables.push_back(maker.Make(kAccessPage,
                                {{u"ObjectId", kLong},
                                 {u"SID", kBinary, kScrambled},
                                 {u"ACM", kLong},
                                 {u"FInheritable", kBoolean}},
                                {}, {{u"ObjectId", {0}, kIndexRequired, 0}}));
    std::vector<Column> query_columns = {
        {u"ObjectId", kLong}, {u"Attribute", kByte},  {u"Order", kBinary}, {u"Name1", kText},
        {u"Name2", kText},    {u"Expression", kMemo}, {u"Flag", kShort}};
    if (version == 4) query_columns.push_back({u"LvExtra", kLong});
    tables.push_back(
        maker.Make(kQueriesPage, query_columns, {5},
                   {{u"ObjectIdAttribute", {0, 1, 2}, kIndexUnique, 0, IndexKind::kPrimary}}));
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
                                {{u"szRelationship", {0}, kIndexIgnoreNulls, 0},
                                 {u"szObject", {4}, kIndexIgnoreNulls, 1},
                                 {u"szReferencedObject", {6}, kIndexIgnoreNulls, 2}}));
    return tables;
}

Bytes SidBytes(std::uint16_t sid) {
    Bytes bytes(2);
    base::StoreLittle(bytes.data(), sid);
    return bytes;
}

std::span<const StandardObject> StandardObjects() {
    constexpr std::int16_t kContainer = 3;
    constexpr std::int16_t kDocument = 2;
    static constexpr StandardObject kObjects[] = {
        {kTablesContainer, kRootContainer, u"Tables", kContainer, kSidEngine},
        {kDatabasesContainer, kRootContainer, u"Databases", kContainer, kSidEngine},
        {kRelationsContainer, kRootContainer, u"Relationships", kContainer, kSidEngine},
        {kDatabaseDocument, kDatabasesContainer, u"MSysDb", kDocument, kSidAdmin},
        {kObjectsPage, kTablesContainer, u"MSysObjects", kObjectIsTable, kSidEngine},
        {kAccessPage, kTablesContainer, u"MSysACEs", kObjectIsTable, kSidEngine},
        {kQueriesPage, kTablesContainer, u"MSysQueries", kObjectIsTable, kSidEngine},
        {kRelationsPage, kTablesContainer, u"MSysRelationships", kObjectIsTable, kSidEngine},
    };
    return kObjects;
}

}  // namespace jet
