#include "jet/tables/storage_checks.h"
#include "jet/pages/data_page.h"

#include "base/unicode.h"
#include "jet/index/index_set.h"
#include "jet/rows/field_codec.h"
#include "jet/rows/table_scan.h"
#include "jet/tables/catalog.h"
#include "jet/tables/table_designer.h"

#include <algorithm>
#include <map>
#include <set>

namespace jet::test {
namespace {

class Checker {
public:
    Checker(PageStore& pages, const PageHeader& header) : file_(pages, header) {}

    StorageFaults Run(bool compare_keys) {
        compare_keys_ = compare_keys;
        Reach(0, "header");
        Reach(1, "global maps");
        ReachBitmaps({1, 0});
        ReachBitmaps({1, 1});
        Catalog catalog(file_);
        const auto entries = catalog.Entries();
        if (!entries.ok()) {
            Fault(entries.status().message());
            return result_;
        }
        for (const CatalogEntry& entry : *entries.value())
            if (entry.type == kObjectIsTable) CheckTable(entry);
        for (PageNumber page = 0; page < file_.store.page_count(); ++page) {
            const auto free = file_.allocator.IsFree(page);
            if (!free.ok()) Fault(free.status().message());
            const bool reached = reached_.contains(page);
            if (free.ok() && free.value() && reached)
                Fault("page " + std::to_string(page) + " is free and used: " + reached_[page]);
            if (free.ok() && !free.value() && !reached)
                Fault("page " + std::to_string(page) + " is lost");
        }
        return result_;
    }

private:
    void Fault(const std::string& text) {
        if (result_.faults.size() < 50) result_.faults.push_back(context_ + text);
    }

    void Reach(PageNumber page, const std::string& by) {
        const auto [known, added] = reached_.try_emplace(page, context_ + by);
        if (!added)
            Fault("page " + std::to_string(page) + " is used twice: " + known->second + ", " + by);
    }

    void ReachBitmaps(RowPointer map) {
        if (map.none()) return;
        const auto view = file_.store.Read(map.page);
        if (!view.ok()) return Fault(view.status().message());
        const auto page = DataPage::Parse(view.value().bytes(), file_.format);
        const auto row = page ? page->Bytes(map.row) : std::nullopt;
        if (!row || row->size() < 9) return Fault("no map at page " + std::to_string(map.page));
        if (map.page > 1) map_pages_.insert(map.page);
        if ((*row)[0] == std::byte{0}) return;
        for (std::size_t at = 1; at + 4 <= row->size(); at += 4)
            if (const auto bitmap = base::LoadLittle<std::uint32_t>(row->data() + at); bitmap != 0)
                Reach(bitmap, "bitmap");
    }

    void ReachMap(RowPointer owned, const std::string& by) {
        ReachBitmaps(owned);
        const auto members = file_.Map(owned).Members();
        if (!members.ok()) return Fault(members.status().message());
        for (const PageNumber page : members.value())
            Reach(page, by);
    }

    void CheckSubset(RowPointer free, RowPointer owned) {
        ReachBitmaps(free);
        const auto members = file_.Map(free).Members();
        if (!members.ok()) return Fault(members.status().message());
        for (const PageNumber page : members.value()) {
            const auto is_owned = file_.Map(owned).Contains(page);
            if (!is_owned.ok() || !is_owned.value())
                Fault("page " + std::to_string(page) + " has room but is not owned");
        }
    }

    void CheckTable(const CatalogEntry& entry) {
        context_ = base::ToUtf8(entry.name) + ": ";
        const auto definition =
            ReadTableDefinition(file_.store, file_.format, file_.text, entry.definition_page());
        if (!definition.ok()) return Fault(definition.status().message());
        const TableDefinition& table = definition.value();
        map_pages_.clear();
        for (const PageNumber page : table.pages)
            Reach(page, "definition");
        ReachMap(table.owned, "rows");
        CheckSubset(table.free, table.owned);
        for (const LongValueMaps& maps : table.long_values) {
            ReachMap(maps.owned, "long values");
            CheckSubset(maps.free, maps.owned);
        }
        for (const RealIndex& index : table.real_indexes)
            ReachMap(index.map, "index");
        for (const PageNumber page : map_pages_)
            if (!all_map_pages_.contains(page)) {
                all_map_pages_.insert(page);
                Reach(page, "maps");
            }
        CheckRows(table);
        context_.clear();
    }

    void CheckRows(const TableDefinition& table) {
        std::map<RowId, std::vector<Value>> rows;
        auto scan = TableScan::Start(file_, table);
        if (!scan.ok()) return Fault(scan.status().message());
        while (true) {
            const auto found = scan.value().Next();
            if (!found.ok()) return Fault(found.status().message());
            if (!found.value()) break;
            auto& values = rows[scan.value().row()];
            values.resize(table.columns.size());
            const auto row = RowView::Parse(scan.value().bytes(), file_.format);
            if (!row) return Fault("a row is unreadable");
            for (std::size_t c = 0; c < values.size(); ++c) {
                const auto status = DecodeField(file_, table.columns[c], *row, values[c]);
                if (!status.ok()) return Fault(status.message());
            }
        }
        if (rows.size() != table.rows)
            Fault("row count " + std::to_string(table.rows) + ", rows " +
                  std::to_string(rows.size()));
        const IndexSet indexes(file_, table);
        for (std::size_t index = 0; index < indexes.size(); ++index)
            CheckIndex(table, indexes, index, rows);
    }

    void CheckIndex(const TableDefinition& table, const IndexSet& indexes, std::size_t index,
                    const std::map<RowId, std::vector<Value>>& rows) {
        const bool computable = IsMaintainable(file_, table, table.real_indexes[index]);
        if (!computable) ++result_.indexes_not_computed;
        std::set<RowId> seen;
        Bytes last;
        auto place = indexes.tree(index).Seek({});
        while (place.ok() && !place.value().at_end()) {
            const auto& view = place.value().view;
            Bytes entry;
            view.CopyEntry(place.value().entry, entry);
            if (!last.empty() && !(last < entry)) Fault("index entries are out of order");
            last = entry;
            const RowId row = view.Row(place.value().entry);
            ++result_.entries_checked;
            if (!seen.insert(row).second) Fault("an index has a row twice");
            const auto found = rows.find(row);
            if (found == rows.end()) {
                Fault("an index entry has no row");
            } else if (computable && compare_keys_) {
                std::vector<Value> key_values;
                for (const std::size_t column : indexes.ColumnsOf(index))
                    key_values.push_back(found->second[column]);
                const bool left_out = table.real_indexes[index].ignore_nulls() &&
                                      std::ranges::all_of(key_values, &Value::is_null);
                entry.resize(entry.size() - kRowIdBytes);
                if (left_out || indexes.KeyOf(index, key_values) != entry)
                    Fault("index " + std::to_string(index) + ": wrong key at page " +
                          std::to_string(row.page) + " slot " + std::to_string(row.slot));
            }
            const auto status = indexes.tree(index).Next(place.value());
            if (!status.ok()) return Fault(status.message());
        }
        if (!place.ok()) return Fault(place.status().message());
        for (const auto& [row, values] : rows) {
            if (seen.contains(row)) continue;
            bool all_null = true;
            for (const std::size_t column : indexes.ColumnsOf(index))
                all_null = all_null && values[column].is_null();
            if (!table.real_indexes[index].ignore_nulls() || !all_null)
                Fault("index " + std::to_string(index) + " misses a row");
        }
    }

    FileContext file_;
    bool compare_keys_ = true;
    StorageFaults result_;
    std::string context_;
    std::map<PageNumber, std::string> reached_;
    std::set<PageNumber> map_pages_;
    std::set<PageNumber> all_map_pages_;
};

}  // namespace

StorageFaults CheckStorage(PageStore& pages, bool compare_keys) {
    const auto page = pages.Read(0);
    if (!page.ok()) return {{page.status().message()}};
    const auto header = ReadPageHeader(page.value().bytes(), "file");
    if (!header.ok()) return {{header.status().message()}};
    return Checker(pages, header.value()).Run(compare_keys);
}

}  // namespace jet::test
