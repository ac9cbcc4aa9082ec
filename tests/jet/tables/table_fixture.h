// A database file of the test's own with a table "Games" of the usual kinds of columns.
#pragma once

#include "jet/tables/storage_support.h"
#include "platform/file_system.h"

#include <gtest/gtest.h>

namespace jet::test {

ColumnDesign Column(const char16_t* name, ColumnType type, std::uint16_t size = 0);
IndexDesign Index(const char16_t* name, std::vector<IndexColumn> columns);
// ID (autonumber, primary key), Name, Year, Notes, Favourite, Added; an index on Name and Year, the
// latter descending.
TableDesign GamesDesign();

class TableFixture : public testing::Test {
protected:
    void SetUp() override;
    // The checker looks at what the test leaves.
    void TearDown() override;

    void Open();
    void Reopen();

    // Runs `change` as one statement.
    template <typename Change>
    base::Status Do(Change change) {
        RETURN_IF_ERROR(database_->Begin());
        base::Status status = change();
        if (!status.ok()) {
            database_->Rollback();
            return status;
        }
        return database_->Commit();
    }

    // Requires: there is such a table.
    Table& TableOf(std::u16string_view name) { return *database_->FindTable(name).value(); }
    Table& Games() { return TableOf(u"Games"); }
    void CreateGames();
    base::Result<RowId> Insert(std::u16string_view table, std::vector<Value> values);
    base::Result<RowId> InsertGame(std::u16string name, std::int16_t year, std::u16string notes);
    base::Status Update(std::u16string_view table, RowId row, std::vector<ColumnChange> changes);
    base::Status Delete(std::u16string_view table, RowId row);

    TemporaryFolder folder_;
    std::filesystem::path path_ = folder_.path() / "games.mdb";
    std::unique_ptr<FileSystem> files_ = platform::MakeFileSystem();
    std::unique_ptr<Database> database_;
};

}  // namespace jet::test
