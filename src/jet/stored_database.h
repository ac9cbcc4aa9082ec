// StoredDatabase: Database over a page store: the catalog, the open tables, and what changes the
// design of tables.
#pragma once

#include "jet/catalog.h"
#include "jet/database.h"
#include "jet/stored_table.h"

#include <map>
#include <set>

namespace jet {

class StoredDatabase final : public Database {
public:
    StoredDatabase(std::unique_ptr<PageStore> pages, const PageHeader& header)
        : pages_(std::move(pages)), file_(*pages_, header), catalog_(file_) {}
    ~StoredDatabase() override = default;

    // Looks at the definition of the catalog. Damage is an error.
    base::Status CheckCatalog();

    bool read_only() const override { return pages_->read_only(); }
    int jet_version() const override { return file_.format.version; }
    base::Result<std::vector<std::u16string>> TableNames() override;
    base::Result<Table*> FindTable(std::u16string_view name) override;

    base::Status Begin() override { return pages_->Begin(); }
    base::Status Commit() override;
    void Rollback() override;
    bool in_transaction() const override { return pages_->in_transaction(); }

    base::Status CreateTable(const TableDesign& design) override;
    base::Status DropTable(std::u16string_view table) override;
    base::Status AddColumn(std::u16string_view table, const ColumnDesign& column) override;
    base::Status AlterColumn(std::u16string_view table, const ColumnDesign& column) override;
    base::Status DropColumn(std::u16string_view table, std::u16string_view column) override;
    base::Status CreateIndex(std::u16string_view table, const IndexDesign& index) override;
    base::Status DropIndex(std::u16string_view table, std::u16string_view index) override;

    base::Status Flush() override { return pages_->Flush(); }
    base::Status Close() override;
    PageStore& pages() override { return *pages_; }

private:
    base::Result<StoredTable*> OpenTable(const CatalogEntry& entry);

    std::unique_ptr<PageStore> pages_;
    FileContext file_;
    Catalog catalog_;
    std::map<PageNumber, std::unique_ptr<StoredTable>> tables_;  // by definition page
};

}  // namespace jet
