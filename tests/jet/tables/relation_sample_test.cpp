// Relations of whole files. In each of the first ones a table refers to another one (deletes are
// passed on) and to a third (changes of keys are passed on).
#include "base/unicode.h"
#include "jet/rows/file_context.h"
#include "jet/tables/catalog.h"
#include "jet/tables/storage_checks.h"
#include "jet/tables/storage_support.h"
#include "support/check_database.h"

#include <gtest/gtest.h>

#include <map>

namespace jet::test {
namespace {

// Names in such a file; the numbers in it are the same in all of them.
struct RelatedFile {
    std::filesystem::path path;
    std::u16string table;  // refers to both
    std::u16string deleted;
    std::u16string deleted_key;  // column of `table`
    std::u16string renumbered;
    std::u16string renumbered_key;
};

void PrintTo(const RelatedFile& file, std::ostream* out) {
    *out << file.path;
}

std::vector<RelatedFile> RelatedFiles() {
    std::vector<RelatedFile> files;
    for (const char* ours : {"databases/arcade-jet3.mdb", "databases/arcade-jet4.mdb"})
        files.push_back({DataFolder() / ours, u"Visits", u"Guests", u"guest", u"Halls", u"hall"});
    if (const auto samples = SampleFolder())
        files.push_back({*samples / "mdb/a2003-relations.mdb", u"Table1", u"Table2", u"otherfk1",
                         u"Table3", u"otherfk2"});
    return files;
}

class SampleRelationTest : public testing::TestWithParam<RelatedFile> {
protected:
    void SetUp() override {
        auto opened = OpenCopy(GetParam().path);
        ASSERT_TRUE(opened.ok()) << opened.status().message();
        database_ = std::move(opened).value();
    }
    void TearDown() override {
        if (database_ == nullptr) return;
        EXPECT_EQ(CheckStorage(database_->pages()).faults, std::vector<std::string>());
        EXPECT_TRUE(test_support::PagesAreSound(database_->pages()));
    }

    Table& TableOf(std::u16string_view name) { return *database_->FindTable(name).value(); }

    std::size_t Column(std::u16string_view table, std::u16string_view column) {
        const auto& columns = TableOf(table).design().columns;
        for (std::size_t i = 0; i < columns.size(); ++i)
            if (columns[i].name == column) return i;
        return columns.size();
    }

    // Rows whose `column` is `number`.
    std::vector<RowId> Find(std::u16string_view table, std::u16string_view column,
                            std::int32_t number) {
        std::vector<RowId> rows;
        const std::size_t position = Column(table, column);
        auto cursor = TableOf(table).Scan();
        Value value;
        for (auto row = cursor.value()->Next(); row.ok() && row.value();
             row = cursor.value()->Next())
            if (cursor.value()->Read(std::span(&position, 1), std::span(&value, 1)).ok() &&
                value == Value::Long(number))
                rows.push_back(*row.value());
        return rows;
    }

    template <typename Change>
    base::Status Do(Change change) {
        RETURN_IF_ERROR(database_->Begin());
        base::Status status = change();
        if (status.ok()) return database_->Commit();
        database_->Rollback();
        return status;
    }

    base::Status Delete(std::u16string_view table, std::int32_t id) {
        return Do([&] { return TableOf(table).Delete(Find(table, u"id", id).at(0)); });
    }

    base::Status SetNumber(std::u16string_view table, std::int32_t id, std::u16string_view column,
                           std::int32_t number) {
        const ColumnChange change{Column(table, column), Value::Long(number)};
        return Do([&] {
            return TableOf(table).Update(Find(table, u"id", id).at(0), std::span(&change, 1));
        });
    }

    std::unique_ptr<Database> database_;
};

TEST_P(SampleRelationTest, DeleteIsPassedOn) {
    ASSERT_EQ(Find(GetParam().table, GetParam().deleted_key, 1).size(), 2U);
    const base::Status deleted = Delete(GetParam().deleted, 1);
    ASSERT_TRUE(deleted.ok()) << deleted.message();
    EXPECT_TRUE(Find(GetParam().table, GetParam().deleted_key, 1).empty());
    EXPECT_EQ(TableOf(GetParam().table).row_count(), 2U);
}

TEST_P(SampleRelationTest, DeleteOfAReferredRowIsRefused) {
    EXPECT_EQ(Delete(GetParam().renumbered, 10).number(), 3200);
    EXPECT_TRUE(Delete(GetParam().renumbered, 12).ok());
}

TEST_P(SampleRelationTest, ChangeOfAKeyIsPassedOn) {
    ASSERT_TRUE(SetNumber(GetParam().renumbered, 11, u"id", 21).ok());
    EXPECT_EQ(Find(GetParam().table, GetParam().renumbered_key, 21).size(), 2U);
    EXPECT_TRUE(Find(GetParam().table, GetParam().renumbered_key, 11).empty());
}

TEST_P(SampleRelationTest, ChangeOfAReferredKeyIsRefused) {
    EXPECT_EQ(SetNumber(GetParam().deleted, 1, u"id", 7).number(), 3200);
    EXPECT_EQ(Find(GetParam().deleted, u"id", 1).size(), 1U);
}

TEST_P(SampleRelationTest, ForeignKeyNeedsItsRow) {
    EXPECT_EQ(SetNumber(GetParam().table, 0, GetParam().deleted_key, 99).number(), 3201);
    EXPECT_TRUE(SetNumber(GetParam().table, 0, GetParam().deleted_key, 2).ok());
    std::vector<Value> values(TableOf(GetParam().table).design().columns.size());
    values[Column(GetParam().table, u"id")] = Value::Long(50);
    values[Column(GetParam().table, GetParam().renumbered_key)] = Value::Long(99);
    EXPECT_EQ(Do([&] { return TableOf(GetParam().table).Insert(values).status(); }).number(), 3201);
    values[Column(GetParam().table, GetParam().renumbered_key)] = Value::Null();
    EXPECT_TRUE(Do([&] { return TableOf(GetParam().table).Insert(values).status(); }).ok());
}

TEST_P(SampleRelationTest, TableInARelationIsNotDropped) {
    EXPECT_EQ(Do([&] { return database_->DropTable(GetParam().deleted); }).number(), 3281);
}

INSTANTIATE_TEST_SUITE_P(Files, SampleRelationTest, testing::ValuesIn(RelatedFiles()),
                         [](const auto& file) { return test_support::LettersOf(file.param.path); });

// What the definitions say of all indexes: by table, one line each.
std::map<std::u16string, std::vector<std::string>> IndexesOf(Database& database) {
    const auto header = ReadPageHeader(database.pages().Read(0).value().bytes(), "");
    FileContext file(database.pages(), header.value());
    std::map<std::u16string, std::vector<std::string>> all;
    Catalog catalog(file);
    const auto entries = catalog.Entries();
    for (const CatalogEntry& entry : *entries.value()) {
        if (!entry.is_table()) continue;
        const auto table =
            ReadTableDefinition(file.store, file.format, file.text, entry.definition_page());
        for (const LogicalIndex& index : table.value().logical_indexes) {
            std::string line = base::ToUtf8(index.name);
            for (const std::int64_t part :
                 {std::int64_t{index.number}, std::int64_t{index.real},
                  std::int64_t{static_cast<std::uint8_t>(index.side)}, std::int64_t{index.partner},
                  std::int64_t{index.other_table}, std::int64_t{index.cascade_updates},
                  std::int64_t{index.cascade_deletes},
                  std::int64_t{static_cast<std::uint8_t>(index.kind)},
                  std::int64_t{table.value().real_indexes[index.real].flags}})
                line += " " + std::to_string(part);
            for (const RealIndexColumn& column : table.value().real_indexes[index.real].columns)
                line += " " + std::to_string(column.column) + (column.ascending ? "+" : "-");
            all[entry.name].push_back(line);
        }
    }
    return all;
}

std::vector<RelationDesign> RelationsOf(Database& database) {
    std::vector<RelationDesign> relations;
    for (const auto& row : AllRows(*database.FindTable(u"MSysRelationships").value())) {
        std::map<std::u16string, Value> named;
        for (std::size_t i = 0; i < row.size(); ++i)
            named[database.FindTable(u"MSysRelationships").value()->design().columns[i].name] =
                row[i];
        RelationDesign relation;
        relation.name = named[u"szRelationship"].as<std::u16string>();
        relation.table = named[u"szObject"].as<std::u16string>();
        relation.columns = {named[u"szColumn"].as<std::u16string>()};
        relation.referenced_table = named[u"szReferencedObject"].as<std::u16string>();
        relation.referenced_columns = {named[u"szReferencedColumn"].as<std::u16string>()};
        const auto flags = named[u"grbit"].as<std::int32_t>();
        if ((flags & 0x100) != 0) relation.on_update = RelationRule::kCascade;
        if ((flags & 0x1000) != 0) relation.on_delete = RelationRule::kCascade;
        relations.push_back(relation);
    }
    return relations;
}

class RelationAgainTest : public testing::TestWithParam<std::filesystem::path> {};

// A real file says how a relation is written: taken out and made again it looks the same.
TEST_P(RelationAgainTest, DroppedAndCreatedAgainTheDefinitionsAreAsBefore) {
    auto opened = OpenCopy(GetParam());
    ASSERT_TRUE(opened.ok()) << opened.status().message();
    Database& database = *opened.value();
    const auto before = IndexesOf(database);
    const auto rows = [&] { return AllRows(*database.FindTable(u"MSysRelationships").value()); };
    const auto rows_before = rows();
    const auto relations = RelationsOf(database);
    ASSERT_FALSE(relations.empty());
    for (const RelationDesign& relation : relations) {
        ASSERT_TRUE(database.Begin().ok());
        const base::Status dropped = database.DropRelation(relation.table, relation.name);
        ASSERT_TRUE(dropped.ok()) << dropped.message();
        ASSERT_TRUE(database.Commit().ok());
    }
    EXPECT_EQ(CheckStorage(database.pages()).faults, std::vector<std::string>());
    EXPECT_TRUE(test_support::PagesAreSound(database.pages()));
    EXPECT_TRUE(rows().empty());
    for (const auto& [table, indexes] : IndexesOf(database))
        for (const std::string& line : indexes)
            EXPECT_FALSE(line.starts_with(".r")) << line;
    for (const RelationDesign& relation : relations) {
        ASSERT_TRUE(database.Begin().ok());
        const base::Status created = database.CreateRelation(relation);
        ASSERT_TRUE(created.ok()) << created.message();
        ASSERT_TRUE(database.Commit().ok());
    }
    EXPECT_EQ(IndexesOf(database), before);
    EXPECT_EQ(rows(), rows_before);
    EXPECT_EQ(CheckStorage(database.pages()).faults, std::vector<std::string>());
    EXPECT_TRUE(test_support::PagesAreSound(database.pages()));
}

INSTANTIATE_TEST_SUITE_P(
    Files, RelationAgainTest,
    testing::ValuesIn(OurFilesAndReal({"databases/arcade-jet3.mdb", "databases/arcade-jet4.mdb"},
                                      {"mdb/a2003-relations.mdb", "mdb/a97-orders.mdb"})),
    NameOfFile);

}  // namespace
}  // namespace jet::test
