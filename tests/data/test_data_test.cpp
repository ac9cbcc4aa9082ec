// The files of this folder are sound, small, and what the program makes that is said to make them.
#include "data/make_test_data.h"
#include "jet/tables/database.h"
#include "support/check_database.h"
#include "support/test_data.h"

#include <fstream>
#include <numeric>

namespace test_data {
namespace {

std::vector<std::byte> BytesOf(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    const auto* bytes = reinterpret_cast<const std::byte*>(text.data());
    return {bytes, bytes + text.size()};
}

std::unique_ptr<jet::Database> Open(const std::filesystem::path& path) {
    auto bytes = BytesOf(path);
    const bool is_jet3 = bytes.at(0x14) == std::byte{0};
    auto opened = jet::OpenDatabase(
        jet::MakeMemoryPageStore(is_jet3 ? 2048 : 4096, std::move(bytes)), path.string());
    EXPECT_TRUE(opened.ok()) << opened.status().message();
    return opened.ok() ? std::move(opened).value() : nullptr;
}

std::vector<std::vector<jet::Value>> RowsOf(jet::Table& table) {
    std::vector<std::size_t> columns(table.design().columns.size());
    std::iota(columns.begin(), columns.end(), std::size_t{0});
    std::vector<std::vector<jet::Value>> rows;
    const auto cursor = table.Scan().value();
    while (cursor->Next().value())
        EXPECT_TRUE(cursor->Read(columns, rows.emplace_back(columns.size())).ok());
    return rows;
}

class TestDataTest : public testing::Test {
protected:
    void SetUp() override {
        std::string name = (std::filesystem::temp_directory_path() / "tavolo-data-XXXXXX").string();
        ASSERT_NE(mkdtemp(name.data()), nullptr);
        made_ = name;
    }
    void TearDown() override { std::filesystem::remove_all(made_); }

    static std::vector<std::filesystem::path> Databases() {
        return test_support::FilesIn(test_support::DataFolder() / "databases", ".mdb");
    }
    static std::vector<std::filesystem::path> TableFiles() {
        return test_support::FilesIn(test_support::DataFolder() / "tables", ".vpt");
    }

    std::filesystem::path made_;
};

TEST_F(TestDataTest, DatabasesHaveNoFault) {
    EXPECT_EQ(Databases().size(), 5U);
    for (const auto& path : Databases())
        EXPECT_TRUE(test_support::DatabaseIsSound(path, test_support::kOwnFile)) << path;
}

TEST_F(TestDataTest, DatabasesHoldWhatTheirProgramPutsIn) {
    ASSERT_TRUE(MakeDatabases(made_).ok());
    EXPECT_EQ(test_support::FilesIn(made_, ".mdb").size(), Databases().size());
    for (const auto& path : Databases()) {
        SCOPED_TRACE(path.filename().string());
        if (path.filename() == "password-jet4.mdb") {
            EXPECT_EQ(BytesOf(made_ / path.filename()).size(), BytesOf(path).size());
            continue;
        }
        const auto ours = Open(path);
        const auto again = Open(made_ / path.filename());
        const auto names = ours->TableNames().value();
        EXPECT_FALSE(names.empty());
        EXPECT_EQ(again->TableNames().value(), names);
        for (const std::u16string& name : names) {
            jet::Table& table = *ours->FindTable(name).value();
            jet::Table& same = *again->FindTable(name).value();
            EXPECT_EQ(same.design().columns, table.design().columns);
            EXPECT_EQ(same.design().indexes, table.design().indexes);
            EXPECT_EQ(RowsOf(same), RowsOf(table));
        }
    }
}

TEST_F(TestDataTest, TableFilesAreThoseThatTheirProgramWrites) {
    ASSERT_TRUE(MakeTableFiles(made_).ok());
    EXPECT_EQ(TableFiles().size(), 5U);
    EXPECT_EQ(test_support::FilesIn(made_, ".vpt").size(), TableFiles().size());
    for (const auto& path : TableFiles())
        EXPECT_EQ(BytesOf(made_ / path.filename()).size(), BytesOf(path).size()) << path;
}

TEST_F(TestDataTest, AllOfItIsSmall) {
    std::uintmax_t bytes = 0;
    for (const auto& files : {Databases(), TableFiles()})
        for (const auto& path : files)
            bytes += std::filesystem::file_size(path);
    EXPECT_LT(bytes, 800'000U);
}

}  // namespace
}  // namespace test_data
