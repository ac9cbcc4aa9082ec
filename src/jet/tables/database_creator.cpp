// A new, empty file: the pages that the engine itself writes for one, 16 in version 4, 20 in
// version 3.
#include "jet/errors.h"
#include "jet/index/index_set.h"
#include "jet/pages/bit_set_view.h"
#include "jet/pages/data_page.h"
#include "jet/pages/page_header.h"
#include "jet/rows/row_writer.h"
#include "jet/tables/catalog.h"
#include "jet/tables/database.h"
#include "jet/tables/system_tables.h"
#include "jet/values/conversions.h"

#include <algorithm>
#include <cstring>

namespace jet {
namespace {

struct AccessRow {
    std::int32_t object;
    std::uint16_t sid;
    std::int32_t mask;
    bool inheritable;
};

constexpr AccessRow kAccess[] = {
    {kObjectsPage, kSidAdmin, 0x60000, false},
    {kAccessPage, kSidAdmin, 0x60000, false},
    {kQueriesPage, kSidAdmin, 0x60000, false},
    {kRelationsPage, kSidAdmin, 0xE0000, false},
    {kTablesContainer, kSidCreator, 0xF00FE, true},
    {kTablesContainer, kSidAdmin, 0x60001, false},
    {kRelationsContainer, kSidCreator, 0xF00FE, true},
    {kRelationsContainer, kSidAdmin, 0x60001, false},
    {kDatabasesContainer, kSidAdmin, 0x60000, false},
    {kDatabaseDocument, kSidAdmin, 0x6000E, false},
    {kDatabaseDocument, kSidUsers, 0xE, false},
    {kQueriesPage, kSidUsers, 0x14, false},
    {kRelationsPage, kSidUsers, 0x14, false},
    {kObjectsPage, kSidUsers, 0x14, false},
    {kTablesContainer, kSidUsers, 0xFFEFF, true},
    {kRelationsContainer, kSidUsers, 0xFFFFF, true},
};

// Puts rows into a system table, with their index entries.
class Filler {
public:
    Filler(FileContext& file, const TableDefinition& table)
        : file_(file), table_(table), indexes_(file, table_), rows_(file, table_) {}

    base::Status Insert(std::vector<Value> by_number) {
        std::vector<Value> values(table_.columns.size());
        for (std::size_t i = 0; i < values.size(); ++i) {
            const std::uint16_t number = table_.columns[i].number;
            if (number < by_number.size()) values[i] = by_number[number];
        }
        ASSIGN_OR_RETURN(const RowId row, rows_.Insert(values));
        const IndexSet::Keys keys = indexes_.KeysOf(values);
        for (std::size_t index = 0; index < keys.size(); ++index)
            RETURN_IF_ERROR(indexes_.Insert(index, keys[index], row));
        ASSIGN_OR_RETURN(const std::span<std::byte> page, file_.store.Change(table_.page));
        DefinitionCounters counters = ReadDefinitionCounters(page, file_.format);
        ++counters.rows;
        WriteDefinitionCounters(page, file_.format, counters);
        return {};
    }

private:
    FileContext& file_;
    const TableDefinition& table_;
    IndexSet indexes_;
    RowWriter rows_;
};

base::Status WriteGlobalMaps(FileContext& file, PageNumber page_count) {
    ASSIGN_OR_RETURN(const std::span<std::byte> page, file.store.Change(kGlobalMapPage));
    DataPageEditor editor = DataPageEditor::Create(page, file.format, kGlobalMapOwner);
    std::vector<std::byte> free_pages = MakeMapRow(file.format);
    for (std::size_t bit = page_count; bit < 8 * (free_pages.size() - kInlineHead); ++bit)
        AssignBit(std::span(free_pages).subspan(kInlineHead), bit, true);
    editor.Append(free_pages, 0);
    editor.Append(MakeMapRow(file.format), 0);
    return {};
}

// Maps are written in the order in which `SystemTables` placed them, page by page.
class SystemMapWriter {
public:
    explicit SystemMapWriter(FileContext& file) : file_(file) {}

    base::Status Write(const TableDefinition& table, PageNumber rows) {
        RETURN_IF_ERROR(Append(table.owned, rows));
        RETURN_IF_ERROR(Append(table.free, rows));
        for (const LongValueMaps& maps : table.long_values) {
            RETURN_IF_ERROR(Append(maps.owned, 0));
            RETURN_IF_ERROR(Append(maps.free, 0));
        }
        for (const RealIndex& index : table.real_indexes)
            RETURN_IF_ERROR(Append(index.map, index.root));
        return {};
    }

private:
    base::Status Append(RowPointer map, PageNumber only_member) {
        if (map.row == 0) {
            ASSIGN_OR_RETURN(const std::span<std::byte> page, file_.store.Change(map.page));
            editor_ = DataPageEditor::Create(page, file_.format, kMapOwner);
        }
        editor_->Append(MakeMapRow(file_.format, only_member), 0);
        return {};
    }

    FileContext& file_;
    std::optional<DataPageEditor> editor_;
};

base::Status FillPages(FileContext& file, double now) {
    std::vector<TableDefinition> tables = SystemTables(file.format.version);
    const SystemPages& pages = SystemPagesOf(file.format.version);
    RETURN_IF_ERROR(WriteGlobalMaps(file, pages.page_count));
    SystemMapWriter maps(file);
    for (TableDefinition& table : tables) {
        RETURN_IF_ERROR(maps.Write(table, table.page == kObjectsPage  ? pages.objects_rows
                                          : table.page == kAccessPage ? pages.access_rows
                                                                      : 0));
        RETURN_IF_ERROR(
            WriteTableDefinition(file.store, file.format, file.text, file.allocator, table));
        for (const RealIndex& index : table.real_indexes)
            RETURN_IF_ERROR(IndexTree(file, table.page, index.root, index.map).Create());
    }
    for (const PageNumber page : {pages.objects_rows, pages.access_rows}) {
        ASSIGN_OR_RETURN(const std::span<std::byte> bytes, file.store.Change(page));
        DataPageEditor::Create(bytes, file.format,
                               page == pages.objects_rows ? kObjectsPage : kAccessPage);
    }
    Filler objects(file, tables[0]);
    for (const StandardObject& row : StandardObjects())
        RETURN_IF_ERROR(
            objects.Insert({Value::Long(row.id), Value::Long(row.parent), Value::Text(row.name),
                            Value::Short(row.type), Value::DateTime(now), Value::DateTime(now),
                            Value::Binary(SidBytes(row.owner)), Value::Long(kEngineObject)}));
    Filler access(file, tables[1]);
    for (const AccessRow& row : kAccess)
        RETURN_IF_ERROR(access.Insert({Value::Long(row.object), Value::Binary(SidBytes(row.sid)),
                                       Value::Long(row.mask), Value::Boolean(row.inheritable)}));
    return {};
}

base::Status WriteNewFile(FileSystem& files, const std::filesystem::path& path, PageStore& pages) {
    std::vector<std::byte> bytes;
    for (PageNumber page = 0; page < pages.page_count(); ++page) {
        ASSIGN_OR_RETURN(const PageView view, pages.Read(page));
        bytes.insert(bytes.end(), view.bytes().begin(), view.bytes().end());
    }
    ASSIGN_OR_RETURN(const auto file, files.Open(path, OpenMode::kCreate));
    RETURN_IF_ERROR(file->WriteAt(0, bytes));
    RETURN_IF_ERROR(file->Sync());
    return files.SyncFolder(path.has_parent_path() ? path.parent_path() : ".");
}

}  // namespace

base::Result<std::unique_ptr<PageStore>> MakeEmptyDatabase(double now, int version) {
    const Format& format = FormatOf(version);
    std::vector<std::byte> bytes = MakePageHeader(version, now);
    ASSIGN_OR_RETURN(const PageHeader header, ReadPageHeader(bytes, ""));
    bytes.resize(std::size_t{SystemPagesOf(version).page_count} * format.page_size);
    auto store = MakeMemoryPageStore(format.page_size, bytes);
    FileContext file(*store, header);
    RETURN_IF_ERROR(store->Begin());
    RETURN_IF_ERROR(FillPages(file, now));
    RETURN_IF_ERROR(store->Commit());
    return store;
}

base::Status WriteDatabaseFile(FileSystem& files, const std::filesystem::path& path,
                               PageStore& pages) {
    if (files.Exists(path)) return JetError(ErrorNumber::kDatabaseExists);
    base::Status written = WriteNewFile(files, path, pages);
    if (!written.ok()) files.Remove(path).Ignore();
    return written;
}

base::Status CreateDatabaseFile(FileSystem& files, const std::filesystem::path& path, double now,
                                int version) {
    if (files.Exists(path)) return JetError(ErrorNumber::kDatabaseExists);
    ASSIGN_OR_RETURN(const auto pages, MakeEmptyDatabase(now, version));
    return WriteDatabaseFile(files, path, *pages);
}

}  // namespace jet
