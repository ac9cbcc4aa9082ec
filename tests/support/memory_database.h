// MemoryDatabase: tables in memory behind the engine's Database interface, for tests of what lies
// above it. Keys are compared value by value; there are no pages.
#pragma once

#include "jet/errors.h"
#include "jet/sql/expressions/bind.h"
#include "jet/sql/functions/sort_key.h"
#include "jet/tables/database.h"
#include "jet/text/collation.h"
#include "jet/values/coerce.h"

#include <algorithm>
#include <map>
#include <memory>
#include <string>

namespace test_support {

using RowMap = std::map<jet::RowId, std::vector<jet::Value>>;

class MemoryCursor : public jet::RowCursor {
public:
    MemoryCursor(const RowMap& rows, std::vector<jet::RowId> ids)
        : rows_(rows), ids_(std::move(ids)) {}

    base::Result<std::optional<jet::RowId>> Next() override {
        while (at_ < ids_.size())
            if (rows_.contains(ids_[at_++])) return std::optional(ids_[at_ - 1]);
        return std::optional<jet::RowId>();
    }
    base::Status Read(std::span<const std::size_t> columns, std::span<jet::Value> values) override {
        const std::vector<jet::Value>& row = rows_.at(ids_[at_ - 1]);
        for (std::size_t i = 0; i < columns.size(); ++i)
            values[i] = row[columns[i]];
        return base::Status::Ok();
    }
    jet::StoredFields* stored_fields() override { return nullptr; }

private:
    const RowMap& rows_;
    std::vector<jet::RowId> ids_;
    std::size_t at_ = 0;
};

class MemoryTable : public jet::Table {
public:
    explicit MemoryTable(jet::TableDesign design) : design_(std::move(design)) {}

    // Borrowed; nullptr: validation rules are not tested.
    void UseRules(const jet::RowRuleMaker* maker) { rule_maker_ = maker; }

    jet::TableDesign& mutable_design() {
        sorted_.clear();
        return design_;
    }
    RowMap& rows() {
        sorted_.clear();
        return rows_;
    }
    // Walks over the whole table since it was made.
    int scans() const { return scans_; }
    // Ranges walked since the table was made, so that a test can tell whether an index was used.
    int ranges() const { return ranges_; }

    const jet::TableDesign& design() const override { return design_; }
    std::uint32_t row_count() const override { return static_cast<std::uint32_t>(rows_.size()); }
    std::optional<base::Status> read_only_reason() const override { return std::nullopt; }

    base::Result<std::unique_ptr<jet::RowCursor>> Scan() override {
        ++scans_;
        std::vector<jet::RowId> ids;
        for (const auto& [id, row] : rows_)
            ids.push_back(id);
        return std::unique_ptr<jet::RowCursor>(new MemoryCursor(rows_, std::move(ids)));
    }

    base::Result<std::unique_ptr<jet::RowCursor>> Range(std::size_t index,
                                                        const jet::KeyBound& from,
                                                        const jet::KeyBound& to,
                                                        bool backwards) override {
        ++ranges_;
        const jet::IndexDesign& design = design_.indexes[index];
        const std::string low = BoundKey(design, from);
        const std::string high = BoundKey(design, to);
        std::vector<jet::RowId> ids;
        const SortedKeys& keys = Sorted(index);
        for (auto at = std::lower_bound(keys.begin(), keys.end(), std::pair(low, jet::RowId{}));
             at != keys.end() && at->first.substr(0, high.size()) <= high; ++at)
            ids.push_back(at->second);
        if (backwards) std::reverse(ids.begin(), ids.end());
        return std::unique_ptr<jet::RowCursor>(new MemoryCursor(rows_, std::move(ids)));
    }

    base::Status Read(jet::RowId row, std::span<const std::size_t> columns,
                      std::span<jet::Value> values) override {
        const auto found = rows_.find(row);
        if (found == rows_.end()) return jet::JetError(jet::ErrorNumber::kRecordDeleted);
        for (std::size_t i = 0; i < columns.size(); ++i)
            values[i] = found->second[columns[i]];
        return base::Status::Ok();
    }

    base::Result<jet::RowId> Insert(std::span<jet::Value> values) override {
        for (std::size_t i = 0; i < values.size(); ++i) {
            const jet::ColumnDesign& column = design_.columns[i];
            if (column.autonumber && values[i].is_null())
                values[i] = jet::Value::Long(++autonumber_);
            ASSIGN_OR_RETURN(values[i], jet::Coerce(values[i], column));
            if (column.required && values[i].is_null())
                return jet::JetError(jet::ErrorNumber::kValueRequired, column.name);
        }
        std::vector<jet::Value> row(values.begin(), values.end());
        RETURN_IF_ERROR(CheckRules(row, std::vector<bool>(row.size(), true)));
        RETURN_IF_ERROR(CheckUnique(row, jet::RowId{}));
        const jet::RowId id{1 + next_ / 200, static_cast<std::uint8_t>(next_ % 200)};
        ++next_;
        rows()[id] = std::move(row);
        return id;
    }
    base::Status Update(jet::RowId row, std::span<const jet::ColumnChange> changes) override {
        const auto found = rows_.find(row);
        if (found == rows_.end()) return jet::JetError(jet::ErrorNumber::kRecordDeleted);
        std::vector<jet::Value> changed = found->second;
        std::vector<bool> marks(changed.size());
        for (const jet::ColumnChange& change : changes) {
            ASSIGN_OR_RETURN(changed[change.column],
                             jet::Coerce(change.value, design_.columns[change.column]));
            marks[change.column] = true;
        }
        RETURN_IF_ERROR(CheckRules(changed, marks));
        RETURN_IF_ERROR(CheckUnique(changed, row));
        found->second = std::move(changed);
        sorted_.clear();
        return base::Status::Ok();
    }
    base::Status Update(std::span<const jet::RowId> rows, const jet::RowUpdate& update) override {
        std::vector<jet::Value> new_values(update.columns.size());
        for (const jet::RowId row : rows) {
            RETURN_IF_ERROR(Read(row, update.read, update.values));
            RETURN_IF_ERROR(update.make(new_values));
            std::vector<jet::ColumnChange> changes;
            for (std::size_t i = 0; i < new_values.size(); ++i)
                changes.push_back({update.columns[i], new_values[i]});
            RETURN_IF_ERROR(Update(row, changes));
        }
        return base::Status::Ok();
    }
    base::Status Delete(jet::RowId row) override {
        return rows().erase(row) == 1 ? base::Status::Ok()
                                      : jet::JetError(jet::ErrorNumber::kRecordDeleted);
    }
    base::Status Delete(std::span<const jet::RowId> rows) override {
        for (const jet::RowId row : rows)
            this->rows().erase(row);
        return base::Status::Ok();
    }

private:
    using SortedKeys = std::vector<std::pair<std::string, jet::RowId>>;

    const SortedKeys& Sorted(std::size_t index) {
        const auto [keys, is_new] = sorted_.try_emplace(index);
        if (!is_new) return keys->second;
        for (const auto& [id, row] : rows_)
            keys->second.emplace_back(Key(design_.indexes[index], row), id);
        std::sort(keys->second.begin(), keys->second.end());
        return keys->second;
    }

    static std::string Key(const jet::IndexDesign& index, const std::vector<jet::Value>& row) {
        std::string key;
        for (const jet::IndexColumn& part : index.columns)
            jet::sql::AppendSortKey(row[part.column], !part.ascending, key);
        return key;
    }
    static std::string BoundKey(const jet::IndexDesign& index, const jet::KeyBound& bound) {
        std::string key;
        for (std::size_t i = 0; i < bound.values.size(); ++i)
            jet::sql::AppendSortKey(bound.values[i], !index.columns[i].ascending, key);
        if (bound.prefix) key.resize(key.size() - 2);  // what ends the key of a plain text
        return key;
    }
    base::Status CheckRules(const std::vector<jet::Value>& row,
                            const std::vector<bool>& changed) const {
        if (rule_maker_ == nullptr) return base::Status::Ok();
        ASSIGN_OR_RETURN(const auto rules, rule_maker_->Make(design_));
        return rules == nullptr ? base::Status::Ok() : rules->Check(row, changed);
    }
    base::Status CheckUnique(const std::vector<jet::Value>& row, jet::RowId self) const {
        for (const jet::IndexDesign& index : design_.indexes) {
            if (!index.unique && !index.primary) continue;
            for (const auto& [id, other] : rows_)
                if (id != self && Key(index, other) == Key(index, row))
                    return jet::JetError(jet::ErrorNumber::kDuplicateKey);
        }
        return base::Status::Ok();
    }

    jet::TableDesign design_;
    RowMap rows_;
    std::uint32_t next_ = 0;
    std::int32_t autonumber_ = 0;
    int ranges_ = 0;
    int scans_ = 0;
    std::map<std::size_t, SortedKeys> sorted_;  // by index; empty after a change
    const jet::RowRuleMaker* rule_maker_ = nullptr;
};

class MemoryDatabase : public jet::Database {
public:
    void set_read_only(bool read_only) { read_only_ = read_only; }

    bool read_only() const override { return read_only_; }
    int jet_version() const override { return 4; }
    base::Result<std::vector<std::u16string>> TableNames() override {
        std::vector<std::u16string> names;
        for (const auto& table : tables_)
            names.push_back(table->design().name);
        return names;
    }
    base::Result<jet::Table*> FindTable(std::u16string_view name) override {
        for (const auto& table : tables_)
            if (jet::SameName(table->design().name, name)) return table.get();
        return jet::JetError(jet::ErrorNumber::kNoSuchTable, name);
    }

    base::Status Begin() override {
        ++changes_;
        saved_.clear();
        for (const auto& table : tables_)
            saved_.push_back(std::make_unique<MemoryTable>(*table));
        in_transaction_ = true;
        return base::Status::Ok();
    }
    base::Status Commit() override {
        in_transaction_ = false;
        return base::Status::Ok();
    }
    void Rollback() override {
        in_transaction_ = false;
        // Tables keep their places in memory when no design changed, as the engine's do.
        if (saved_.size() != tables_.size()) {
            tables_ = std::move(saved_);
            return;
        }
        for (std::size_t i = 0; i < tables_.size(); ++i)
            *tables_[i] = *saved_[i];
    }
    bool in_transaction() const override { return in_transaction_; }
    std::uint64_t changes() const override { return changes_; }

    base::Status CreateTable(const jet::TableDesign& design) override {
        if (FindTable(design.name).ok())
            return jet::JetError(jet::ErrorNumber::kTableExists, design.name);
        tables_.push_back(std::make_unique<MemoryTable>(design));
        tables_.back()->UseRules(rule_maker_.get());
        return base::Status::Ok();
    }
    base::Status DropTable(std::u16string_view name) override {
        std::erase_if(tables_,
                      [&](const auto& table) { return jet::SameName(table->design().name, name); });
        return base::Status::Ok();
    }
    base::Status AddColumn(std::u16string_view name, const jet::ColumnDesign& column) override {
        MemoryTable& table = Get(name);
        jet::TableDesign& design = table.mutable_design();
        if (jet::sql::FindColumn(design, column.name) != design.columns.size())
            return jet::JetError(jet::ErrorNumber::kFieldExists, column.name, name);
        design.columns.push_back(column);
        for (auto& [id, row] : table.rows())
            row.push_back(*jet::Coerce(jet::Value(), column));
        return base::Status::Ok();
    }
    base::Status AlterColumn(std::u16string_view name, const jet::ColumnDesign& column) override {
        MemoryTable& table = Get(name);
        jet::TableDesign& design = table.mutable_design();
        const std::size_t at = jet::sql::FindColumn(design, column.name);
        design.columns[at] = column;
        for (auto& [id, row] : table.rows())
            row[at] = jet::Coerce(row[at], column).value_or(jet::Value());
        return base::Status::Ok();
    }
    base::Status DropColumn(std::u16string_view name, std::u16string_view column) override {
        MemoryTable& table = Get(name);
        jet::TableDesign& design = table.mutable_design();
        const std::size_t at = jet::sql::FindColumn(design, column);
        if (at == design.columns.size())
            return jet::JetError(jet::ErrorNumber::kNoSuchField, column, name);
        const auto place = static_cast<std::ptrdiff_t>(at);
        design.columns.erase(design.columns.begin() + place);
        for (auto& [id, row] : table.rows())
            row.erase(row.begin() + place);
        return base::Status::Ok();
    }
    base::Status CreateIndex(std::u16string_view name, const jet::IndexDesign& index) override {
        Get(name).mutable_design().indexes.push_back(index);
        return base::Status::Ok();
    }
    base::Status DropIndex(std::u16string_view name, std::u16string_view index) override {
        const auto erased =
            std::erase_if(Get(name).mutable_design().indexes, [&](const jet::IndexDesign& design) {
                return jet::SameName(design.name, index);
            });
        return erased == 1 ? base::Status::Ok()
                           : jet::JetError(jet::ErrorNumber::kNoSuchIndex, index, name);
    }
    base::Status CreateRelation(const jet::RelationDesign&) override {
        return jet::JetError(jet::ErrorNumber::kNotAllowedHere);
    }
    base::Status DropRelation(std::u16string_view name, std::u16string_view relation) override {
        return jet::JetError(jet::ErrorNumber::kNoSuchIndex, relation, name);
    }

    void UseRowRules(std::unique_ptr<const jet::RowRuleMaker> maker) override {
        rule_maker_ = std::move(maker);
        for (const auto& table : tables_)
            table->UseRules(rule_maker_.get());
    }

    base::Status Flush() override { return base::Status::Ok(); }
    base::Status Close() override { return base::Status::Ok(); }
    jet::PageStore& pages() override { return *pages_; }

private:
    MemoryTable& Get(std::u16string_view name) {
        return static_cast<MemoryTable&>(**FindTable(name));
    }

    std::vector<std::unique_ptr<MemoryTable>> tables_;
    std::vector<std::unique_ptr<MemoryTable>> saved_;
    std::unique_ptr<const jet::RowRuleMaker> rule_maker_;
    std::unique_ptr<jet::PageStore> pages_ = jet::MakeMemoryPageStore(4096, {});
    bool read_only_ = false;
    bool in_transaction_ = false;
    std::uint64_t changes_ = 0;
};

}  // namespace test_support
