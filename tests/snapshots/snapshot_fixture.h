// A small catalogue on files in memory, and a store of its snapshots.
#pragma once

#include "jet/connection.h"
#include "jet/pages/page_copy.h"
#include "jet/tables/database.h"
#include "snapshots/snapshot_store.h"
#include "support/faulty_file_system.h"

#include <gtest/gtest.h>

#include <random>

namespace test_support {

class SnapshotFixture : public testing::Test {
protected:
    using Bytes = FaultyFileSystem::Bytes;
    using Store = snapshots::SnapshotStore;

    static constexpr const char* kDatabase = "/data/pinball.mdb";
    static constexpr const char* kFolder = "/data/pinball.mdb-snapshots";
    static constexpr snapshots::LocalSeconds kHour = 3600;

    void SetUp() override { MakeCatalogue(40); }

    void MakeCatalogue(int rows) {
        ASSERT_TRUE(jet::CreateDatabaseFile(*files_, kDatabase, 40000).ok());
        Open();
        Execute(u"Create Table Tables (ID counter primary key, Name varchar(50), Notes memo, "
                u"Played int)");
        for (int i = 0; i < rows; ++i)
            Execute(u"Insert into Tables (Name, Notes, Played) values ('Table " + Number(i) +
                    u"', '" + std::u16string(200, u'n') + u"', 0)");
        Close();
    }

    void Open() {
        connection_ = std::make_unique<jet::Connection>(*files_);
        const base::Status opened = connection_->Open(u"Data Source=/data/pinball.mdb");
        ASSERT_TRUE(opened.ok()) << opened.message();
    }
    void Close() {
        if (connection_ == nullptr) return;
        EXPECT_TRUE(connection_->Close().ok());
        connection_.reset();
    }
    void Execute(const std::u16string& sql) {
        const auto done = connection_->Execute(sql);
        ASSERT_TRUE(done.ok()) << done.status().message();
    }
    static std::u16string Number(int number) {
        const std::string text = std::to_string(number);
        return {text.begin(), text.end()};
    }
    // A change of the catalogue, which is opened for it.
    void Run(const std::u16string& sql) {
        Open();
        Execute(sql);
        Close();
    }

    // Makes a snapshot and checks it; 0: nothing was new.
    snapshots::SnapshotNumber Take(snapshots::LocalSeconds time = 0,
                                   const std::string& label = "by the clock",
                                   snapshots::Occasion occasion = snapshots::Occasion::kClock) {
        const auto made = store_->Make({occasion, time, label});
        EXPECT_TRUE(made.ok()) << made.status().message();
        if (!made.ok() || !*made) return 0;
        const base::Status checked = store_->CheckAll();
        EXPECT_TRUE(checked.ok()) << checked.message();
        return **made;
    }
    Bytes Database() const { return files_->Get(kDatabase); }
    std::vector<snapshots::SnapshotInfo> List() const {
        const auto list = store_->List();
        EXPECT_TRUE(list.ok()) << list.status().message();
        return list.value_or({});
    }
    std::vector<std::filesystem::path> FilesOfSnapshots() const {
        std::vector<std::filesystem::path> paths;
        const auto names = files_->FileNames(kFolder);
        if (!names.ok()) return paths;
        for (const std::string& name : *names)
            paths.push_back(std::filesystem::path(kFolder) / name);
        return paths;
    }
    std::uint64_t BytesOfSnapshots() const {
        std::uint64_t bytes = 0;
        for (const auto& path : FilesOfSnapshots())
            bytes += files_->Get(path).size();
        return bytes;
    }
    // Goes on with other files, those that a stopped process has left for instance.
    void GoOnWith(std::unique_ptr<FaultyFileSystem> files) {
        store_.reset();
        connection_.reset();
        files_ = std::move(files);
        store_ = std::make_unique<Store>(*files_, kDatabase);
    }

    std::unique_ptr<FaultyFileSystem> files_ = std::make_unique<FaultyFileSystem>();
    std::unique_ptr<Store> store_ = std::make_unique<Store>(*files_, kDatabase);
    std::unique_ptr<jet::Connection> connection_;
};

}  // namespace test_support
