// Repairing: whatever is done to a file, all rows on sound pages come back, and the new file is
// sound.
#include "jet/repair/repair.h"

#include "base/unicode.h"
#include "jet/connection.h"
#include "jet/pages/data_page.h"
#include "jet/pages/definition_layout.h"
#include "jet/pages/long_value_layout.h"
#include "jet/pages/page_header.h"
#include "jet/repair/same_content.h"
#include "jet/rows/field_codec.h"
#include "jet/rows/row_fetch.h"
#include "jet/tables/catalog.h"
#include "jet/tables/database.h"
#include "jet/tables/storage_support.h"
#include "platform/file_system.h"
#include "support/check_database.h"
#include "support/encoded_file.h"
#include "support/faulty_file_system.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <random>
#include <set>

namespace jet::test {
namespace {

using test_support::FaultyFileSystem;
using FileBytes = std::vector<std::byte>;

constexpr const char* kFrom = "folder/damaged.mdb";
constexpr const char* kTo = "folder/repaired.mdb";

// The rows of a file's tables as lines of text, by table, and what each of them stands on.
struct TextOfRow {
    std::string text;
    std::set<PageNumber> pages;  // its own, and those of its long values
};
using TextOfTables = std::map<std::string, std::vector<TextOfRow>>;

void AddPagesOfLongValue(FileContext& file, std::span<const std::byte> reference,
                         std::set<PageNumber>& pages) {
    if (reference.size() < kLongValueHead) return;
    const auto word = base::LoadLittle<std::uint32_t>(reference.data());
    if ((word & kLongValueInline) != 0) return;
    RowPointer at = LoadRowPointer(reference.data() + kLongValuePlace);
    while (!at.none()) {
        pages.insert(at.page);
        if ((word & kLongValueSingle) != 0) return;
        const PageView view = file.store.Read(at.page).value();
        at = LoadRowPointer(DataPage::Parse(view.bytes(), file.format)->Bytes(at.row)->data());
    }
}

// User tables of a sound file. `definitions`: the pages of their definitions, by table.
TextOfTables ReadTables(PageStore& store,
                        std::map<std::string, std::set<PageNumber>>* definitions) {
    FileContext file(store, ReadPageHeader(store.Read(0).value().bytes(), "").value());
    Catalog catalog(file);
    TextOfTables tables;
    const auto* entries = catalog.Entries().value();
    for (const CatalogEntry& entry : *entries) {
        if (!entry.is_user_table()) continue;
        const std::string name = base::ToUtf8(entry.name);
        const auto table =
            ReadTableDefinition(file.store, file.format, file.text, entry.definition_page())
                .value();
        if (definitions != nullptr) (*definitions)[name] = {table.pages.begin(), table.pages.end()};
        auto& rows = tables[name];
        const std::vector<PageNumber> pages = file.Map(table.owned).Members().value();
        for (const PageNumber number : pages) {
            const PageView view = file.store.Read(number).value();
            const auto page = DataPage::Parse(view.bytes(), file.format).value();
            for (std::size_t slot = 0; slot < page.slot_count(); ++slot) {
                const RowId at{number, static_cast<std::uint8_t>(slot)};
                const auto stored = FetchRow(file, table.page, at);
                if (!stored.ok()) continue;
                TextOfRow& row = rows.emplace_back();
                row.pages = {number, stored->at.page};
                const auto fields = RowView::Parse(stored->bytes, file.format).value();
                for (const ColumnDefinition& column : table.columns) {
                    Value value;
                    EXPECT_TRUE(DecodeField(file, column, fields, value).ok());
                    row.text += Describe(value) + " | ";
                    if (column.is_long_value() && fields.Bit(column.number))
                        AddPagesOfLongValue(file, *fields.Field(column), row.pages);
                }
            }
        }
    }
    return tables;
}

FileBytes UsedFile(int version) {
    FaultyFileSystem files;
    EXPECT_TRUE(CreateDatabaseFile(files, kFrom, 40000.25, version).ok());
    Connection connection(files);
    EXPECT_TRUE(connection.Open(u"Data Source=folder/damaged.mdb").ok());
    const auto execute = [&](const std::u16string& sql) {
        const auto done = connection.Execute(sql);
        EXPECT_TRUE(done.ok()) << done.status().message();
    };
    execute(u"CREATE TABLE Makers (ID COUNTER PRIMARY KEY, Name TEXT(50))");
    execute(
        u"CREATE TABLE Games (ID COUNTER PRIMARY KEY, Name TEXT(80), Old BIT, Notes MEMO, Maker "
        u"LONG, CONSTRAINT MadeBy FOREIGN KEY (Maker) REFERENCES Makers (ID))");
    execute(u"CREATE INDEX ByName ON Games (Name, Maker)");
    execute(u"INSERT INTO Makers (Name) VALUES ('Gottlieb')");
    for (int i = 0; i < 90; ++i) {
        const std::string number = std::to_string(i);
        const std::string length = std::to_string(i % 9 == 0 ? 9000 : i % 9 * 40);
        execute(u"INSERT INTO Games (Name, Old, Notes, Maker) VALUES ('Game " +
                base::ToUtf16(number) + u"', True, String(" + base::ToUtf16(length) +
                u", 'n'), 1)");
    }
    execute(u"UPDATE Games SET Name = Name + String(60, 'x') WHERE ID MOD 7 = 0");
    execute(u"DELETE FROM Games WHERE ID MOD 11 = 0");
    EXPECT_TRUE(connection.Close().ok());
    return files.Get(kFrom);
}

std::uint32_t PageSizeOf(const FileBytes& bytes) {
    return bytes[0x14] == std::byte{0} ? 2048 : 4096;
}

struct Repaired {
    base::Status status;
    RepairReport report;
    FileBytes bytes;  // of the new file
};

Repaired RepairBytes(const FileBytes& bytes) {
    FaultyFileSystem files;
    files.Put(kFrom, bytes);
    Repaired repaired;
    repaired.status = Repair(files, kFrom, kTo, repaired.report);
    EXPECT_EQ(files.Get(kFrom), bytes);
    EXPECT_FALSE(files.Exists(std::string(kTo) + "-new"));
    EXPECT_EQ(files.Exists(kTo), repaired.status.ok());
    repaired.bytes = files.Get(kTo);
    return repaired;
}

// Every row of `original` whose pages, and whose definition, are as they were in `damaged` must be
// among those of `repaired`.
void ExpectSoundRows(const FileBytes& original, const FileBytes& damaged,
                     const FileBytes& repaired) {
    const std::uint32_t page_size = PageSizeOf(original);
    std::set<PageNumber> changed;
    for (std::size_t at = 0; at < original.size(); at += page_size)
        if (at + page_size > damaged.size() ||
            !std::equal(original.begin() + static_cast<std::ptrdiff_t>(at),
                        original.begin() + static_cast<std::ptrdiff_t>(at + page_size),
                        damaged.begin() + static_cast<std::ptrdiff_t>(at)))
            changed.insert(static_cast<PageNumber>(at / page_size));
    const auto is_sound = [&](const std::set<PageNumber>& pages) {
        return std::ranges::none_of(pages, [&](PageNumber page) { return changed.contains(page); });
    };
    std::map<std::string, std::set<PageNumber>> definitions;
    const auto before = ReadTables(*MakeMemoryPageStore(page_size, original), &definitions);
    const auto after = ReadTables(*MakeMemoryPageStore(page_size, repaired), nullptr);
    std::multiset<std::string> found;  // whatever their tables are called now
    for (const auto& [name, rows] : after)
        for (const TextOfRow& row : rows)
            found.insert(row.text);
    for (const auto& [name, rows] : before) {
        if (!is_sound(definitions[name])) continue;
        for (const TextOfRow& row : rows) {
            if (!is_sound(row.pages)) continue;
            const auto same = found.find(row.text);
            // Another row, whose page is damaged, may have its number now and have come first.
            if (same == found.end()) {
                const std::string rest = row.text.substr(row.text.find('|'));
                const auto numbered = std::ranges::find_if(
                    found, [&](const std::string& text) { return text.ends_with(rest); });
                EXPECT_NE(numbered, found.end()) << name << ": " << row.text.substr(0, 200);
                if (numbered != found.end()) found.erase(numbered);
                continue;
            }
            found.erase(same);
        }
    }
}

class RepairTest : public testing::TestWithParam<int> {};

TEST_P(RepairTest, ASoundFileComesBackWhole) {
    const FileBytes bytes = UsedFile(GetParam());
    const Repaired repaired = RepairBytes(bytes);
    ASSERT_TRUE(repaired.status.ok()) << repaired.status.message();
    for (const RepairLoss& loss : repaired.report.losses)
        ADD_FAILURE() << Describe(loss);
    const auto original = MakeMemoryPageStore(PageSizeOf(bytes), bytes);
    const auto copy = MakeMemoryPageStore(PageSizeOf(bytes), repaired.bytes);
    ExpectSameContent(*original, *copy);
}

TEST_P(RepairTest, AnEncodedFileStaysEncoded) {
    FileBytes bytes = UsedFile(GetParam());
    test_support::EncodeFile(bytes, 0x1234ABCD);
    Repaired repaired = RepairBytes(bytes);
    ASSERT_TRUE(repaired.status.ok()) << repaired.status.message();
    EXPECT_EQ(repaired.report.loss_count, 0U);
    test_support::EncodeFile(repaired.bytes, 0x1234ABCD);
    const auto tables =
        ReadTables(*MakeMemoryPageStore(PageSizeOf(bytes), repaired.bytes), nullptr);
    EXPECT_EQ(tables.at("Games").size(), 82U);
}

TEST_P(RepairTest, MapsAndIndexesAreNotNeeded) {
    const FileBytes bytes = UsedFile(GetParam());
    const std::uint32_t page_size = PageSizeOf(bytes);
    FileBytes damaged = bytes;
    for (std::size_t at = page_size; at < damaged.size(); at += page_size) {
        const auto page = std::span(damaged).subspan(at, page_size);
        const bool is_map = HasType(page, PageType::kData) && LoadOwner(page) <= 1;
        const bool is_index =
            HasType(page, PageType::kIndexLeaf) || HasType(page, PageType::kIndexNode);
        if (is_map || is_index) std::ranges::fill(page, std::byte{0xDD});
    }
    const Repaired repaired = RepairBytes(damaged);
    ASSERT_TRUE(repaired.status.ok()) << repaired.status.message();
    for (const RepairLoss& loss : repaired.report.losses)
        EXPECT_EQ(loss.reason, "the page is damaged, and nothing tells what was on it");
    EXPECT_GT(repaired.report.loss_count, 0U);
    ExpectSoundRows(bytes, bytes, repaired.bytes);
}

TEST_P(RepairTest, ADamagedIndexIsNoLossWhileItsMapTellsWhatItWas) {
    const FileBytes bytes = UsedFile(GetParam());
    const std::uint32_t page_size = PageSizeOf(bytes);
    FileBytes damaged = bytes;
    for (std::size_t at = page_size; at < damaged.size(); at += page_size) {
        const auto page = std::span(damaged).subspan(at, page_size);
        if (HasType(page, PageType::kIndexLeaf) || HasType(page, PageType::kIndexNode))
            std::ranges::fill(page, std::byte{0xDD});
    }
    const Repaired repaired = RepairBytes(damaged);
    ASSERT_TRUE(repaired.status.ok()) << repaired.status.message();
    EXPECT_EQ(repaired.report.loss_count, 0U);
    ExpectSoundRows(bytes, bytes, repaired.bytes);
}

TEST_P(RepairTest, ADamagedPageOfRowsIsToldWithItsTable) {
    const FileBytes bytes = UsedFile(GetParam());
    const std::uint32_t page_size = PageSizeOf(bytes);
    std::map<std::string, std::set<PageNumber>> definitions;
    ReadTables(*MakeMemoryPageStore(page_size, bytes), &definitions);
    const PageNumber games = *definitions.at("Games").begin();
    FileBytes damaged = bytes;
    std::size_t at = page_size;
    while (!HasType(std::span(damaged).subspan(at, page_size), PageType::kData) ||
           LoadOwner(std::span(damaged).subspan(at, page_size)) != games)
        at += page_size;
    std::ranges::fill(std::span(damaged).subspan(at, page_size), std::byte{0xDD});
    const Repaired repaired = RepairBytes(damaged);
    ASSERT_TRUE(repaired.status.ok()) << repaired.status.message();
    ASSERT_EQ(repaired.report.loss_count, 1U);
    EXPECT_EQ(repaired.report.losses[0].table, "Games");
    EXPECT_EQ(repaired.report.losses[0].page, at / page_size);
    ExpectSoundRows(bytes, damaged, repaired.bytes);
}

TEST_P(RepairTest, ADamagedFirstPageIsMadeAnew) {
    const FileBytes bytes = UsedFile(GetParam());
    for (const std::size_t size : {4U, 0x18U, 0x200U}) {
        FileBytes damaged = bytes;
        std::fill_n(damaged.begin(), size, std::byte{0xDD});
        const Repaired repaired = RepairBytes(damaged);
        ASSERT_TRUE(repaired.status.ok()) << repaired.status.message();
        EXPECT_GE(repaired.report.loss_count, 1U);
        ExpectSoundRows(bytes, bytes, repaired.bytes);
    }
}

TEST_P(RepairTest, DefinitionsOfTheEngineAreNotNeeded) {
    const FileBytes bytes = UsedFile(GetParam());
    const std::uint32_t page_size = PageSizeOf(bytes);
    FileBytes damaged = bytes;
    std::fill_n(damaged.begin(), (kRelationsPage + 1) * page_size, std::byte{0xDD});
    const Repaired repaired = RepairBytes(damaged);
    ASSERT_TRUE(repaired.status.ok()) << repaired.status.message();
    ExpectSoundRows(bytes, damaged, repaired.bytes);
}

TEST_P(RepairTest, ALostPageOfTheCatalogueCostsNamesOnly) {
    const FileBytes bytes = UsedFile(GetParam());
    const std::uint32_t page_size = PageSizeOf(bytes);
    FileBytes damaged = bytes;
    for (std::size_t at = page_size; at < damaged.size(); at += page_size) {
        const auto page = std::span(damaged).subspan(at, page_size);
        if (HasType(page, PageType::kData) && LoadOwner(page) == kObjectsPage)
            std::ranges::fill(page, std::byte{0});
    }
    const Repaired repaired = RepairBytes(damaged);
    ASSERT_TRUE(repaired.status.ok()) << repaired.status.message();
    ExpectSoundRows(bytes, bytes, repaired.bytes);
}

TEST_P(RepairTest, ADefinitionThatAnotherOneClaimsForItsOwnStays) {
    const FileBytes bytes = UsedFile(GetParam());
    std::map<std::string, std::set<PageNumber>> definitions;
    ReadTables(*MakeMemoryPageStore(PageSizeOf(bytes), bytes), &definitions);
    const PageNumber games = *definitions.at("Games").begin();
    const std::size_t makers = std::size_t{*definitions.at("Makers").begin()} * PageSizeOf(bytes);
    FileBytes damaged = bytes;
    base::StoreLittle(damaged.data() + makers + kNextDefinitionPage, games);
    const Repaired repaired = RepairBytes(damaged);
    ASSERT_TRUE(repaired.status.ok()) << repaired.status.message();
    ExpectSoundRows(bytes, damaged, repaired.bytes);
}

TEST_P(RepairTest, NoByteOfADefinitionOfTheEngineCostsATable) {
    const FileBytes bytes = UsedFile(GetParam());
    const std::uint32_t page_size = PageSizeOf(bytes);
    for (PageNumber page = kObjectsPage; page <= kRelationsPage; ++page)
        for (std::size_t i = 0; i < 64; ++i) {
            SCOPED_TRACE("page " + std::to_string(page) + " byte " + std::to_string(i));
            FileBytes damaged = bytes;
            damaged[page * page_size + i] ^= std::byte{0x15};
            const Repaired repaired = RepairBytes(damaged);
            ASSERT_TRUE(repaired.status.ok()) << repaired.status.message();
            ExpectSoundRows(bytes, damaged, repaired.bytes);
            if (HasFailure()) return;
        }
}

// Type, id, parent, name, whatever it is: the table is there, though under another name perhaps.
TEST_P(RepairTest, NoByteOfACataloguesRowCostsATable) {
    const FileBytes bytes = UsedFile(GetParam());
    const auto store = MakeMemoryPageStore(PageSizeOf(bytes), bytes);
    FileContext file(*store, ReadPageHeader(store->Read(0).value().bytes(), "").value());
    const auto objects =
        ReadTableDefinition(file.store, file.format, file.text, kObjectsPage).value();
    const std::vector<PageNumber> pages = file.Map(objects.owned).Members().value();
    const FileBytes name = file.text.EncodeName(u"Games").value();
    int rows = 0;
    for (const PageNumber number : pages) {
        const PageView view = store->Read(number).value();
        const auto page = DataPage::Parse(view.bytes(), file.format).value();
        for (std::size_t slot = 0; slot < page.slot_count(); ++slot) {
            const auto row = page.Bytes(slot).value();
            if (std::search(row.begin(), row.end(), name.begin(), name.end()) == row.end())
                continue;
            ++rows;
            const std::size_t at = std::size_t{number} * PageSizeOf(bytes) +
                                   static_cast<std::size_t>(row.data() - view.bytes().data());
            for (std::size_t i = at; i < at + row.size(); ++i) {
                SCOPED_TRACE("byte " + std::to_string(i - at));
                FileBytes damaged = bytes;
                damaged[i] ^= std::byte{0x15};
                const Repaired repaired = RepairBytes(damaged);
                ASSERT_TRUE(repaired.status.ok()) << repaired.status.message();
                ExpectSoundRows(bytes, damaged, repaired.bytes);
                if (HasFailure()) return;
            }
        }
    }
    EXPECT_EQ(rows, 1);
}

TEST_P(RepairTest, ARowThatWasMovedFromALostPageComesBack) {
    const FileBytes bytes = UsedFile(GetParam());
    const std::uint32_t page_size = PageSizeOf(bytes);
    const auto store = MakeMemoryPageStore(page_size, bytes);
    // Both places are sound in the original; only the first is lost.
    const auto rows = ReadTables(*store, nullptr).at("Games");
    const FileContext file(*store, ReadPageHeader(store->Read(0).value().bytes(), "").value());
    int moved_rows = 0;
    for (PageNumber home = kRelationsPage + 1; home < store->page_count(); ++home) {
        const PageView view = store->Read(home).value();
        const auto page = HasType(view.bytes(), PageType::kData)
                              ? DataPage::Parse(view.bytes(), file.format)
                              : std::nullopt;
        for (std::size_t slot = 0; page && slot < page->slot_count(); ++slot) {
            if (page->Flags(slot) != kSlotMoved) continue;
            const RowPointer to = LoadRowPointer(page->Bytes(slot)->data());
            FileBytes damaged = bytes;
            std::ranges::fill(std::span(damaged).subspan(std::size_t{home} * page_size, page_size),
                              std::byte{0xDD});
            const Repaired repaired = RepairBytes(damaged);
            ASSERT_TRUE(repaired.status.ok()) << repaired.status.message();
            const auto found =
                ReadTables(*MakeMemoryPageStore(page_size, repaired.bytes), nullptr).at("Games");
            EXPECT_GT(rows.size(), found.size());
            for (const TextOfRow& row : rows)
                if (row.pages.contains(home) && row.pages.contains(to.page)) {
                    ++moved_rows;
                    EXPECT_TRUE(std::ranges::any_of(found, [&](const TextOfRow& other) {
                        return other.text == row.text;
                    })) << row.text.substr(0, 100);
                }
        }
    }
    EXPECT_GT(moved_rows, 0);
}

TEST_P(RepairTest, RowsWithoutADefinitionAreTold) {
    const FileBytes bytes = UsedFile(GetParam());
    const std::uint32_t page_size = PageSizeOf(bytes);
    std::map<std::string, std::set<PageNumber>> definitions;
    ReadTables(*MakeMemoryPageStore(page_size, bytes), &definitions);
    const PageNumber games = *definitions.at("Games").begin();
    FileBytes damaged = bytes;
    std::ranges::fill(std::span(damaged).subspan(std::size_t{games} * page_size, page_size),
                      std::byte{0xDD});
    const Repaired repaired = RepairBytes(damaged);
    ASSERT_TRUE(repaired.status.ok()) << repaired.status.message();
    const std::string told = "whose definition on page " + std::to_string(games);
    EXPECT_TRUE(std::ranges::any_of(repaired.report.losses, [&](const RepairLoss& loss) {
        return loss.reason.find(told) != std::string::npos;
    }));
}

TEST_P(RepairTest, DamagedPropertiesAreTakenAwayAndTold) {
    FaultyFileSystem files;
    ASSERT_TRUE(CreateDatabaseFile(files, kFrom, 40000.25, GetParam()).ok());
    Connection connection(files);
    ASSERT_TRUE(connection.Open(u"Data Source=folder/damaged.mdb").ok());
    ASSERT_TRUE(
        connection.Execute(u"CREATE TABLE T (ID COUNTER PRIMARY KEY, N LONG DEFAULT 7)").ok());
    ASSERT_TRUE(connection.Execute(u"INSERT INTO T (N) VALUES (5)").ok());
    ASSERT_TRUE(connection.Close().ok());
    FileBytes damaged = files.Get(kFrom);
    const std::string_view signature = GetParam() == 4 ? "MR2" : "KKD";
    const auto at = std::search(damaged.begin(), damaged.end(), signature.begin(), signature.end(),
                                [](std::byte a, char b) { return a == static_cast<std::byte>(b); });
    ASSERT_NE(at, damaged.end());
    *at = std::byte{'X'};
    const Repaired repaired = RepairBytes(damaged);
    ASSERT_TRUE(repaired.status.ok()) << repaired.status.message();
    ASSERT_EQ(repaired.report.loss_count, 1U);
    EXPECT_EQ(repaired.report.losses[0].field, "LvProp");
    EXPECT_EQ(ReadTables(*MakeMemoryPageStore(PageSizeOf(damaged), repaired.bytes), nullptr)
                  .at("T")
                  .size(),
              1U);
}

TEST_P(RepairTest, ABrokenLongValueCostsItsFieldOnly) {
    const FileBytes bytes = UsedFile(GetParam());
    const std::uint32_t page_size = PageSizeOf(bytes);
    FileBytes damaged = bytes;
    for (std::size_t at = page_size; at < damaged.size(); at += page_size) {
        const auto page = std::span(damaged).subspan(at, page_size);
        if (HasType(page, PageType::kData) && LoadOwner(page) == kLongValueOwner)
            std::ranges::fill(page, std::byte{0});
    }
    const Repaired repaired = RepairBytes(damaged);
    ASSERT_TRUE(repaired.status.ok()) << repaired.status.message();
    const auto tables = ReadTables(*MakeMemoryPageStore(page_size, repaired.bytes), nullptr);
    EXPECT_EQ(tables.at("Games").size(), 82U);
    EXPECT_GT(repaired.report.loss_count, 20U);
    EXPECT_TRUE(std::ranges::any_of(repaired.report.losses, [](const RepairLoss& loss) {
        return loss.table == "Games" && loss.field == "Notes" && loss.row >= 0 &&
               !loss.reason.empty();
    }));
}

TEST_P(RepairTest, ATakenNumberGivesWayToTheNext) {
    const FileBytes bytes = UsedFile(GetParam());
    const std::uint32_t page_size = PageSizeOf(bytes);
    auto store = MakeMemoryPageStore(page_size, bytes);
    FileContext file(*store, ReadPageHeader(store->Read(0).value().bytes(), "").value());
    Catalog catalog(file);
    const CatalogEntry* entry = catalog.FindTable(u"Games").value();
    const auto table =
        ReadTableDefinition(file.store, file.format, file.text, entry->definition_page()).value();
    const PageNumber first = file.Map(table.owned).Members().value().front();
    FileBytes damaged = bytes;
    const auto page = std::span(damaged).subspan(std::size_t{first} * page_size, page_size);
    const auto row = DataPage::Parse(page, file.format)->Bytes(1).value();
    const std::size_t at = static_cast<std::size_t>(row.data() - page.data());
    const std::size_t id = at + file.format.row_head_bytes;  // ID comes first
    page[id] = std::byte{1};
    const Repaired repaired = RepairBytes(damaged);
    ASSERT_TRUE(repaired.status.ok()) << repaired.status.message();
    const auto tables = ReadTables(*MakeMemoryPageStore(page_size, repaired.bytes), nullptr);
    const auto& games = tables.at("Games");
    EXPECT_EQ(games.size(), 82U);
    EXPECT_TRUE(games.back().text.starts_with("91 | Game 1 |")) << games.back().text;
    ASSERT_EQ(repaired.report.loss_count, 1U);
    EXPECT_EQ(repaired.report.losses[0].field, "ID");
}

TEST_P(RepairTest, RowsOnSoundPagesComeBackWhateverIsDamaged) {
    const FileBytes bytes = UsedFile(GetParam());
    const std::uint32_t page_size = PageSizeOf(bytes);
    // Other damages: TAVOLO_REPAIR_SEED.
    const char* const seed = std::getenv("TAVOLO_REPAIR_SEED");
    std::mt19937 random(seed == nullptr ? 7U : static_cast<unsigned>(std::atoi(seed)));
    for (int round = 0; round < 500; ++round) {
        SCOPED_TRACE("round " + std::to_string(round));
        FileBytes damaged = bytes;
        const auto any_page = [&] { return random() % (bytes.size() / page_size) * page_size; };
        const unsigned kind = random() % 4;
        for (unsigned times = 1 + random() % 6; times > 0; --times) {
            const std::size_t at = any_page();
            if (kind == 0) damaged[at + random() % page_size] = static_cast<std::byte>(random());
            if (kind == 1) damaged[at + random() % 64] = static_cast<std::byte>(random());
            if (kind == 2)
                for (std::size_t i = at; i < at + 512; ++i)
                    damaged[i] = static_cast<std::byte>(random());
            if (kind == 3)
                std::swap_ranges(damaged.begin() + static_cast<std::ptrdiff_t>(at),
                                 damaged.begin() + static_cast<std::ptrdiff_t>(at + page_size),
                                 damaged.begin() + static_cast<std::ptrdiff_t>(any_page()));
        }
        const Repaired repaired = RepairBytes(damaged);
        ASSERT_TRUE(repaired.status.ok()) << repaired.status.message();
        ExpectSoundRows(bytes, damaged, repaired.bytes);
        // Whatever makes the new file unsound is to be seen in the damaged one.
        for (const RepairLoss& loss : repaired.report.losses)
            EXPECT_EQ(loss.reason.find("the new file was not sound"), std::string::npos)
                << Describe(loss);
        if (HasFailure()) {
            for (const RepairLoss& loss : repaired.report.losses)
                std::cout << Describe(loss) << "\n";
            return;
        }
    }
}

TEST_P(RepairTest, ACutFileKeepsWhatIsThere) {
    const FileBytes bytes = UsedFile(GetParam());
    const std::uint32_t page_size = PageSizeOf(bytes);
    for (std::size_t size = 0; size < bytes.size(); size += 3 * page_size + 700) {
        const FileBytes damaged(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size));
        const Repaired repaired = RepairBytes(damaged);
        if (size < 6 * page_size) {
            EXPECT_TRUE(repaired.status.ok() || repaired.status.number() == 3343);
            continue;
        }
        ASSERT_TRUE(repaired.status.ok()) << repaired.status.message();
        ExpectSoundRows(bytes, damaged, repaired.bytes);
    }
}

INSTANTIATE_TEST_SUITE_P(Versions, RepairTest, testing::Values(3, 4),
                         [](const auto& version) { return "Jet" + std::to_string(version.param); });

class RepairFileTest : public testing::TestWithParam<std::filesystem::path> {};

TEST_P(RepairFileTest, LosesNothingOfASoundFile) {
    const auto files = platform::MakeFileSystem();
    const TemporaryFolder folder;
    RepairReport report;
    const base::Status done = Repair(*files, GetParam(), folder.path() / "new.mdb", report);
    ASSERT_TRUE(done.ok()) << done.message();
    for (const RepairLoss& loss : report.losses)
        EXPECT_NE(loss.reason.find("its sort order is not known"), std::string::npos)
            << Describe(loss);
    EXPECT_TRUE(test_support::DatabaseIsSound(folder.path() / "new.mdb", test_support::kOwnFile));
    if (report.loss_count > 0) return;
    const auto original = LoadIntoMemory(GetParam());
    const auto copy = LoadIntoMemory(folder.path() / "new.mdb");
    ExpectSameContent(*original, *copy);
}

INSTANTIATE_TEST_SUITE_P(Files, RepairFileTest, testing::ValuesIn(WholeDatabases()), NameOfFile);

TEST(RepairedFileTest, WhatIsNoDatabaseIsRefused) {
    for (const std::size_t size : {0U, 10U, 5000U, 100'000U}) {
        const Repaired repaired = RepairBytes(FileBytes(size, std::byte{'x'}));
        EXPECT_EQ(repaired.status.number(), 3343) << size;
    }
}

TEST(RepairedFileTest, UnreadableSectorsAreOneLossAmongOthers) {
    const FileBytes bytes = UsedFile(4);
    FaultyFileSystem files;
    files.Put(kFrom, bytes);
    files.SetUnreadable(kFrom, 20 * 4096 + 5);
    RepairReport report;
    const base::Status done = Repair(files, kFrom, kTo, report);
    ASSERT_TRUE(done.ok()) << done.message();
    FileBytes damaged = bytes;
    damaged[20 * 4096] ^= std::byte{1};
    ExpectSoundRows(bytes, damaged, files.Get(kTo));
}

}  // namespace
}  // namespace jet::test
