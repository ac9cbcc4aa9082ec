// Damaged files: an answer or an error, never a crash or a loop.
#include "jet/tables/storage_support.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>

namespace jet::test {
namespace {

void WalkTable(Table& table) {
    std::vector<std::size_t> columns(table.design().columns.size());
    std::iota(columns.begin(), columns.end(), std::size_t{0});
    std::vector<Value> values(columns.size());
    std::optional<RowId> some;
    if (auto cursor = table.Scan(); cursor.ok()) {
        for (auto row = cursor.value()->Next(); row.ok() && row.value();
             row = cursor.value()->Next()) {
            some = row.value();
            cursor.value()->Read(columns, values).Ignore();
        }
    }
    for (std::size_t index = 0; index < table.design().indexes.size(); ++index) {
        if (!table.design().indexes[index].maintainable) continue;
        for (const bool backwards : {false, true}) {
            auto cursor = table.Range(index, {}, {}, backwards);
            if (!cursor.ok()) continue;
            for (auto row = cursor.value()->Next(); row.ok() && row.value();
                 row = cursor.value()->Next())
                cursor.value()->Read(columns, values).Ignore();
        }
    }
    if (!some) return;
    std::vector<ColumnChange> changes;
    for (std::size_t c = 0; c < columns.size(); ++c)
        if (table.design().columns[c].type == ColumnType::kText ||
            table.design().columns[c].type == ColumnType::kMemo)
            changes.push_back({c, Value::Text(u"changed")});
    table.Update(*some, changes).Ignore();
    std::vector<Value> row(columns.size());
    table.Insert(row).status().Ignore();
    table.Delete(*some).Ignore();
}

// Reads everything and tries every change.
void Exercise(std::vector<std::byte> bytes) {
    const bool jet3 = bytes.size() > 0x14 && bytes[0x14] == std::byte{0};
    auto opened = OpenDatabase(MakeMemoryPageStore(jet3 ? 2048 : 4096, std::move(bytes)), "file");
    if (!opened.ok()) return;
    Database& database = *opened.value();
    const auto names = database.TableNames();
    if (!names.ok()) return;
    for (const std::u16string& name : names.value()) {
        const auto table = database.FindTable(name);
        if (!table.ok() || !database.Begin().ok()) continue;
        WalkTable(*table.value());
        database.Rollback();
    }
    if (names.value().empty() || !database.Begin().ok()) return;
    ColumnDesign column;
    column.name = u"Added later";
    column.type = ColumnType::kMemo;
    database.AddColumn(names.value().front(), column).Ignore();
    database.DropTable(names.value().front()).Ignore();
    database.Rollback();
}

class StorageDamageTest : public testing::TestWithParam<std::filesystem::path> {};

TEST_P(StorageDamageTest, FlippedBytesAreSurvived) {
    const auto bytes = ReadWholeFile(GetParam());
    std::mt19937 random(42);
    const std::size_t page = bytes[0x14] == std::byte{0} ? 2048 : 4096;
    for (int round = 0; round < 250; ++round) {
        auto damaged = bytes;
        for (unsigned flips = 1 + random() % 8; flips > 0; --flips) {
            // Heads of pages hold what leads elsewhere.
            const std::size_t start = random() % (bytes.size() / page) * page;
            const std::size_t at = start + random() % (flips % 2 == 0 ? 64 : page);
            damaged[at] = static_cast<std::byte>(random());
        }
        Exercise(std::move(damaged));
    }
}

TEST_P(StorageDamageTest, EveryTruncationIsSurvived) {
    const auto bytes = ReadWholeFile(GetParam());
    const std::size_t page = bytes[0x14] == std::byte{0} ? 2048 : 4096;
    const std::size_t step = page * (1 + bytes.size() / page / 60);
    for (std::size_t size = 0; size < bytes.size(); size += step)
        Exercise({bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size)});
}

TEST_P(StorageDamageTest, SwappedPagesAreSurvived) {
    const auto bytes = ReadWholeFile(GetParam());
    std::mt19937 random(43);
    const std::size_t page = bytes[0x14] == std::byte{0} ? 2048 : 4096;
    for (int round = 0; round < 60; ++round) {
        auto damaged = bytes;
        const auto at = [&] {
            return damaged.begin() +
                   static_cast<std::ptrdiff_t>(random() % (bytes.size() / page) * page);
        };
        const auto first = at();
        std::swap_ranges(first, first + static_cast<std::ptrdiff_t>(page), at());
        Exercise(std::move(damaged));
    }
}

INSTANTIATE_TEST_SUITE_P(
    Files, StorageDamageTest,
    testing::ValuesIn(OurFilesAndReal(
        {"databases/catalogue-jet4.mdb", "databases/arcade-jet3.mdb", "databases/arcade-jet4.mdb"},
        {"catalogue/old-base-250.mdb", "mdb/a97-tables.mdb", "mdb/a2003-relations.mdb"})),
    NameOfFile);

}  // namespace
}  // namespace jet::test
