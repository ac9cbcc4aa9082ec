#include "jet/tables/table_fixture.h"

#include "jet/tables/storage_checks.h"
#include "support/check_database.h"

namespace jet::test {

ColumnDesign Column(const char16_t* name, ColumnType type, std::uint16_t size) {
    ColumnDesign column;
    column.name = name;
    column.type = type;
    column.size = size;
    return column;
}

IndexDesign Index(const char16_t* name, std::vector<IndexColumn> columns) {
    IndexDesign index;
    index.name = name;
    index.columns = std::move(columns);
    return index;
}

TableDesign GamesDesign() {
    TableDesign design;
    design.name = u"Games";
    design.columns = {
        Column(u"ID", ColumnType::kLong),           Column(u"Name", ColumnType::kText, 100),
        Column(u"Year", ColumnType::kShort),        Column(u"Notes", ColumnType::kMemo),
        Column(u"Favourite", ColumnType::kBoolean), Column(u"Added", ColumnType::kDate)};
    design.columns[0].autonumber = true;
    design.columns[1].compressed = true;
    design.indexes = {Index(u"PrimaryKey", {{0, true}}), Index(u"Name", {{1, true}, {2, false}})};
    design.indexes[0].primary = true;
    return design;
}

void TableFixture::SetUp() {
    const base::Status created = CreateDatabaseFile(*files_, path_, 45000.5);
    ASSERT_TRUE(created.ok()) << created.message();
    Open();
}

void TableFixture::TearDown() {
    if (database_ == nullptr) return;
    const StorageFaults found = CheckStorage(database_->pages());
    EXPECT_EQ(found.faults, std::vector<std::string>());
    EXPECT_TRUE(test_support::PagesAreSound(database_->pages(), test_support::kOwnFile));
}

void TableFixture::Open() {
    auto pages = OpenPageStore(*files_, path_, {});
    ASSERT_TRUE(pages.ok()) << pages.status().message();
    auto opened = OpenDatabase(std::move(pages).value(), path_.string());
    ASSERT_TRUE(opened.ok()) << opened.status().message();
    database_ = std::move(opened).value();
}

void TableFixture::Reopen() {
    const base::Status closed = database_->Close();
    ASSERT_TRUE(closed.ok()) << closed.message();
    database_.reset();
    Open();
}

void TableFixture::CreateGames() {
    const base::Status status = Do([&] { return database_->CreateTable(GamesDesign()); });
    ASSERT_TRUE(status.ok()) << status.message();
}

base::Result<RowId> TableFixture::Insert(std::u16string_view table, std::vector<Value> values) {
    base::Result<RowId> row = RowId{};
    const base::Status status = Do([&] {
        row = TableOf(table).Insert(values);
        return row.status();
    });
    if (!status.ok()) return status;
    return row;
}

base::Result<RowId> TableFixture::InsertGame(std::u16string name, std::int16_t year,
                                             std::u16string notes) {
    return Insert(u"Games",
                  {Value::Null(), Value::Text(name), Value::Short(year), Value::Text(notes),
                   Value::Boolean(year % 2 == 0), Value::DateTime(40000 + year)});
}

base::Status TableFixture::Update(std::u16string_view table, RowId row,
                                  std::vector<ColumnChange> changes) {
    return Do([&] { return TableOf(table).Update(row, changes); });
}

base::Status TableFixture::Delete(std::u16string_view table, RowId row) {
    return Do([&] { return TableOf(table).Delete(row); });
}

}  // namespace jet::test
