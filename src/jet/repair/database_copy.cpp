#include "jet/repair/database_copy.h"

#include "jet/check/check.h"
#include "jet/errors.h"
#include "jet/pages/file_mark.h"
#include "jet/repair/object_ids.h"
#include "jet/repair/table_builder.h"
#include "jet/rows/table_scan.h"
#include "jet/tables/catalog.h"

#include <algorithm>
#include <map>

namespace jet {
namespace {

constexpr std::uint64_t kRowsBetweenReports = 256;

base::Status MustBeSound(PageStore& source) {
    const CheckReport report = CheckIntegrity(source);
    for (const Finding& finding : report.findings)
        if (finding.severity == Severity::kFault) return Damaged(Describe(finding));
    return report.sound() ? base::Status() : Damaged("it has faults");
}

class DatabaseCopy {
public:
    DatabaseCopy(FileContext& source, NewFile& target, CompactReport& report,
                 const CompactProgress& progress)
        : source_(source), target_(target), report_(report), progress_(progress), catalog_(source) {
    }

    base::Status Run() {
        RETURN_IF_ERROR(FindTables());
        for (const Table& table : tables_)
            RETURN_IF_ERROR(CopyTable(table));
        return {};
    }

private:
    struct Table {
        std::u16string name;
        TableDefinition definition;
    };

    // The engine's own tables first: their definitions have fixed places.
    base::Status FindTables() {
        ASSIGN_OR_RETURN(const auto* entries, catalog_.Entries());
        for (const bool own : {true, false})
            for (const CatalogEntry& entry : *entries) {
                if (entry.type != kObjectIsTable) {
                    ids_.AddObject(static_cast<std::uint32_t>(entry.id));
                    continue;
                }
                if (IsOwn(entry.definition_page()) != own) continue;
                ASSIGN_OR_RETURN(TableDefinition definition,
                                 ReadTableDefinition(source_.store, source_.format, source_.text,
                                                     entry.definition_page()));
                total_rows_ += definition.rows;
                tables_.push_back({entry.name, std::move(definition)});
                PageNumber page = entry.definition_page();
                if (!own) {
                    ASSIGN_OR_RETURN(page, target_.context().allocator.Allocate());
                }
                ids_.AddTable(entry.definition_page(), page);
            }
        return {};
    }
    static bool IsOwn(PageNumber definition) { return definition <= kRelationsPage; }

    base::Status CopyTable(const Table& table) {
        const TableDefinition& definition = table.definition;
        FileContext& file = target_.context();
        TableBuilder builder(file, definition, ids_.NewPage(definition.page));
        MapRows own_maps(file);
        RETURN_IF_ERROR(builder.Start(IsOwn(definition.page) ? target_.system_maps() : own_maps));
        std::map<RowId, RowId> places;
        RETURN_IF_ERROR(CopyRows(table, builder, places));
        RETURN_IF_ERROR(CopyEntries(definition, builder, places));
        for (LogicalIndex& index : builder.definition().logical_indexes)
            if (index.side != RelationSide::kNone)
                index.other_table = ids_.NewPage(index.other_table);
        RETURN_IF_ERROR(builder.BuildIndexes());
        ++report_.tables;
        RETURN_IF_ERROR(Tell());
        return builder.WriteDefinition();
    }

    // In stored order: without ORDER BY, statements find the rows as they did before.
    base::Status CopyRows(const Table& table, TableBuilder& builder,
                          std::map<RowId, RowId>& places) {
        const TableDefinition& definition = table.definition;
        ASSIGN_OR_RETURN(TableScan scan, TableScan::Start(source_, definition));
        while (true) {
            ASSIGN_OR_RETURN(const bool found, scan.Next());
            if (!found) return {};
            const auto view = RowView::Parse(scan.bytes(), source_.format);
            if (!view) return DamagedPage(scan.row().page, "a row is unreadable");
            ASSIGN_OR_RETURN(CopiedRow row, CopyRow(source_, definition, *view));
            if (!ids_.Renew(definition, table.name, row)) {
                ++report_.rows_left_out;
                continue;
            }
            ASSIGN_OR_RETURN(IndexSet::Keys keys, builder.KeysOf(row));
            ASSIGN_OR_RETURN(places[scan.row()], builder.AddRow(row, std::move(keys)));
            if (++report_.rows % kRowsBetweenReports == 0) RETURN_IF_ERROR(Tell());
        }
    }

    // Row counts may have drifted.
    base::Status Tell() const {
        if (!progress_) return {};
        return progress_(std::min(report_.rows, total_rows_), total_rows_);
    }

    // Of the indexes whose order the engine does not know: the keys are kept as they are.
    base::Status CopyEntries(const TableDefinition& definition, TableBuilder& builder,
                             const std::map<RowId, RowId>& places) {
        for (std::size_t index = 0; index < definition.real_indexes.size(); ++index) {
            if (builder.IsComputed(index)) continue;
            const RealIndex& real = definition.real_indexes[index];
            const IndexTree tree(source_, definition.page, real.root, real.map);
            ASSIGN_OR_RETURN(IndexTree::Place place, tree.Seek({}));
            for (; !place.at_end();) {
                const auto found = places.find(place.view.Row(place.entry));
                if (found != places.end()) {
                    Bytes key;
                    place.view.CopyEntry(place.entry, key);
                    key.resize(key.size() - kRowIdBytes);
                    builder.AddEntry(index, std::move(key), found->second);
                }
                RETURN_IF_ERROR(tree.Next(place));
            }
        }
        return {};
    }

    FileContext& source_;
    NewFile& target_;
    CompactReport& report_;
    const CompactProgress& progress_;
    Catalog catalog_;
    ObjectIds ids_;
    std::vector<Table> tables_;
    std::uint64_t total_rows_ = 0;
};

}  // namespace

base::Result<std::unique_ptr<NewFile>> CopyDatabase(PageStore& source, CompactReport& report,
                                                    const CompactProgress& progress) {
    RETURN_IF_ERROR(MustBeSound(source));
    ASSIGN_OR_RETURN(const PageView page, source.Read(0));
    ASSIGN_OR_RETURN(const PageHeader header, ReadPageHeader(page.bytes(), "file"));
    ASSIGN_OR_RETURN(auto target, NewFile::Make({page.bytes().begin(), page.bytes().end()}));
    FileContext context(source, header);
    RETURN_IF_ERROR(DatabaseCopy(context, *target, report, progress).Run());
    report.mark_before = ReadFileMark(page.bytes());
    ASSIGN_OR_RETURN(const PageView new_page, target->store().Read(0));
    report.mark_after = ReadFileMark(new_page.bytes());
    report.page_size = source.page_size();
    report.pages_before = source.page_count();
    report.pages_after = target->page_count();
    return target;
}

}  // namespace jet
