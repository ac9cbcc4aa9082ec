// Workload: random operations on a database in memory against a model of it: what is refused and
// why, what a rollback leaves, and every cell after reopening.
#pragma once

#include "jet/tables/workload_model.h"
#include "jet/tables/workload_values.h"

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace jet::test {

class Workload {
public:
    using Row = WorkloadModel::Row;
    using Rows = WorkloadModel::Rows;
    using Place = WorkloadModel::Place;
    // Answers the bytes that are opened instead of those of the closed file.
    using Interlude = std::function<std::vector<std::byte>(std::vector<std::byte>)>;

    // `only`: the tables to work on; empty: all.
    Workload(std::vector<std::byte> bytes, std::string name, std::vector<std::u16string> only = {});

    // Before Run. Each table grows to `most` rows and shrinks to `least`, again and again.
    void KeepRowsWithin(std::size_t least, std::size_t most);
    // Before Run. Texts of columns of 255 characters are so long that some four fill an index page.
    void MakeTextsLong() { long_texts_ = true; }
    // Before Run. Somebody else has the file each time that so many transactions are done; all is
    // compared behind it. It may lose pages, and has to tell the model what it changes.
    void Interrupt(int transactions, Interlude interlude);

    void Run(int operations);

    // Counts of what happened; the numbers of errors that came.
    int inserted = 0, updated = 0, deleted = 0, rolled_back = 0, passed_on = 0;
    std::map<int, int> refused;

    Database& database() { return *database_; }
    WorkloadModel& model() { return *model_; }
    WorkloadValues& values() { return *values_; }
    const std::vector<std::u16string>& tables() const { return tables_; }
    const std::vector<std::u16string>& left_out() const { return left_out_; }
    // Whether rows of the tables worked on refer to each other.
    bool has_relations() const;
    Table& TableOf(const std::u16string& name) { return *database_->FindTable(name).value(); }

private:
    void Open(std::vector<std::byte> bytes);
    void Reopen(const Interlude& interlude);
    void LoadModel();
    void LoadRelations();

    int Transaction();
    enum class Kind { kInsert, kUpdate, kDelete };
    Kind NextKind(const Rows& rows);
    bool Operation();
    Value NewValue(const std::u16string& table, std::size_t column);
    void Repeat(const std::u16string& table, const std::vector<std::size_t>& columns, Row& row);
    std::vector<std::size_t> SomeKey(const TableDesign& design);
    bool Insert(const std::u16string& name);
    void CheckAutonumbers(const TableDesign& design, const Row& given, const Row& stored);
    bool Update(const Place& place);
    bool Delete(const Place& place);
    bool Expected(const WorkloadModel::Plan& plan, const base::Status& status,
                  const std::string& what);

    Rows ReadAll(const std::u16string& name);
    void Compare();

    std::string name_;
    std::vector<std::u16string> only_;
    std::unique_ptr<Database> database_;
    std::unique_ptr<WorkloadModel> model_;
    std::unique_ptr<WorkloadValues> values_;
    std::vector<std::u16string> tables_;
    std::vector<std::u16string> left_out_;  // tables that the engine only reads
    int transactions_ = 0;
    bool long_texts_ = false;
    std::size_t least_rows_ = 0;
    std::size_t most_rows_ = 0;  // 0: as many as come
    bool is_growing_ = true;
    int between_interludes_ = 0;
    Interlude interlude_;
};

// Fails the test where the operations were too much alike.
void ExpectABitOfEverything(const Workload& workload);
// What other programs read of it, where there are such. `left_behind`: rows that nothing leads to,
// at most.
void CompareWithExports(Workload& workload, std::size_t left_behind = 0);

// A file of the version as the engine makes it.
std::vector<std::byte> NewFile(int version = 4);
// `bytes` with tables of the test's own in it.
std::vector<std::byte> WithTables(std::vector<std::byte> bytes,
                                  const std::function<void(Database&)>& create);
ColumnDesign Required(ColumnDesign column);
IndexDesign PrimaryKey(std::vector<IndexColumn> columns);

}  // namespace jet::test
