// StoredDatabase: Database over a page store: the catalog, the open tables, and what changes the
// design of tables.
#pragma once

#include "jet/tables/catalog.h"
#include "jet/tables/database.h"
#include "jet/tables/map_rows.h"
#include "jet/tables/stored_table.h"
#include "jet/values/system_clock.h"

#include <map>
#include <set>

namespace jet {

class StoredDatabase final : public Database, private TableSource {
public:
    StoredDatabase(std::unique_ptr<PageStore> pages, const PageHeader& header)
        : pages_(std::move(pages)), file_(*pages_, header), catalog_(file_),
          recorder_(pages_->takes_notes() ? std::make_unique<ChangeRecorder>() : nullptr) {}
    ~StoredDatabase() override = default;

    // Looks at the definition of the catalog. Damage is an error.
    base::Status CheckCatalog();

    bool read_only() const override { return pages_->read_only(); }
    int jet_version() const override { return file_.format.version; }
    base::Result<std::vector<std::u16string>> TableNames() override;
    base::Result<Table*> FindTable(std::u16string_view name) override;

    base::Status Begin() override;
    base::Status Commit() override;
    void Rollback() override;
    bool in_transaction() const override { return pages_->in_transaction(); }
    std::uint64_t changes() const override { return changes_; }
    void UseLabels(const std::function<ChangeLabel()>& labels) override { labels_ = labels; }
    void UseClock(const std::function<double()>& clock) override { clock_ = clock; }
    std::size_t recorded_rows() const override { return recorder_ ? recorder_->row_count() : 0; }
    std::span<const std::byte> recorded() const override {
        return recorder_ ? std::span(recorder_->rows()) : std::span<const std::byte>();
    }

    base::Status CreateTable(const TableDesign& design) override;
    base::Status DropTable(std::u16string_view table) override;
    base::Status AddColumn(std::u16string_view table, const ColumnDesign& column) override;
    base::Status AlterColumn(std::u16string_view table, const ColumnDesign& column) override;
    base::Status DropColumn(std::u16string_view table, std::u16string_view column) override;
    base::Status CreateIndex(std::u16string_view table, const IndexDesign& index) override;
    base::Status DropIndex(std::u16string_view table, std::u16string_view index) override;
    base::Status CreateRelation(const RelationDesign& relation) override;
    base::Status DropRelation(std::u16string_view table, std::u16string_view relation) override;

    void UseRowRules(std::unique_ptr<const RowRuleMaker> maker) override;

    base::Status Flush() override { return pages_->Flush(); }
    base::Status Close() override;
    PageStore& pages() override { return *pages_; }

private:
    base::Result<StoredTable*> OpenTable(const CatalogEntry& entry);
    base::Result<StoredTable*> TableAt(PageNumber definition) override;
    // What the open transaction says of its rows; empty: nothing.
    Bytes MakeNote();

    // The steps that changes of a design share. `RequireTable`: 3078; 3027 for the engine's own
    // tables.
    base::Status CheckWritable() const;
    base::Result<CatalogEntry> RequireTable(std::u16string_view name);
    base::Result<TableDefinition> ReadDefinition(const CatalogEntry& entry);
    // Writes the definition; what was cached of the table is dropped, and the change is
    // dated.
    base::Status FinishChange(const CatalogEntry& entry, TableDefinition& definition);
    base::Status SetProperties(const CatalogEntry& entry, const PropertyBlob& properties);
    base::Status Redate(const CatalogEntry& entry);
    void ForgetTable(PageNumber definition);

    // `container`: the one that the object stands in; permissions are inherited from it.
    base::Status AddToCatalog(std::u16string_view name, std::int32_t id, std::int16_t type,
                              std::int32_t container);
    base::Status AddPermissions(std::int32_t id, std::int32_t container);
    base::Status RemoveFromCatalog(const CatalogEntry& entry);
    base::Result<std::int32_t> NextObjectId();
    base::Result<bool> RelationExists(std::u16string_view name);
    base::Result<std::u16string> NameOfRelation(const RelationDesign& relation);
    base::Status AddRelationRows(const RelationDesign& relation, std::int32_t flags);
    base::Status RemoveRelationRows(std::u16string_view name);

    base::Status AddIndex(TableDefinition& definition, const IndexDesign& index,
                          const std::vector<std::size_t>& positions, MapRows& maps);
    // The real index that keeps the referring side of a relation.
    struct ReferringIndex {
        std::uint32_t real = 0;
        bool is_new = false;  // its tree is still to be built
    };
    // An index of these columns (numbers) if there is one, otherwise a new one.
    base::Result<ReferringIndex> FindOrAddIndex(TableDefinition& definition,
                                                const std::vector<std::uint16_t>& columns,
                                                const std::u16string& relation);
    // An empty tree; `real` tells columns and flags.
    base::Status AddRealIndex(TableDefinition& definition, RealIndex real, MapRows& maps);
    // Makes the entries of index `real` anew from the rows. 3022, 3058.
    base::Status BuildIndex(const TableDefinition& definition, std::size_t real);
    base::Status RemoveRealIndex(TableDefinition& definition, std::size_t real, MapRows& maps);
    // Real indexes that no logical one uses any more.
    base::Status RemoveUnusedIndexes(TableDefinition& definition);
    base::Status RewriteRows(const TableDefinition& definition);
    base::Status ResizeText(const CatalogEntry& entry, TableDefinition& definition,
                            std::size_t position, const ColumnDesign& design);
    base::Status ConvertColumn(const CatalogEntry& entry, TableDefinition& definition,
                               std::size_t position, const ColumnDesign& design);
    base::Status ConvertValues(const TableDefinition& definition, const ColumnDesign& design,
                               std::uint16_t from, std::uint16_t to);
    bool RulesNeed(const TableDesign& design, std::u16string_view column) const;
    base::Status RemoveColumn(TableDefinition& definition, std::uint16_t number, MapRows& maps);
    base::Result<std::vector<RowId>> AllRows(const TableDefinition& definition);

    std::unique_ptr<PageStore> pages_;
    FileContext file_;
    Catalog catalog_;
    std::unique_ptr<ChangeRecorder> recorder_;  // nullptr: changes are not recorded
    std::function<double()> clock_ = SystemNow;
    std::function<ChangeLabel()> labels_;             // empty: changes have no label
    ChangeLabel label_;                               // of the open transaction, if it is recorded
    std::unique_ptr<const RowRuleMaker> rule_maker_;  // nullptr: not known yet
    std::map<PageNumber, std::unique_ptr<StoredTable>> tables_;  // by definition page
    std::uint64_t changes_ = 0;
    std::set<PageNumber> changed_;  // tables whose design the open transaction has changed
};

}  // namespace jet
