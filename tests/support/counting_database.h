// CountingDatabase: a database that counts how often the rows of its tables are walked, for tests
// of how many questions something asks.
#pragma once

#include "jet/tables/database.h"

#include <map>
#include <memory>
#include <utility>

namespace test_support {

// Of all tables.
struct WalkCounts {
    int scans = 0;   // of all rows of a table
    int ranges = 0;  // of rows by an index
    int all() const { return scans + ranges; }
};

class CountingTable final : public jet::Table {
public:
    // Both are borrowed and outlive the object.
    CountingTable(jet::Table& table, WalkCounts& counts) : table_(table), counts_(counts) {}

    const jet::TableDesign& design() const override { return table_.design(); }
    std::uint32_t row_count() const override { return table_.row_count(); }
    std::optional<base::Status> read_only_reason() const override {
        return table_.read_only_reason();
    }
    base::Result<std::unique_ptr<jet::RowCursor>> Scan() override {
        ++counts_.scans;
        return table_.Scan();
    }
    base::Result<std::unique_ptr<jet::RowCursor>> Range(std::size_t index,
                                                        const jet::KeyBound& from,
                                                        const jet::KeyBound& to,
                                                        bool backwards) override {
        ++counts_.ranges;
        return table_.Range(index, from, to, backwards);
    }
    base::Status Read(jet::RowId row, std::span<const std::size_t> columns,
                      std::span<jet::Value> values) override {
        return table_.Read(row, columns, values);
    }
    base::Result<jet::RowId> Insert(std::span<jet::Value> values) override {
        return table_.Insert(values);
    }
    base::Status Update(jet::RowId row, std::span<const jet::ColumnChange> changes) override {
        return table_.Update(row, changes);
    }
    base::Status Update(std::span<const jet::RowId> rows, const jet::RowUpdate& update) override {
        return table_.Update(rows, update);
    }
    base::Status Delete(jet::RowId row) override { return table_.Delete(row); }
    base::Status Delete(std::span<const jet::RowId> rows) override { return table_.Delete(rows); }

private:
    jet::Table& table_;
    WalkCounts& counts_;
};

class CountingDatabase final : public jet::Database {
public:
    // `counts` is borrowed and outlives the object.
    CountingDatabase(std::unique_ptr<jet::Database> database, WalkCounts& counts)
        : database_(std::move(database)), counts_(counts) {}

    bool read_only() const override { return database_->read_only(); }
    int jet_version() const override { return database_->jet_version(); }
    base::Result<std::vector<std::u16string>> TableNames() override {
        return database_->TableNames();
    }
    base::Result<jet::Table*> FindTable(std::u16string_view name) override {
        ASSIGN_OR_RETURN(jet::Table * table, database_->FindTable(name));
        auto& counting = tables_[table];
        if (!counting) counting = std::make_unique<CountingTable>(*table, counts_);
        return static_cast<jet::Table*>(counting.get());
    }
    base::Status Begin() override { return database_->Begin(); }
    base::Status Commit() override { return database_->Commit(); }
    void Rollback() override { database_->Rollback(); }
    bool in_transaction() const override { return database_->in_transaction(); }
    std::uint64_t changes() const override { return database_->changes(); }
    base::Status CreateTable(const jet::TableDesign& design) override {
        return database_->CreateTable(design);
    }
    base::Status DropTable(std::u16string_view table) override {
        return database_->DropTable(table);
    }
    base::Status AddColumn(std::u16string_view table, const jet::ColumnDesign& column) override {
        return database_->AddColumn(table, column);
    }
    base::Status AlterColumn(std::u16string_view table, const jet::ColumnDesign& column) override {
        return database_->AlterColumn(table, column);
    }
    base::Status DropColumn(std::u16string_view table, std::u16string_view column) override {
        return database_->DropColumn(table, column);
    }
    base::Status CreateIndex(std::u16string_view table, const jet::IndexDesign& index) override {
        return database_->CreateIndex(table, index);
    }
    base::Status DropIndex(std::u16string_view table, std::u16string_view index) override {
        return database_->DropIndex(table, index);
    }
    base::Status CreateRelation(const jet::RelationDesign& relation) override {
        return database_->CreateRelation(relation);
    }
    base::Status DropRelation(std::u16string_view table, std::u16string_view relation) override {
        return database_->DropRelation(table, relation);
    }
    void UseRowRules(std::unique_ptr<const jet::RowRuleMaker> maker) override {
        database_->UseRowRules(std::move(maker));
    }
    base::Status Flush() override { return database_->Flush(); }
    base::Status Close() override { return database_->Close(); }
    jet::PageStore& pages() override { return database_->pages(); }

private:
    std::unique_ptr<jet::Database> database_;
    WalkCounts& counts_;
    std::map<jet::Table*, std::unique_ptr<CountingTable>> tables_;
};

}  // namespace test_support
