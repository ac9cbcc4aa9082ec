// A small catalogue edited for years: its file stays as large as its content asks for.
#include "jet/index/index_shape.h"
#include "jet/pages/data_page.h"
#include "jet/rows/file_context.h"
#include "jet/tables/storage_checks.h"
#include "jet/tables/table_fixture.h"
#include "support/check_database.h"

#include <random>

namespace jet::test {
namespace {

constexpr int kEdits = 100000;
constexpr std::size_t kGames = 150;

TableDesign CatalogueDesign() {
    TableDesign design;
    design.name = u"Tables";
    design.columns = {
        Column(u"ID", ColumnType::kLong),          Column(u"DisplayName", ColumnType::kText, 100),
        Column(u"Author", ColumnType::kText, 255), Column(u"Year", ColumnType::kText, 50),
        Column(u"Notes", ColumnType::kMemo),       Column(u"Comment", ColumnType::kMemo),
        Column(u"Picture", ColumnType::kOle),      Column(u"Played", ColumnType::kDate)};
    design.columns[0].autonumber = true;
    design.columns[1].compressed = true;
    design.columns[5].compressed = true;
    design.indexes = {Index(u"PrimaryKey", {{0, true}}), Index(u"Name", {{1, true}}),
                      Index(u"AuthorYear", {{2, true}, {3, false}})};
    design.indexes[0].primary = true;
    return design;
}

base::Result<std::unique_ptr<Database>> EmptyFile(int version) {
    const TemporaryFolder folder;
    const auto path = folder.path() / "new.mdb";
    EXPECT_TRUE(CreateDatabaseFile(*platform::MakeFileSystem(), path, 45000.5, version).ok());
    return OpenCopy(path);
}

std::unique_ptr<Database> EmptyCatalogue(int version) {
    auto opened = EmptyFile(version);
    EXPECT_TRUE(opened.ok()) << opened.status().message();
    std::unique_ptr<Database> database = std::move(opened).value();
    EXPECT_TRUE(database->Begin().ok());
    EXPECT_TRUE(database->CreateTable(CatalogueDesign()).ok());
    EXPECT_TRUE(database->Commit().ok());
    return database;
}

class Editor {
public:
    explicit Editor(std::unique_ptr<Database> database) : database_(std::move(database)) {
        table_ = database_->FindTable(u"Tables").value();
    }

    void Fill() {
        while (rows_.size() < kGames)
            rows_.push_back(Add());
    }

    // Eight of ten edits change a row, the others replace it.
    void Edit() {
        RowId& row = rows_[random_() % rows_.size()];
        Do([&]() -> base::Status {
            if (random_() % 5 == 0) {
                RETURN_IF_ERROR(table_->Delete(row));
                ASSIGN_OR_RETURN(row, Insert());
                return {};
            }
            std::vector<ColumnChange> changes;
            for (std::size_t column = 1; column < 8; ++column)
                if (random_() % 3 == 0) changes.push_back({column, NewValue(column)});
            return table_->Update(row, changes);
        });
    }

    void Reopen() {
        std::vector<std::byte> bytes = AllBytes(database_->pages());
        const std::uint32_t page_size = database_->pages().page_size();
        auto opened = OpenDatabase(MakeMemoryPageStore(page_size, std::move(bytes)), "again");
        ASSERT_TRUE(opened.ok()) << opened.status().message();
        database_ = std::move(opened).value();
        table_ = database_->FindTable(u"Tables").value();
    }

    // The same rows in a file that was never edited.
    void CopyTo(Editor& other) {
        for (std::vector<Value>& row : AllRows(*table_)) {
            row[0] = {};
            other.Do([&] { return other.table_->Insert(row).status(); });
        }
    }

    std::size_t pages() const { return database_->pages().page_count(); }
    // Pages of the file that are not free.
    std::size_t used_pages() const {
        const auto header = ReadPageHeader(database_->pages().Read(0).value().bytes(), "");
        FileContext file(database_->pages(), header.value());
        std::size_t used = 0;
        for (PageNumber page = 0; page < database_->pages().page_count(); ++page)
            used += file.allocator.IsFree(page).value() ? 0 : 1;
        return used;
    }
    // Rows of which only a pointer is where they were first stored.
    std::size_t moved_rows() const {
        const auto header = ReadPageHeader(database_->pages().Read(0).value().bytes(), "");
        const Format& format = FormatOf(header.value().version);
        std::size_t moved = 0;
        for (PageNumber number = 2; number < database_->pages().page_count(); ++number) {
            const auto view = database_->pages().Read(number);
            const auto page = DataPage::Parse(view.value().bytes(), format);
            for (std::size_t slot = 0; page && slot < page->slot_count(); ++slot)
                moved += page->Flags(slot) == kSlotMoved ? 1 : 0;
        }
        return moved;
    }
    Database& database() { return *database_; }

private:
    template <typename Change>
    void Do(Change change) {
        ASSERT_TRUE(database_->Begin().ok());
        const base::Status done = change();
        ASSERT_TRUE(done.ok()) << done.message();
        ASSERT_TRUE(database_->Commit().ok());
    }

    RowId Add() {
        RowId row;
        Do([&]() -> base::Status {
            ASSIGN_OR_RETURN(row, Insert());
            return {};
        });
        return row;
    }

    base::Result<RowId> Insert() {
        std::vector<Value> values(8);
        for (std::size_t column = 1; column < 8; ++column)
            values[column] = NewValue(column);
        return table_->Insert(values);
    }

    std::u16string Letters(std::size_t longest) {
        std::u16string text(random_() % (longest + 1), u'a');
        for (std::size_t i = 0; i < text.size() && i < 12; ++i)
            text[i] = static_cast<char16_t>(u'a' + random_() % 26);
        return text;
    }

    // Memos and pictures in the row, in rows of their own, in chains, and none.
    Value NewValue(std::size_t column) {
        if (random_() % 8 == 0) return {};
        const std::size_t lengths[] = {20, 300, 1500, 9000};
        const std::size_t length = lengths[random_() % 10 / 3];
        switch (column) {
        case 1:
            return Value::Text(Letters(100));
        case 2:
            return Value::Text(Letters(random_() % 3 == 0 ? 255 : 20));
        case 3:
            return Value::Text(Letters(4));
        case 6:
            return Value::Binary(Bytes(random_() % (length + 1), std::byte{7}));
        case 7:
            return Value::DateTime(static_cast<double>(random_() % 40000));
        default:
            return Value::Text(Letters(length));
        }
    }

    std::unique_ptr<Database> database_;
    Table* table_ = nullptr;
    std::vector<RowId> rows_;
    std::mt19937 random_{11};
};

class StorageGrowthTest : public testing::TestWithParam<int> {};

TEST_P(StorageGrowthTest, YearsOfEditsKeepTheFileAsSmallAsItsContent) {
    Editor editor(EmptyCatalogue(GetParam()));
    const std::size_t empty = editor.used_pages();
    editor.Fill();
    const std::size_t first = editor.pages();
    std::size_t settled = 0;
    std::size_t moved = 0;
    for (int i = 1; i <= kEdits && !HasFailure(); ++i) {
        editor.Edit();
        if (i % (kEdits / 20) == 0) editor.Reopen();
        if (i == kEdits / 10) settled = editor.pages();
        if (i % (kEdits / 10) == 0) moved = std::max(moved, editor.moved_rows());
    }
    Editor fresh(EmptyCatalogue(GetParam()));
    editor.CopyTo(fresh);
    std::printf("pages: %zu filled, %zu after a tenth, %zu at the end, %zu of them used, %zu in a "
                "new file; %zu rows moved at most\n",
                first, settled, editor.pages(), editor.used_pages(), fresh.used_pages(), moved);
    EXPECT_GT(moved, 5U);
    EXPECT_LE(editor.pages(), settled + settled / 4);
    EXPECT_LE(editor.pages(), 2 * first);
    EXPECT_LE(editor.used_pages() - empty, 2 * (fresh.used_pages() - empty));
    for (std::size_t index = 0; index < 3; ++index) {
        const IndexShape shape = ShapeOf(editor.database(), u"Tables", index);
        EXPECT_LE(shape.leaves, 2 * shape.ideal_leaves + 1) << index;
    }
    EXPECT_EQ(CheckStorage(editor.database().pages()).faults, std::vector<std::string>());
    EXPECT_TRUE(test_support::PagesAreSound(editor.database().pages()));
}

INSTANTIATE_TEST_SUITE_P(Versions, StorageGrowthTest, testing::Values(4, 3),
                         [](const auto& version) {
                             return version.param == 4 ? std::string("NewFile")
                                                       : std::string("OlderFile");
                         });

}  // namespace
}  // namespace jet::test
