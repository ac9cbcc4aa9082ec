// The engine and a plain writer of the tests, which behaves as other engines do, change the same
// file in turn, also an encoded one: trees of three and four levels, levels of 0, moved rows of
// which the targets stay behind, a map of free pages that has moved on. After each turn the
// checker, mdb-export and a model agree, and the writer finds the keys of nodes as it needs them.
#include "jet/tables/table_fixture.h"
#include "support/check_database.h"
#include "support/encoded_file.h"
#include "support/faulty_file_system.h"
#include "support/plain_writer.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <map>
#include <ostream>
#include <random>

namespace jet::test {
namespace {

using test_support::PlainRow;
using test_support::PlainWriter;

constexpr int kTurns = 24;
constexpr int kOperations = 25;  // in each turn

struct FileKind {
    const char* name;
    int version;            // of the format
    std::uint32_t key = 0;  // 0: not encoded
};

void PrintTo(const FileKind& kind, std::ostream* out) {
    *out << kind.name;
}

// In memory.
class SecondHandTest : public testing::TestWithParam<FileKind> {
protected:
    void SetUp() override {
        const TemporaryFolder folder;
        const auto path = folder.path() / "new.mdb";
        ASSERT_TRUE(
            CreateDatabaseFile(*platform::MakeFileSystem(), path, 45000.5, GetParam().version)
                .ok());
        Open(ReadWholeFile(path));
        TableDesign design;
        design.name = u"Keys";
        design.columns = {Column(u"ID", ColumnType::kLong), Column(u"Name", ColumnType::kText, 255),
                          Column(u"Note", ColumnType::kText, 255)};
        for (ColumnDesign& column : design.columns)
            column.allow_zero_length = true;
        design.indexes = {Index(u"PrimaryKey", {{0, true}}), Index(u"Name", {{1, true}}),
                          Index(u"Downwards", {{1, false}})};
        design.indexes[0].primary = true;
        ASSERT_TRUE(database_->Begin().ok());
        const base::Status created = database_->CreateTable(design);
        ASSERT_TRUE(created.ok()) << created.message();
        ASSERT_TRUE(database_->Commit().ok());
    }

    bool IsNew() const { return GetParam().version == 4; }

    // The file as it lies on the disk, out of a plain one, and the other way round.
    std::vector<std::byte> Encoded(std::vector<std::byte> bytes) const {
        if (GetParam().key != 0) test_support::EncodeFile(bytes, GetParam().key);
        return bytes;
    }
    void Open(std::vector<std::byte> plain) {
        files_.Put(kFile, Encoded(std::move(plain)));
        PageStoreOptions options;
        options.flush_delay = {};
        auto pages = OpenPageStore(files_, kFile, options);
        ASSERT_TRUE(pages.ok()) << pages.status().message();
        auto opened = OpenDatabase(std::move(pages).value(), kFile);
        ASSERT_TRUE(opened.ok()) << opened.status().message();
        database_ = std::move(opened).value();
    }
    std::vector<std::byte> Close() {
        const base::Status closed = database_->Close();
        EXPECT_TRUE(closed.ok()) << closed.message();
        database_.reset();
        return Encoded(files_.Get(kFile));
    }
    Table& Keys() { return *database_->FindTable(u"Keys").value(); }

    // Names that take most bytes in a key: some four to a leaf.
    PlainRow NewRow() {
        PlainRow row{next_id_++, u"", Note()};
        for (int i = 0; i < 10; ++i)
            row.name += static_cast<char16_t>(u'a' + random_() % 26);
        row.name += std::u16string(200, IsNew() ? u'-' : u'\u00E9');
        return row;
    }
    std::u16string Note() {
        return std::u16string(random_() % 2 == 0 ? random_() % 20 : random_() % 250, u'n');
    }
    static std::vector<Value> Values(const PlainRow& row) {
        return {Value::Long(row.id), Value::Text(row.name), Value::Text(row.note)};
    }
    std::map<RowId, PlainRow>::iterator AnyRow() {
        auto row = rows_.begin();
        std::advance(row, random_() % rows_.size());
        return row;
    }

    void EngineTurn(int inserts_of_ten) {
        ASSERT_TRUE(database_->Begin().ok());
        for (int i = 0; i < kOperations && !HasFailure(); ++i) {
            const auto kind = static_cast<int>(random_() % 10);
            if (kind < inserts_of_ten || rows_.empty()) {
                const PlainRow row = NewRow();
                std::vector<Value> values = Values(row);
                const auto id = Keys().Insert(values);
                ASSERT_TRUE(id.ok()) << id.status().message();
                rows_[id.value()] = row;
            } else if (kind % 2 == 0) {
                const auto row = AnyRow();
                row->second.note = Note();
                if (random_() % 3 == 0) row->second.name = NewRow().name;
                const std::vector<ColumnChange> changes{{1, Value::Text(row->second.name)},
                                                        {2, Value::Text(row->second.note)}};
                const base::Status changed = Keys().Update(row->first, changes);
                ASSERT_TRUE(changed.ok()) << changed.message();
            } else {
                const auto row = AnyRow();
                const base::Status deleted = Keys().Delete(row->first);
                ASSERT_TRUE(deleted.ok()) << deleted.message();
                rows_.erase(row);
            }
        }
        ASSERT_TRUE(database_->Commit().ok());
    }

    void WriterTurn(int inserts_of_ten) {
        PlainWriter writer(Close(), u"Keys");
        writer.ExpectExactNodes();
        for (int i = 0; i < kOperations && !HasFailure(); ++i) {
            const auto kind = static_cast<int>(random_() % 10);
            if (kind < inserts_of_ten || rows_.size() < 10) {
                const PlainRow row = NewRow();
                rows_[writer.Insert(row)] = row;
            } else if (kind % 2 == 0) {
                const auto row = AnyRow();
                const PlainRow before = row->second;
                row->second.note = Note();
                if (random_() % 3 == 0) row->second.name = NewRow().name;
                writer.Update(row->first, before, row->second);
            } else {
                const auto row = AnyRow();
                writer.Delete(row->first, row->second, true);
                rows_.erase(row);
            }
        }
        writer.ExpectExactNodes();
        orphans_ += writer.orphans();
        if (random_() % 3 == 0) writer.MoveFreeMapOn();
        Open(writer.TakeFile());
    }

    void Compare() {
        EXPECT_TRUE(test_support::PagesAreSound(database_->pages(), test_support::kStrict));
        EXPECT_EQ(Found({}), rows_);
        const auto& indexes = Keys().design().indexes;
        for (std::size_t index = 0; index < indexes.size(); ++index)
            EXPECT_EQ(Found(index), rows_) << index;
        // It prints rows where they were moved to, and so those that were left behind, too.
        ASSERT_TRUE(database_->Flush().ok());
        const TemporaryFolder folder;
        WriteWholeFile(folder.path() / kFile, files_.Get(kFile));
        CompareWithExport(folder.path() / kFile, Keys(), static_cast<std::size_t>(orphans_));
    }
    std::map<RowId, PlainRow> Found(std::optional<std::size_t> index) {
        std::map<RowId, PlainRow> found;
        auto cursor = index ? Keys().Range(*index, {}, {}, false) : Keys().Scan();
        EXPECT_TRUE(cursor.ok()) << cursor.status().message();
        const std::vector<std::size_t> columns{0, 1, 2};
        while (cursor.ok()) {
            const auto row = cursor.value()->Next();
            EXPECT_TRUE(row.ok()) << row.status().message();
            if (!row.ok() || !row.value()) break;
            std::vector<Value> values(3);
            const base::Status read = cursor.value()->Read(columns, values);
            EXPECT_TRUE(read.ok()) << read.message();
            found[*row.value()] = {values[0].as<std::int32_t>(), values[1].as<std::u16string>(),
                                   values[2].as<std::u16string>()};
        }
        return found;
    }

    static constexpr const char* kFile = "turn.mdb";
    test_support::FaultyFileSystem files_;
    std::unique_ptr<Database> database_;
    std::map<RowId, PlainRow> rows_;
    std::int32_t next_id_ = 1;
    int orphans_ = 0;
    std::mt19937 random_{20261123};
};

TEST_P(SecondHandTest, BothHandsInTurnComeToWhatTheModelHolds) {
    for (int turn = 0; turn < kTurns && !HasFailure(); ++turn) {
        SCOPED_TRACE("turn " + std::to_string(turn));
        // The table grows, and shrinks in the end.
        const int inserts_of_ten = turn < kTurns / 2 ? 9 : 2;
        if (turn % 2 == 0)
            EngineTurn(inserts_of_ten);
        else
            WriterTurn(inserts_of_ten);
        if (!HasFailure()) Compare();
    }
}

INSTANTIATE_TEST_SUITE_P(Versions, SecondHandTest,
                         testing::Values(FileKind{"NewFile", 4}, FileKind{"OlderFile", 3},
                                         FileKind{"NewEncodedFile", 4, 0x5AC3917EU},
                                         FileKind{"OlderEncodedFile", 3, 0xE17A0352U}),
                         [](const auto& kind) { return std::string(kind.param.name); });

}  // namespace
}  // namespace jet::test
