#include "snapshots/compare.h"

#include "snapshots/snapshot_fixture.h"

namespace {

using snapshots::TableDifference;

class CompareTest : public test_support::SnapshotFixture {
protected:
    std::vector<TableDifference> Compare(const Bytes& now, const Bytes& then) {
        const auto compared = snapshots::CompareFiles(now, then);
        EXPECT_TRUE(compared.ok()) << compared.status().message();
        return compared.value_or({});
    }
};

TEST_F(CompareTest, EqualFilesHaveEqualRows) {
    const auto compared = Compare(Database(), Database());
    ASSERT_EQ(compared.size(), 1U);
    EXPECT_EQ(compared[0], (TableDifference{"Tables", 0, 0, 0, 40}));
    EXPECT_TRUE(compared[0].is_same());
}

TEST_F(CompareTest, CountsRowsMoreFewerAndDifferent) {
    const Bytes then = Database();
    Run(u"Delete from Tables where ID < 4");
    Run(u"Update Tables set Notes = 'other' where ID = 10 or ID = 11");
    Run(u"Insert into Tables (Name) values ('new')");
    EXPECT_EQ(Compare(Database(), then)[0], (TableDifference{"Tables", 3, 1, 2, 35}));
    EXPECT_EQ(Compare(then, Database())[0], (TableDifference{"Tables", 1, 3, 2, 35}));
}

TEST_F(CompareTest, NullIsNotTheEmptyText) {
    const Bytes then = Database();
    Run(u"Update Tables set Notes = Null where ID = 1");
    const Bytes null = Database();
    EXPECT_EQ(Compare(null, then)[0].different, 1U);
}

TEST_F(CompareTest, ATableOfOneStateOnly) {
    const Bytes then = Database();
    Run(u"Create Table Extra (Word varchar(10))");
    Run(u"Insert into Extra values ('one')");
    auto compared = Compare(Database(), then);
    ASSERT_EQ(compared.size(), 2U);
    EXPECT_EQ(compared[1].table, "Extra");
    EXPECT_EQ(compared[1].fewer, 1U);
    compared = Compare(then, Database());
    ASSERT_EQ(compared.size(), 2U);
    EXPECT_EQ(compared[1].table, "Extra");
    EXPECT_EQ(compared[1].more, 1U);
}

TEST_F(CompareTest, AColumnOfOneStateOnlyIsNullInTheOther) {
    const Bytes then = Database();
    Run(u"Alter Table Tables add Extra varchar(10)");
    EXPECT_EQ(Compare(Database(), then)[0].equal, 40U);
    Run(u"Update Tables set Extra = 'x' where ID = 2");
    EXPECT_EQ(Compare(Database(), then)[0].different, 1U);
}

TEST_F(CompareTest, WithoutAPrimaryKeyRowsAreComparedAsAWhole) {
    Run(u"Create Table Words (Word varchar(10))");
    for (int i = 0; i < 3; ++i)
        Run(u"Insert into Words values ('same')");
    const Bytes then = Database();
    Run(u"Insert into Words values ('same')");
    Run(u"Insert into Words values ('other')");
    const auto compared = Compare(Database(), then);
    ASSERT_EQ(compared.size(), 2U);
    EXPECT_EQ(compared[1], (TableDifference{"Words", 0, 2, 0, 3}));
}

TEST_F(CompareTest, WhatIsNoDatabaseIsAnError) {
    EXPECT_FALSE(snapshots::CompareFiles(Database(), Bytes(4096)).ok());
    EXPECT_FALSE(snapshots::CompareFiles(Bytes(), Database()).ok());
}

}  // namespace
