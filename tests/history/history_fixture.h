// A database in memory with a table "Games" and a history beside it.
#pragma once

#include "history/history_file.h"
#include "history/put_back.h"
#include "history/undo_order.h"
#include "jet/connection.h"
#include "jet/tables/database.h"
#include "support/faulty_file_system.h"

#include <gtest/gtest.h>

#include <map>

namespace history::test {

inline constexpr const char* kPath = "folder/games.mdb";
inline constexpr const char* kHistoryPath = "folder/games.mdb-history";

// The rows of a table by their first column, each the texts of the others.
using Content = std::map<std::u16string, std::vector<std::u16string>>;

class HistoryFixture : public testing::Test {
protected:
    void SetUp() override {
        Create(*files_);
        Open();
    }

    // The file with an empty table.
    static void Create(test_support::FaultyFileSystem& files) {
        ASSERT_TRUE(jet::CreateDatabaseFile(files, kPath, 45000).ok());
        jet::Connection connection(files);
        ASSERT_TRUE(connection.Open(u"Data Source=folder/games.mdb").ok());
        ASSERT_TRUE(connection
                        .Execute(u"CREATE TABLE Games (ID COUNTER PRIMARY KEY, Name TEXT(50), "
                                 u"Points LONG, Notes MEMO, Best YESNO)")
                        .ok());
        ASSERT_TRUE(connection.Close().ok());
    }

    void Open() {
        history_ = std::make_unique<HistoryFile>(*files_, kPath, limit_);
        connection_ = std::make_unique<jet::Connection>(*files_, [] { return 46000.25; });
        connection_->UseNotes(history_.get());
        const base::Status opened = connection_->Open(u"Data Source=folder/games.mdb");
        ASSERT_TRUE(opened.ok()) << opened.message();
    }
    void Close() {
        EXPECT_TRUE(connection_->Close().ok());
        connection_.reset();
        history_.reset();
    }
    void Reopen() {
        Close();
        Open();
    }

    void Run(std::u16string_view sql) {
        const auto done = connection_->Execute(sql);
        EXPECT_TRUE(done.ok()) << done.status().message();
    }
    void RunNamed(const char16_t* name, std::u16string_view sql) {
        const jet::NamedChange named(*connection_, name);
        Run(sql);
    }
    void InsertMany(int count) {
        const jet::NamedChange named(*connection_, u"Insert");
        for (int i = 0; i < count; ++i)
            Run(u"INSERT INTO Games (Name, Points) VALUES ('Game', 1)");
    }

    std::vector<Change> Changes() {
        EXPECT_TRUE(connection_->Flush().ok());
        auto changes = history_->Changes();
        EXPECT_TRUE(changes.ok()) << changes.status().message();
        return changes.ok() ? std::move(changes).value() : std::vector<Change>();
    }
    PutBackResult Undo(std::uint64_t number, const PartOfChange& part = {}) {
        auto done = PutBack(*connection_, *history_, number, u"Undo", part);
        EXPECT_TRUE(done.ok()) << done.status().message();
        return done.ok() ? std::move(done).value() : PutBackResult();
    }
    PutBackResult UndoLast() { return Undo(Changes().back().number); }

    Content Rows(std::u16string_view table = u"Games") { return RowsOf(*connection_, table); }
    static Content RowsOf(jet::Connection& connection, std::u16string_view table = u"Games") {
        Content content;
        auto rows = connection.Execute(u"SELECT * FROM " + std::u16string(table));
        EXPECT_TRUE(rows.ok()) << rows.status().message();
        for (; rows.ok() && !rows->Eof(); rows->MoveNext().Ignore()) {
            std::vector<std::u16string> row;
            for (std::size_t i = 1; i < rows->FieldCount(); ++i)
                row.push_back(jet::ToText(rows->Fields(i).value()));
            content[jet::ToText(rows->Fields(0).value())] = std::move(row);
        }
        return content;
    }

    std::uint64_t limit_ = kDefaultLimitBytes;
    std::unique_ptr<test_support::FaultyFileSystem> files_ =
        std::make_unique<test_support::FaultyFileSystem>();
    std::unique_ptr<HistoryFile> history_;
    std::unique_ptr<jet::Connection> connection_;
};

}  // namespace history::test
