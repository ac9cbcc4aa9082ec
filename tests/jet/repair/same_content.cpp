#include "jet/repair/same_content.h"

#include "base/unicode.h"
#include "jet/index/index_tree.h"
#include "jet/pages/file_mark.h"
#include "jet/rows/field_codec.h"
#include "jet/rows/table_scan.h"
#include "jet/tables/catalog.h"
#include "jet/tables/storage_support.h"
#include "jet/tables/system_tables.h"
#include "jet/text/names.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <sstream>

namespace jet::test {
namespace {

using Row = std::vector<Value>;

PageHeader HeaderOf(PageStore& store) {
    return ReadPageHeader(store.Read(0).value().bytes(), "file").value();
}

// One of the two files.
struct Side {
    explicit Side(PageStore& pages) : file(pages, HeaderOf(pages)), catalog(file) {
        for (const CatalogEntry& entry : *catalog.Entries().value()) {
            ids[entry.id] = entry.type == kObjectIsTable ? "table " + base::ToUtf8(entry.name)
                                                         : std::to_string(entry.id);
            if (entry.type == kObjectIsTable) tables[entry.name] = entry.definition_page();
        }
    }

    std::string NameOfId(std::int32_t id) const {
        const auto found = ids.find(id);
        return found == ids.end() ? "" : found->second;
    }

    FileContext file;
    Catalog catalog;
    std::map<std::int32_t, std::string> ids;  // what they are of
    std::map<std::u16string, PageNumber> tables;
};

struct StoredTableContent {
    TableDefinition definition;
    std::vector<Row> rows;  // as stored
    std::vector<RowId> places;
    std::vector<std::vector<std::size_t>> through_index;  // positions among `rows`
};

std::vector<std::size_t> OrderThrough(Side& side, const StoredTableContent& table,
                                      const RealIndex& index) {
    std::map<RowId, std::size_t> positions;
    for (std::size_t i = 0; i < table.places.size(); ++i)
        positions[table.places[i]] = i;
    std::vector<std::size_t> order;
    const IndexTree tree(side.file, table.definition.page, index.root, index.map);
    auto place = tree.Seek({});
    EXPECT_TRUE(place.ok()) << place.status().message();
    while (place.ok() && !place->at_end()) {
        const auto found = positions.find(place->view.Row(place->entry));
        if (found != positions.end()) order.push_back(found->second);
        const auto next = tree.Next(*place);
        EXPECT_TRUE(next.ok()) << next.message();
        if (!next.ok()) break;
    }
    return order;
}

// Ids of tables become their names. False: the row is about nothing that is there.
bool NameIds(const Side& side, const std::u16string& name, const TableDefinition& table, Row& row) {
    for (std::size_t i = 0; i < row.size(); ++i) {
        const std::u16string& column = table.columns[i].name;
        const bool is_id = (name == u"MSysObjects" && column == u"Id") ||
                           (name == u"MSysACEs" && column == u"ObjectId") ||
                           (name == u"MSysNavPaneObjectIDs" && column == u"Id") ||
                           (name == u"MSysNameMap" && column == u"Id");
        const auto* id = row[i].get_if<std::int32_t>();
        if (!is_id || id == nullptr || *id == 0x0F000000) continue;
        const std::string named = side.NameOfId(*id);
        if (named.empty()) return false;
        row[i] = Value::Text(base::ToUtf16(named));
    }
    return true;
}

StoredTableContent ReadTable(Side& side, const std::u16string& name) {
    StoredTableContent table;
    FileContext& file = side.file;
    table.definition =
        ReadTableDefinition(file.store, file.format, file.text, side.tables[name]).value();
    TableScan scan = TableScan::Start(file, table.definition).value();
    while (scan.Next().value()) {
        const auto view = RowView::Parse(scan.bytes(), file.format);
        Row row(table.definition.columns.size());
        for (std::size_t i = 0; i < row.size(); ++i) {
            const auto status = DecodeField(file, table.definition.columns[i], *view, row[i]);
            EXPECT_TRUE(status.ok()) << status.message();
        }
        if (!NameIds(side, name, table.definition, row)) continue;
        table.rows.push_back(std::move(row));
        table.places.push_back(scan.row());
    }
    for (const RealIndex& index : table.definition.real_indexes)
        table.through_index.push_back(OrderThrough(side, table, index));
    return table;
}

std::string Describe(const ColumnDefinition& c) {
    return base::ToUtf8(c.name) + " type " + std::to_string(static_cast<int>(c.type)) +
           " ordinal " + std::to_string(c.ordinal) + " length " + std::to_string(c.length) +
           " flags " + std::to_string(c.flags) + " " + std::to_string(c.extended_flags) +
           " digits " + std::to_string(c.precision) + " " + std::to_string(c.scale) + " sort " +
           std::to_string(c.sort_order) + " " + std::to_string(c.sort_version) + " page " +
           std::to_string(c.code_page);
}

std::string Describe(const Side& side, const TableDefinition& table, const LogicalIndex& index) {
    std::string text = base::ToUtf8(index.name) + " number " + std::to_string(index.number) +
                       " kind " + std::to_string(static_cast<int>(index.kind)) + " side " +
                       std::to_string(static_cast<int>(index.side)) + " partner " +
                       std::to_string(index.partner) + " cascades " +
                       std::to_string(index.cascade_updates) +
                       std::to_string(index.cascade_deletes);
    if (index.side != RelationSide::kNone)
        text += " with " + side.NameOfId(static_cast<std::int32_t>(index.other_table));
    const RealIndex& real = table.real_indexes[index.real];
    text += " flags " + std::to_string(real.flags);
    for (const RealIndexColumn& column : real.columns)
        text += " " + base::ToUtf8(table.FindColumn(column.column)->name) +
                (column.ascending ? "+" : "-");
    return text;
}

std::string Describe(const Row& row) {
    std::string text;
    for (const Value& value : row)
        text += test::Describe(value) + " | ";
    return text;
}

void ExpectSameDesign(const Side& a, const TableDefinition& of_a, const Side& b,
                      const TableDefinition& of_b) {
    EXPECT_EQ(of_a.kind, of_b.kind);
    EXPECT_EQ(of_a.last_autonumber, of_b.last_autonumber);
    ASSERT_EQ(of_a.columns.size(), of_b.columns.size());
    for (std::size_t i = 0; i < of_a.columns.size(); ++i)
        EXPECT_EQ(Describe(of_a.columns[i]), Describe(of_b.columns[i]));
    ASSERT_EQ(of_a.logical_indexes.size(), of_b.logical_indexes.size());
    ASSERT_EQ(of_a.real_indexes.size(), of_b.real_indexes.size());
    // The order in which they stand means nothing.
    const auto indexes = [](const Side& side, const TableDefinition& table) {
        std::set<std::string> all;
        for (const LogicalIndex& index : table.logical_indexes)
            all.insert(Describe(side, table, index));
        return all;
    };
    EXPECT_EQ(indexes(a, of_a), indexes(b, of_b));
}

std::optional<std::string> SchemaOf(const std::filesystem::path& path) {
    const auto schema = OutputOf({"mdb-schema", path.string()});
    if (!schema) return std::nullopt;
    std::istringstream text(*schema);
    std::multiset<std::string> lines;  // indexes may stand in any order
    for (std::string line; std::getline(text, line);)
        lines.insert(line);
    std::string sorted;
    for (const std::string& line : lines)
        sorted += line + "\n";
    return sorted;
}

void ExpectSameTable(Side& a, Side& b, const std::u16string& name) {
    SCOPED_TRACE(base::ToUtf8(name));
    const StoredTableContent of_a = ReadTable(a, name);
    const StoredTableContent of_b = ReadTable(b, name);
    ExpectSameDesign(a, of_a.definition, b, of_b.definition);
    EXPECT_EQ(of_b.definition.rows, of_b.rows.size());
    ASSERT_EQ(of_a.rows.size(), of_b.rows.size());
    for (std::size_t i = 0; i < of_a.rows.size(); ++i)
        ASSERT_EQ(of_a.rows[i], of_b.rows[i]) << "row " << i << "\n"
                                              << Describe(of_a.rows[i]) << "\n"
                                              << Describe(of_b.rows[i]);
    // Rows with equal keys go by their places, which are others in another file.
    for (std::size_t i = 0; i < of_a.through_index.size(); ++i) {
        const auto& order_a = of_a.through_index[i];
        const auto& order_b = of_b.through_index[i];
        ASSERT_EQ(order_a.size(), order_b.size()) << "index " << i;
        const auto key = [&](const StoredTableContent& table, std::size_t row) {
            Row values;
            for (const RealIndexColumn& column : table.definition.real_indexes[i].columns)
                values.push_back(table.rows[row][static_cast<std::size_t>(
                    table.definition.FindColumn(column.column) - table.definition.columns.data())]);
            return values;
        };
        for (std::size_t at = 0; at < order_a.size(); ++at)
            ASSERT_TRUE(order_a[at] == order_b[at] ||
                        (name.starts_with(u"MSys") ||
                         Describe(key(of_a, order_a[at])) == Describe(key(of_b, order_b[at]))))
                << "index " << i << " entry " << at;
    }
}

std::vector<std::byte> FirstPage(PageStore& store) {
    const PageView view = store.Read(0).value();
    std::vector<std::byte> page(view.bytes().begin(), view.bytes().end());
    StoreFileMark(std::span(page).subspan(FileMarkOffset(store.page_size()), kFileMarkBytes), 1);
    return page;
}

// Whether a table has a row that is stored at another place than its own.
bool HasMovedRows(Side& side, PageNumber definition) {
    FileContext& file = side.file;
    const auto table = ReadTableDefinition(file.store, file.format, file.text, definition).value();
    const std::vector<PageNumber> pages = file.Map(table.owned).Members().value();
    for (const PageNumber page : pages) {
        const PageView view = file.store.Read(page).value();
        const auto data = DataPage::Parse(view.bytes(), file.format);
        for (std::size_t slot = 0; data && slot < data->slot_count(); ++slot)
            if (data->Flags(slot) == kSlotMoved || data->Flags(slot) == kSlotTarget) return true;
    }
    return false;
}

}  // namespace

void ExpectSameContent(PageStore& original, PageStore& copy) {
    EXPECT_EQ(FirstPage(original), FirstPage(copy));
    Side a(original);
    Side b(copy);
    const auto* of_a = a.catalog.Entries().value();
    const auto* of_b = b.catalog.Entries().value();
    ASSERT_EQ(of_a->size(), of_b->size());
    for (std::size_t i = 0; i < of_a->size(); ++i) {
        EXPECT_EQ((*of_a)[i].name, (*of_b)[i].name);
        EXPECT_EQ((*of_a)[i].type, (*of_b)[i].type);
        EXPECT_EQ((*of_a)[i].parent, (*of_b)[i].parent);
    }
    for (const auto& [name, page] : a.tables)
        ExpectSameTable(a, b, name);
}

void ExpectSameExports(const std::filesystem::path& original, const std::filesystem::path& copy) {
    const auto schema = SchemaOf(original);
    ASSERT_TRUE(schema);
    EXPECT_EQ(schema, SchemaOf(copy));
    const auto pages = LoadIntoMemory(original);
    Side side(*pages);
    for (const auto& [name, page] : side.tables) {
        if (name.starts_with(u"MSys")) continue;  // these hold ids of tables
        const std::string table = base::ToUtf8(name);
        SCOPED_TRACE(table);
        auto rows = ExportedRows(original, table);
        auto copied = ExportedRows(copy, table);
        ASSERT_TRUE(rows && copied);
        // A row that was moved is printed where it was moved to.
        if (HasMovedRows(side, page)) {
            std::ranges::sort(*rows);
            std::ranges::sort(*copied);
        }
        EXPECT_EQ(rows, copied);
    }
}

}  // namespace jet::test
