#include "jet/stored_database.h"

#include "jet/storage_errors.h"

namespace jet {

base::Status StoredDatabase::CheckCatalog() {
    ASSIGN_OR_RETURN(const PageView page, pages_->Read(kObjectsPage));
    if (page.bytes()[0] != static_cast<std::byte>(PageType::kDefinition))
        return errors::DamagedPage(kObjectsPage, "not a table definition");
    return {};
}

base::Result<std::vector<std::u16string>> StoredDatabase::TableNames() {
    ASSIGN_OR_RETURN(const auto* entries, catalog_.Entries());
    std::vector<std::u16string> names;
    for (const CatalogEntry& entry : *entries)
        if (entry.is_user_table()) names.push_back(entry.name);
    return names;
}

base::Result<StoredTable*> StoredDatabase::OpenTable(const CatalogEntry& entry) {
    const auto known = tables_.find(entry.definition_page());
    if (known != tables_.end()) return known->second.get();
    ASSIGN_OR_RETURN(const PropertyBlob properties, catalog_.Properties(entry));
    ASSIGN_OR_RETURN(auto table,
                     StoredTable::Open(file_, entry.definition_page(), entry.name, properties));
    StoredTable* opened = table.get();
    tables_[entry.definition_page()] = std::move(table);
    return opened;
}

base::Result<Table*> StoredDatabase::FindTable(std::u16string_view name) {
    ASSIGN_OR_RETURN(const CatalogEntry* entry, catalog_.FindTable(name));
    if (entry == nullptr) return errors::NoSuchTable(name);
    ASSIGN_OR_RETURN(StoredTable * table, OpenTable(*entry));
    return static_cast<Table*>(table);
}

base::Status StoredDatabase::Commit() {
    return pages_->Commit();
}

void StoredDatabase::Rollback() {
    pages_->Rollback();
}

base::Status StoredDatabase::Close() {
    tables_.clear();
    catalog_.Forget();
    return pages_->Close();
}

base::Status StoredDatabase::CreateTable(const TableDesign&) {
    return errors::ReadOnly();
}
base::Status StoredDatabase::DropTable(std::u16string_view) {
    return errors::ReadOnly();
}
base::Status StoredDatabase::AddColumn(std::u16string_view, const ColumnDesign&) {
    return errors::ReadOnly();
}
base::Status StoredDatabase::AlterColumn(std::u16string_view, const ColumnDesign&) {
    return errors::ReadOnly();
}
base::Status StoredDatabase::DropColumn(std::u16string_view, std::u16string_view) {
    return errors::ReadOnly();
}
base::Status StoredDatabase::CreateIndex(std::u16string_view, const IndexDesign&) {
    return errors::ReadOnly();
}
base::Status StoredDatabase::DropIndex(std::u16string_view, std::u16string_view) {
    return errors::ReadOnly();
}

base::Result<std::unique_ptr<Database>> OpenDatabase(std::unique_ptr<PageStore> pages,
                                                     std::string_view path) {
    PageHeader header;
    {
        ASSIGN_OR_RETURN(const PageView page, pages->Read(0));
        ASSIGN_OR_RETURN(header, ReadPageHeader(page.bytes(), path));
    }
    if (header.encoding_key != 0)
        return errors::UnsupportedDatabase(path, "the database is encoded (encrypted)");
    if (header.has_password) return errors::NotAValidPassword(path);
    if (pages->page_count() <= kObjectsPage) return errors::NotADatabase(path);
    auto database = std::make_unique<StoredDatabase>(std::move(pages), header);
    if (!database->CheckCatalog().ok()) return errors::NotADatabase(path);
    return std::unique_ptr<Database>(std::move(database));
}

}  // namespace jet
