// What other programs leave in a file at the cost of space only: the checker warns of it, and no
// warning stops a change.
#include "jet/check/check.h"
#include "jet/pages/data_page.h"
#include "jet/tables/catalog.h"
#include "jet/tables/map_rows.h"
#include "jet/tables/table_fixture.h"

#include <functional>

namespace jet::test {
namespace {

// The file's pages and the definition of Games, inside a transaction.
struct Leaver {
    FileContext& file;
    TableDefinition games;

    std::span<std::byte> Page(PageNumber page) const { return file.store.Change(page).value(); }
    DataPageEditor Rows(PageNumber page) const {
        return DataPageEditor::Open(Page(page), file.format).value();
    }
    std::vector<std::byte> Row(PageNumber page, std::size_t slot) const {
        const PageView view = file.store.Read(page).value();
        const auto row = DataPage::Parse(view.bytes(), file.format)->Bytes(slot).value();
        return {row.begin(), row.end()};
    }
    // The last page of a map with room for a small row.
    PageNumber LastPage(RowPointer map) const { return file.Map(map).Members().value().back(); }
};

struct Left {
    const char* name;
    std::function<void(const Leaver&)> leave;
    const char* warning;
};

void PrintTo(const Left& left, std::ostream* out) {
    *out << left.name;
}

void ShiftFreeMap(const Leaver& leaver, PageNumber first) {
    std::vector<std::byte> row = leaver.Row(1, 0);
    base::StoreLittle(row.data() + 1, first);
    for (std::size_t at = 5; at < row.size(); ++at)
        row[at] = std::byte{0};
    leaver.Rows(1).Replace(0, row, 0);
}

const Left kLeft[] = {
    {"aMapOfFreePagesThatEndsTooEarly",
     [](const Leaver& leaver) {
         std::vector<std::byte> row = leaver.Row(1, 0);
         row.resize(5 + 4);
         leaver.Rows(1).Replace(0, row, 0);
     },
     "does not reach every page"},
    {"aMapOfFreePagesThatStartsLater", [](const Leaver& leaver) { ShiftFreeMap(leaver, 24); },
     "does not reach every page"},
    {"aPageThatNothingUses", [](const Leaver& leaver) { leaver.file.allocator.Allocate().value(); },
     "is not free, but nothing uses it"},
    {"aSecondMapWithMembers",
     [](const Leaver& leaver) {
         std::vector<std::byte> row = leaver.Row(1, 1);
         row[5 + 1] = std::byte{1};
         leaver.Rows(1).Replace(1, row, 0);
     },
     "the second global map is not empty"},
    {"aMovedRowThatNothingLeadsTo",
     [](const Leaver& leaver) {
         const PageNumber page = leaver.LastPage(leaver.games.owned);
         leaver.Rows(page).Append(leaver.Row(page, 0), kSlotTarget);
     },
     "is a moved row that nothing leads to"},
    {"aPageOfMovedRowsThatNothingLeadsTo",
     [](const Leaver& leaver) {
         const PageNumber from = leaver.LastPage(leaver.games.owned);
         const PageNumber page = leaver.file.allocator.Allocate().value();
         DataPageEditor rows =
             DataPageEditor::Create(leaver.Page(page), leaver.file.format, leaver.games.page);
         rows.Append(leaver.Row(from, 0), kSlotTarget);
         rows.Append(leaver.Row(from, 1), kSlotTarget);
         for (const RowPointer map : {leaver.games.owned, leaver.games.free})
             EXPECT_TRUE(leaver.file.Map(map).Add(page, leaver.file.allocator).ok());
     },
     "is a moved row that nothing leads to"},
    {"aLongValueThatNoRowHas",
     [](const Leaver& leaver) {
         const RowPointer map = leaver.games.long_values.front().owned;
         const std::vector<PageNumber> pages = leaver.file.Map(map).Members().value();
         for (const PageNumber page : pages) {
             DataPageEditor rows = leaver.Rows(page);
             if (rows.HasRoomFor(40)) {
                 rows.Append(std::vector<std::byte>(40), 0);
                 return;
             }
         }
         FAIL() << "no page has room";
     },
     "is a long value that no row has"},
    {"freeSpaceOfADataPageSaidTooSmall",
     [](const Leaver& leaver) {
         const auto page = leaver.Page(leaver.LastPage(leaver.games.owned));
         base::StoreLittle<std::uint16_t>(page.data() + 2, 3);
     },
     "bytes are free"},
    {"freeSpaceOfADefinitionSaidTooSmall",
     [](const Leaver& leaver) {
         base::StoreLittle<std::uint16_t>(leaver.Page(leaver.games.page).data() + 2, 3);
     },
     "bytes are free"},
    {"aDefinitionLongerThanItsContent",
     [](const Leaver& leaver) {
         std::byte* page = leaver.Page(leaver.games.page).data();
         base::StoreLittle(page + 8, base::LoadLittle<std::uint32_t>(page + 8) + 20);
         base::StoreLittle(
             page + 2, static_cast<std::uint16_t>(base::LoadLittle<std::uint16_t>(page + 2) - 20));
     },
     "longer than its content"},
    {"mapsOfAColumnThatIsGone",
     [](const Leaver& leaver) {
         TableDefinition games = leaver.games;
         MapRows maps(leaver.file, games);
         LongValueMaps gone{77, maps.Add().value(), maps.Add().value()};
         const PageNumber page = leaver.file.allocator.Allocate().value();
         DataPageEditor rows =
             DataPageEditor::Create(leaver.Page(page), leaver.file.format, kLongValueOwner);
         rows.Append(std::vector<std::byte>(40), 0);
         EXPECT_TRUE(leaver.file.Map(gone.owned).Add(page, leaver.file.allocator).ok());
         games.long_values.push_back(gone);
         EXPECT_TRUE(WriteTableDefinition(leaver.file.store, leaver.file.format, leaver.file.text,
                                          leaver.file.allocator, games)
                         .ok());
     },
     "maps for long values of columns that have none"},
    {"aRowCountOfNone",
     [](const Leaver& leaver) {
         const auto page = leaver.Page(leaver.games.page);
         DefinitionCounters counters = ReadDefinitionCounters(page, leaver.file.format);
         counters.rows = 0;
         WriteDefinitionCounters(page, leaver.file.format, counters);
     },
     "says that it has 0 rows"},
    {"anAutomaticNumberLeftBehind",
     [](const Leaver& leaver) {
         const auto page = leaver.Page(leaver.games.page);
         DefinitionCounters counters = ReadDefinitionCounters(page, leaver.file.format);
         counters.last_autonumber = 5;
         WriteDefinitionCounters(page, leaver.file.format, counters);
     },
     "the next automatic number is not greater than all there are"},
};

class LeftByOthersTest : public TableFixture, public testing::WithParamInterface<Left> {
protected:
    void Leave(const Left& left) {
        const auto header = ReadPageHeader(database_->pages().Read(0).value().bytes(), "").value();
        FileContext file(database_->pages(), header);
        Catalog catalog(file);
        const PageNumber page = catalog.FindTable(u"Games").value()->definition_page();
        ASSERT_TRUE(database_->Begin().ok());
        left.leave({file, ReadTableDefinition(file.store, file.format, file.text, page).value()});
        ASSERT_TRUE(database_->Commit().ok());
        Reopen();
    }

    std::u16string Notes(std::size_t length) { return std::u16string(length, u'n'); }

    void ExpectWarning(const char* text) {
        const CheckReport report = CheckIntegrity(database_->pages());
        std::string all;
        bool is_found = false;
        for (const Finding& finding : report.findings) {
            all += Describe(finding) + "\n";
            is_found = is_found || (finding.severity == Severity::kWarning &&
                                    finding.text.find(text) != std::string::npos);
        }
        EXPECT_TRUE(report.sound() && is_found) << all;
    }

    // Every kind of change, more of it than the pages at hand can take in.
    void ChangeEverything(std::vector<RowId>& rows) {
        for (int i = 0; i < 120; ++i) {
            const auto row = InsertGame(u"Inserted", 1990, Notes(i % 3 == 0 ? 3000 : 20));
            ASSERT_TRUE(row.ok()) << row.status().message();
            rows.push_back(*row);
        }
        for (std::size_t i = 0; i < rows.size(); i += 2) {
            const base::Status updated =
                Update(u"Games", rows[i],
                       {{1, Value::Text(std::u16string(90, u'x'))}, {3, Value::Text(Notes(300))}});
            ASSERT_TRUE(updated.ok()) << updated.message();
        }
        for (std::size_t i = 0; i < rows.size(); i += 3) {
            const base::Status deleted = Delete(u"Games", rows[i]);
            ASSERT_TRUE(deleted.ok()) << deleted.message();
        }
        TableDesign more = GamesDesign();
        more.name = u"More";
        ASSERT_TRUE(Do([&] { return database_->CreateTable(more); }).ok());
        ASSERT_TRUE(Do([&] {
                        return database_->AddColumn(u"Games", Column(u"Extra", ColumnType::kMemo));
                    }).ok());
        ASSERT_TRUE(Do([&] { return database_->DropColumn(u"Games", u"Extra"); }).ok());
    }
};

TEST_P(LeftByOthersTest, CostsSpaceAndStopsNoChange) {
    CreateGames();
    std::vector<RowId> rows;
    for (int i = 0; i < 60; ++i)
        rows.push_back(InsertGame(u"Game", 1990, Notes(i % 2 == 0 ? 200 : 9000)).value());
    Leave(GetParam());
    ExpectWarning(GetParam().warning);
    ChangeEverything(rows);
    EXPECT_TRUE(CheckIntegrity(database_->pages()).sound());
    const base::Status dropped = Do([&] { return database_->DropTable(u"Games"); });
    EXPECT_TRUE(dropped.ok()) << dropped.message();
    EXPECT_TRUE(CheckIntegrity(database_->pages()).sound());
    ASSERT_TRUE(database_->Close().ok());
    database_.reset();  // lost pages stay lost; the fixture wants none
}

INSTANTIATE_TEST_SUITE_P(Things, LeftByOthersTest, testing::ValuesIn(kLeft),
                         [](const auto& left) { return std::string(left.param.name); });

}  // namespace
}  // namespace jet::test
