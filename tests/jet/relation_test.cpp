// Relations of a real file are kept: Table1 refers to Table2 (deletes are passed on) and to Table3
// (changes of keys are passed on).
#include "jet/storage_checks.h"
#include "jet/storage_support.h"
#include "support/check_database.h"

#include <gtest/gtest.h>

namespace jet::test {
namespace {

class RelationTest : public testing::Test {
protected:
    void SetUp() override {
        const auto samples = SampleFolder();
        if (!samples) GTEST_SKIP() << "no sample files on this machine";
        auto opened = OpenCopy(*samples / "mdb" / "a2003-relations.mdb");
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

TEST_F(RelationTest, DeleteIsPassedOn) {
    ASSERT_EQ(Find(u"Table1", u"otherfk1", 1).size(), 2U);
    const base::Status deleted = Delete(u"Table2", 1);
    ASSERT_TRUE(deleted.ok()) << deleted.message();
    EXPECT_TRUE(Find(u"Table1", u"otherfk1", 1).empty());
    EXPECT_EQ(TableOf(u"Table1").row_count(), 2U);
}

TEST_F(RelationTest, DeleteOfAReferredRowIsRefused) {
    EXPECT_EQ(Delete(u"Table3", 10).number(), 3200);
    EXPECT_TRUE(Delete(u"Table3", 12).ok());
}

TEST_F(RelationTest, ChangeOfAKeyIsPassedOn) {
    ASSERT_TRUE(SetNumber(u"Table3", 11, u"id", 21).ok());
    EXPECT_EQ(Find(u"Table1", u"otherfk2", 21).size(), 2U);
    EXPECT_TRUE(Find(u"Table1", u"otherfk2", 11).empty());
}

TEST_F(RelationTest, ChangeOfAReferredKeyIsRefused) {
    EXPECT_EQ(SetNumber(u"Table2", 1, u"id", 7).number(), 3200);
    EXPECT_EQ(Find(u"Table2", u"id", 1).size(), 1U);
}

TEST_F(RelationTest, ForeignKeyNeedsItsRow) {
    EXPECT_EQ(SetNumber(u"Table1", 0, u"otherfk1", 99).number(), 3201);
    EXPECT_TRUE(SetNumber(u"Table1", 0, u"otherfk1", 2).ok());
    std::vector<Value> values(TableOf(u"Table1").design().columns.size());
    values[Column(u"Table1", u"id")] = Value::Long(50);
    values[Column(u"Table1", u"otherfk2")] = Value::Long(99);
    EXPECT_EQ(Do([&] { return TableOf(u"Table1").Insert(values).status(); }).number(), 3201);
    values[Column(u"Table1", u"otherfk2")] = Value::Null();
    EXPECT_TRUE(Do([&] { return TableOf(u"Table1").Insert(values).status(); }).ok());
}

TEST_F(RelationTest, TableInARelationIsNotDropped) {
    EXPECT_EQ(Do([&] { return database_->DropTable(u"Table2"); }).number(), 3281);
}

}  // namespace
}  // namespace jet::test
