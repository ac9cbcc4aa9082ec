// What the engine does not open or does not write, and what it says about it.
#include "jet/connection.h"
#include "jet/tables/catalog.h"
#include "jet/tables/table_fixture.h"

#include <algorithm>

namespace jet::test {
namespace {

class DatabaseRefusalTest : public TableFixture {
protected:
    // The file's bytes, closed.
    std::vector<std::byte> Bytes() {
        EXPECT_TRUE(database_->Close().ok());
        database_.reset();
        return ReadWholeFile(path_);
    }
    // What the user is told who opens a file of these bytes.
    base::Status Refusal(const std::vector<std::byte>& bytes) {
        WriteWholeFile(path_, bytes);
        Connection connection(*files_);
        const base::Status status =
            connection.Open(u"Data Source=" + path_.u16string() + u";Mode=Read");
        EXPECT_FALSE(status.ok());
        EXPECT_EQ(connection.Open(u"Data Source=" + path_.u16string()).message(), status.message());
        EXPECT_EQ(ReadWholeFile(path_), bytes);
        return status;
    }
    std::string Name() { return "Unrecognized database format '" + path_.string() + "'"; }
    static void Sign(std::vector<std::byte>& bytes, std::string_view signature) {
        std::ranges::transform(signature, bytes.begin() + 4, [](char c) { return std::byte(c); });
    }
};

TEST_F(DatabaseRefusalTest, OtherFilesAreNoDatabase) {
    static_cast<void>(Bytes());
    const base::Status status = Refusal(std::vector<std::byte>(8192, std::byte{'x'}));
    EXPECT_EQ(status.number(), 3343);
    EXPECT_EQ(status.message(), Name() + ".");
}

TEST_F(DatabaseRefusalTest, NewerFileIsSaidToBeNewer) {
    auto bytes = Bytes();
    Sign(bytes, "Standard ACE DB");
    EXPECT_EQ(Refusal(bytes).number(), 3343);
    EXPECT_EQ(Refusal(bytes).message(),
              Name() + ": the file was made by a newer version of the database engine (.accdb).");
    Sign(bytes, "Standard Jet DB");
    bytes[0x14] = std::byte{2};
    EXPECT_EQ(Refusal(bytes).message(),
              Name() + ": the file was made by a newer version of the database engine.");
}

TEST_F(DatabaseRefusalTest, EncryptedFileIsSaidToBeEncrypted) {
    auto bytes = Bytes();
    auto relative = bytes;
    Sign(relative, "MSISAM Database");
    EXPECT_EQ(Refusal(relative).message(), Name() + ": the file is an encrypted database.");
}

TEST_F(DatabaseRefusalTest, PasswordIsAskedForByName) {
    auto bytes = Bytes();
    bytes[0x42] ^= std::byte{0x31};
    EXPECT_EQ(Refusal(bytes).number(), 3031);
    EXPECT_EQ(Refusal(bytes).message(), "Not a valid password. The database '" + path_.string() +
                                            "' is protected by a database password.");
}

// Definitions as no statement of the engine leaves them.
class ChangedDefinitionTest : public TableFixture {
protected:
    template <typename Change>
    void ChangeDefinition(std::u16string_view name, Change change) {
        const PageHeader header =
            ReadPageHeader(database_->pages().Read(0).value().bytes(), "").value();
        FileContext file(database_->pages(), header);
        Catalog catalog(file);
        auto table = ReadTableDefinition(file.store, file.format, file.text,
                                         catalog.FindTable(name).value()->definition_page());
        ASSERT_TRUE(table.ok());
        change(table.value());
        ASSERT_TRUE(database_->Begin().ok());
        ASSERT_TRUE(
            WriteTableDefinition(file.store, file.format, file.text, file.allocator, table.value())
                .ok());
        ASSERT_TRUE(database_->Commit().ok());
        Reopen();
    }
    static void SortAsInTurkish(TableDefinition& table) {
        for (ColumnDefinition& column : table.columns)
            if (column.is_text()) column.sort_order = 0x041F;
    }
};

class ForeignSortOrderTest : public ChangedDefinitionTest {
protected:
    void SetUp() override {
        TableFixture::SetUp();
        CreateGames();
        for (const char16_t* name : {u"Taxi", u"Fathom", u"Xenon"})
            ASSERT_TRUE(InsertGame(name, 1990, u"notes").ok());
        ChangeDefinition(u"Games", SortAsInTurkish);
    }

    static constexpr const char* kReason =
        "Cannot update. Database or object is read-only. (Table 'Games' has an index whose sort "
        "order is not supported.)";
};

TEST_F(ForeignSortOrderTest, TableSaysWhyItIsReadOnly) {
    ASSERT_TRUE(Games().read_only_reason());
    EXPECT_EQ(Games().read_only_reason()->number(), 3027);
    EXPECT_EQ(Games().read_only_reason()->message(), kReason);
    EXPECT_EQ(InsertGame(u"Genie", 1979, u"").status().message(), kReason);
    EXPECT_EQ(Delete(u"Games", RowId{}).message(), kReason);
    for (const IndexDesign& index : Games().design().indexes)
        EXPECT_EQ(index.maintainable, index.name != u"Name");
}

TEST_F(ForeignSortOrderTest, RowsAreFoundWithoutTheIndex) {
    Connection connection(std::move(database_));
    auto rows = connection.Execute(u"SELECT Name FROM Games WHERE Name >= 'G' ORDER BY Name");
    ASSERT_TRUE(rows.ok()) << rows.status().message();
    std::vector<std::u16string> names;
    for (; !rows->Eof(); static_cast<void>(rows->MoveNext()))
        names.push_back(rows->Fields(0).value().as<std::u16string>());
    EXPECT_EQ(names, (std::vector<std::u16string>{u"Taxi", u"Xenon"}));
    const auto changed = connection.Execute(u"UPDATE Games SET [Year] = 1991");
    EXPECT_EQ(changed.status().message(), kReason);
}

class DamagedRelationTest : public ChangedDefinitionTest {
protected:
    // Games refer to makers by name and to people by number.
    void SetUp() override {
        TableFixture::SetUp();
        Connection connection(std::move(database_));
        for (const char16_t* sql :
             {u"CREATE TABLE Makers (Name TEXT(20) PRIMARY KEY, No LONG CONSTRAINT ByNo UNIQUE)",
              u"CREATE TABLE Games (Maker TEXT(20), No LONG, "
              u"CONSTRAINT ByName FOREIGN KEY (Maker) REFERENCES Makers, "
              u"CONSTRAINT ByNumber FOREIGN KEY (No) REFERENCES Makers (No))",
              u"INSERT INTO Makers (Name, No) VALUES ('Bally', 1)",
              u"INSERT INTO Games (Maker, No) VALUES ('Bally', 1)"}) {
            const auto done = connection.Execute(sql);
            ASSERT_TRUE(done.ok()) << done.status().message();
        }
        ASSERT_TRUE(connection.Close().ok());
        Open();
    }
    // The checker is not asked: the file is damaged.
    void TearDown() override {}

    base::Status InsertAnotherGame() {
        return Insert(u"Games", {Value::Text(u"Bally"), Value::Long(1)}).status();
    }
    base::Status DeleteTheMaker() {
        const auto row = TableOf(u"Makers").Scan().value()->Next().value().value();
        return Delete(u"Makers", row);
    }
};

TEST_F(DamagedRelationTest, ColumnsOfTwoTypesAreDamage) {
    for (const char16_t* name : {u"Games", u"Makers"})
        ChangeDefinition(name, [](TableDefinition& table) {
            std::vector<LogicalIndex*> relations;
            for (LogicalIndex& index : table.logical_indexes)
                if (index.kind == IndexKind::kRelation) relations.push_back(&index);
            ASSERT_EQ(relations.size(), 2U);
            std::swap(relations[0]->partner, relations[1]->partner);
        });
    EXPECT_EQ(InsertAnotherGame().number(), 3049);
    EXPECT_EQ(DeleteTheMaker().number(), 3049);
}

TEST_F(DamagedRelationTest, ReferencedTableOfAnotherSortOrderRefusesTheRow) {
    ChangeDefinition(u"Makers", SortAsInTurkish);
    EXPECT_EQ(InsertAnotherGame().number(), 3027);
}

TEST_F(DamagedRelationTest, ReferringTableOfAnotherSortOrderHoldsTheRow) {
    ChangeDefinition(u"Games", SortAsInTurkish);
    EXPECT_EQ(DeleteTheMaker().number(), 3027);
}

}  // namespace
}  // namespace jet::test
