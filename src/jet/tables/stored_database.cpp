#include "jet/tables/stored_database.h"

#include "jet/errors.h"
#include "jet/tables/automatic_change.h"

namespace jet {

base::Status StoredDatabase::CheckCatalog() {
    ASSIGN_OR_RETURN(const PageView page, pages_->Read(kObjectsPage));
    if (!HasType(page.bytes(), PageType::kDefinition))
        return DamagedPage(kObjectsPage, "not a table definition");
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
    const PageNumber page = entry.definition_page();
    const auto known = tables_.find(page);
    if (known != tables_.end()) return known->second.get();
    ASSIGN_OR_RETURN(const PropertyBlob properties, catalog_.Properties(entry));
    ASSIGN_OR_RETURN(auto table, StoredTable::Open(file_, *this, page, entry.name, properties));
    StoredTable* opened = table.get();
    opened->UseRules(rule_maker_.get());
    // The catalog's own rows follow from changes of designs.
    if (entry.is_user_table()) opened->UseRecorder(recorder_.get());
    tables_[page] = std::move(table);
    return opened;
}

base::Result<StoredTable*> StoredDatabase::TableAt(PageNumber definition) {
    const auto known = tables_.find(definition);
    if (known != tables_.end()) return known->second.get();
    ASSIGN_OR_RETURN(const auto* entries, catalog_.Entries());
    for (const CatalogEntry& entry : *entries)
        if (entry.is_table() && entry.definition_page() == definition) return OpenTable(entry);
    return DamagedPage(definition, "the catalog does not list the table");
}

base::Result<Table*> StoredDatabase::FindTable(std::u16string_view name) {
    ASSIGN_OR_RETURN(const CatalogEntry* entry, catalog_.FindTable(name));
    if (entry == nullptr) return JetError(ErrorNumber::kNoSuchTable, name);
    ASSIGN_OR_RETURN(StoredTable * table, OpenTable(*entry));
    return static_cast<Table*>(table);
}

void StoredDatabase::UseRowRules(std::unique_ptr<const RowRuleMaker> maker) {
    tables_.clear();  // rules are set when a table is opened
    rule_maker_ = std::move(maker);
}

base::Status StoredDatabase::Begin() {
    changed_.clear();
    ++changes_;
    if (recorder_) {
        label_ = labels_ ? labels_() : ChangeLabel();
        recorder_->Begin(label_.id);
    }
    return pages_->Begin();
}

base::Status StoredDatabase::Commit() {
    Bytes note = MakeNote();
    const bool has_note = !note.empty();
    base::Status status = pages_->Commit(std::move(note));
    if (!status.ok()) {
        Rollback();
        return status;
    }
    changed_.clear();
    if (has_note)
        recorder_->NoteCommitted();
    else if (recorder_)
        recorder_->Forget();
    return status;
}

// A change that takes another one back is told even when it changes no row.
Bytes StoredDatabase::MakeNote() {
    const bool is_undo = label_.undoes != 0 && label_.undoes != kAutomaticChange;
    if (!recorder_ || (recorder_->empty() && !is_undo)) return {};
    Bytes note = NoteHead(label_, file_.text, recorder_->missed(), recorder_->rows().size());
    note.insert(note.end(), recorder_->rows().begin(), recorder_->rows().end());
    return note;
}

void StoredDatabase::Rollback() {
    pages_->Rollback();
    if (recorder_) recorder_->Forget();
    file_.allocator.Forget();
    if (!changed_.empty()) catalog_.Forget();
    for (const PageNumber page : changed_)
        tables_.erase(page);
    changed_.clear();
    for (auto& [page, table] : tables_)
        table->Forget();
}

base::Status StoredDatabase::Close() {
    tables_.clear();
    catalog_.Forget();
    return pages_->Close();
}

base::Result<std::unique_ptr<Database>> OpenDatabase(std::unique_ptr<PageStore> pages,
                                                     std::string_view path) {
    PageHeader header;
    {
        ASSIGN_OR_RETURN(const PageView page, pages->Read(0));
        ASSIGN_OR_RETURN(header, ReadPageHeader(page.bytes(), path));
    }
    if (header.has_password) return JetError(ErrorNumber::kNotAValidPassword, path);
    if (pages->page_count() <= kObjectsPage)
        return JetError(ErrorNumber::kUnrecognizedFormat, path);
    auto database = std::make_unique<StoredDatabase>(std::move(pages), header);
    if (!database->CheckCatalog().ok()) return JetError(ErrorNumber::kUnrecognizedFormat, path);
    return std::unique_ptr<Database>(std::move(database));
}

}  // namespace jet
