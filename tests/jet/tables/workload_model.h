// WorkloadModel: a database in plain memory with the rules that its changes have to keep, to be
// compared with what the engine makes of the same changes. It knows nothing of pages. Texts are
// equal when their index keys are; everything else is its own.
#pragma once

#include "jet/tables/database.h"

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace jet::test {

// Positions are those of TableDesign::columns.
struct ModelRelation {
    std::u16string name;
    std::u16string table;  // the one that refers
    std::vector<std::size_t> columns;
    std::u16string referenced;
    std::vector<std::size_t> referenced_columns;
    bool cascade_updates = false;
    bool cascade_deletes = false;
    bool nulls_on_delete = false;
};

class WorkloadModel {
public:
    using Row = std::vector<Value>;
    using Rows = std::map<RowId, Row>;
    struct Place {
        std::u16string table;
        RowId row;
        auto operator<=>(const Place&) const = default;
    };
    // What a change comes to.
    struct Plan {
        std::set<int> refusals;  // numbers of errors, one of which has to come; empty: it is done
        bool may_be_too_large = false;  // 3047 may come as well
        std::map<Place, Row> updates;
        std::set<Place> deletes;
    };

    explicit WorkloadModel(int jet_version) : jet3_(jet_version == 3) {}

    void AddTable(const TableDesign& design, Rows rows);
    void AddRelation(ModelRelation relation);

    Plan PlanInsert(const std::u16string& table, const Row& row) const;
    Plan PlanUpdate(const Place& place, const std::vector<ColumnChange>& changes) const;
    Plan PlanDelete(const Place& place) const;

    // A transaction: what is applied can be taken back as a whole.
    void Begin() { undo_.clear(); }
    void Insert(const Place& place, Row row) { Put(place, std::move(row)); }
    void Apply(const Plan& plan);
    void Rollback();

    const Rows& rows(const std::u16string& table) const { return tables_.at(table).rows; }
    const TableDesign& design(const std::u16string& table) const {
        return tables_.at(table).design;
    }
    const std::vector<ModelRelation>& relations() const { return relations_; }

private:
    // Which rows have a key; rows with a null in a relation's key have none.
    struct KeyTable {
        std::vector<std::size_t> columns;
        bool nulls = false;
        std::map<std::string, std::set<RowId>> rows;
    };
    struct Table {
        TableDesign design;
        Rows rows;
        std::vector<KeyTable> indexes;    // as design.indexes
        std::vector<KeyTable> relations;  // as relations_: this side's columns of each
        std::vector<KeyTable> referenced;
    };
    using Columns = std::vector<std::size_t>;

    std::string KeyOf(const Row& row, const Columns& columns) const;
    void Index(Table& table, RowId id, const Row& row, bool add) const;
    void Put(const Place& place, std::optional<Row> row);

    void CheckColumns(const Table& table, const Row& row, const std::vector<bool>& changed,
                      Plan& plan) const;
    void CheckIndexes(const Table& table, const Row& row, const Row* before, RowId id,
                      Plan& plan) const;
    // `cause`: the relation by which the change was passed on, whose other side has changed too.
    void CheckReferences(const Table& table, const Row& row, const std::vector<bool>& changed,
                         RowId id, const ModelRelation* cause, Plan& plan) const;
    void PlanRow(const Place& place, Row row, const std::vector<bool>& changed,
                 const ModelRelation* cause, Plan& plan) const;
    void PassOn(const Place& place, const Row& before, const Row& row, Plan& plan) const;
    void SetForeignKey(const Place& place, const ModelRelation& relation, const Row& key,
                       Plan& plan) const;

    bool jet3_;
    std::map<std::u16string, Table> tables_;
    std::vector<ModelRelation> relations_;
    std::vector<std::pair<Place, std::optional<Row>>> undo_;
};

}  // namespace jet::test
