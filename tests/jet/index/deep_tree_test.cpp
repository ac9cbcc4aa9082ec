// Index trees of three and four levels: as this engine makes them, as other engines do, whose level
// bytes say nothing, and as earlier versions of this one left them behind, with keys in nodes that
// are larger than what is below. All are read and changed. Long keys make such trees out of few
// rows.
#include "jet/index/index_set.h"
#include "jet/tables/catalog.h"
#include "jet/tables/storage_checks.h"
#include "jet/tables/table_fixture.h"
#include "support/check_database.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <functional>
#include <map>
#include <random>

namespace jet::test {
namespace {

constexpr std::size_t kByName = 1;  // among the definition's real indexes

constexpr std::size_t kLetters = 10;  // of a long name

// In memory; parameter: the version of the format.
class DeepTreeTest : public testing::TestWithParam<int> {
protected:
    void SetUp() override {
        const TemporaryFolder folder;
        const auto path = folder.path() / "new.mdb";
        ASSERT_TRUE(
            CreateDatabaseFile(*platform::MakeFileSystem(), path, 45000.5, GetParam()).ok());
        Open(ReadWholeFile(path));
        TableDesign design;
        design.name = u"Keys";
        design.columns = {Column(u"ID", ColumnType::kLong),
                          Column(u"Name", ColumnType::kText, 255)};
        design.indexes = {Index(u"PrimaryKey", {{0, true}}), Index(u"Name", {{1, true}})};
        design.indexes[0].primary = true;
        ASSERT_TRUE(database_->Begin().ok());
        const base::Status created = database_->CreateTable(design);
        ASSERT_TRUE(created.ok()) << created.message();
        ASSERT_TRUE(database_->Commit().ok());
        table_ = database_->FindTable(u"Keys").value();
    }
    void TearDown() override {
        if (database_ != nullptr) ExpectSound();
    }

    void Open(std::vector<std::byte> bytes) {
        auto opened =
            OpenDatabase(MakeMemoryPageStore(GetParam() == 4 ? 4096 : 2048, std::move(bytes)), "");
        ASSERT_TRUE(opened.ok()) << opened.status().message();
        database_ = std::move(opened).value();
        table_ = nullptr;
        if (const auto table = database_->FindTable(u"Keys"); table.ok()) table_ = table.value();
    }
    // The file's bytes changed by `edit`, and opened again.
    void Edit(const std::function<void(std::vector<std::byte>&)>& edit) {
        std::vector<std::byte> bytes = AllBytes(database_->pages());
        edit(bytes);
        Open(std::move(bytes));
    }

    // Characters that take most bytes in a key: some four to a leaf.
    std::u16string Filler(std::size_t count) const {
        return std::u16string(count, GetParam() == 4 ? u'-' : u'\u00E9');
    }
    std::u16string Letters(std::size_t count) {
        std::u16string name;
        for (; count > 0; --count)
            name += static_cast<char16_t>(u'a' + random_() % 26);
        return name;
    }
    std::u16string LongName() {
        const auto last = static_cast<char16_t>(u'b' + random_() % 25);
        return Letters(kLetters - 1) + last + Filler(200);
    }

    void Insert(std::u16string name) {
        const std::int32_t id = next_id_++;
        std::vector<Value> values{Value::Long(id), Value::Text(name)};
        const auto row = table_->Insert(values);
        ASSERT_TRUE(row.ok()) << row.status().message();
        rows_.emplace_back(row.value(), std::move(name));
    }
    void Delete(std::size_t at) {
        const base::Status deleted = table_->Delete(rows_[at].first);
        ASSERT_TRUE(deleted.ok()) << deleted.message();
        rows_.erase(rows_.begin() + static_cast<std::ptrdiff_t>(at));
    }
    template <typename Change>
    void InTransaction(Change change) {
        ASSERT_TRUE(database_->Begin().ok());
        change();
        ASSERT_TRUE(database_->Commit().ok());
    }
    // Until the index of names has so many levels of nodes.
    void Grow(unsigned levels, const std::function<std::u16string()>& name) {
        while (Height() < levels && rows_.size() < 5000 && !HasFailure())
            InTransaction([&] {
                for (int i = 0; i < 20; ++i)
                    Insert(name());
            });
        ASSERT_EQ(Height(), levels);
    }
    // Inserts and deletes at random; the tree stays about as large as it is.
    void Churn(int count, const std::function<std::u16string()>& name) {
        for (int i = 0; i < count && !HasFailure(); ++i) {
            InTransaction([&] {
                if (random_() % 2 == 0)
                    Insert(name());
                else if (!rows_.empty())
                    Delete(random_() % rows_.size());
            });
            if (i % 50 == 49) ExpectSound();
        }
    }
    void DeleteAll() {
        std::ranges::shuffle(rows_, random_);
        while (!rows_.empty() && !HasFailure()) {
            InTransaction([&] {
                for (std::size_t i = std::min<std::size_t>(40, rows_.size()); i > 0; --i)
                    Delete(rows_.size() - 1);
            });
            ExpectSound();
        }
    }

    void ExpectSound() {
        EXPECT_EQ(CheckStorage(database_->pages()).faults, std::vector<std::string>());
        EXPECT_TRUE(test_support::PagesAreSound(database_->pages(), options_));
    }
    // Both ways through the index, and each name on its own.
    void ExpectAllRowsFound() {
        std::vector<RowId> forwards = Rows({}, {}, false);
        EXPECT_EQ(forwards.size(), rows_.size());
        std::vector<RowId> backwards = Rows({}, {}, true);
        std::ranges::reverse(backwards);
        EXPECT_EQ(backwards, forwards);
        for (const auto& [row, name] : rows_) {
            const KeyBound bound{{Value::Text(name)}, true};
            EXPECT_THAT(Rows(bound, bound, false), testing::Contains(row));
        }
    }
    // Among the design's indexes, which are in the order of their names.
    std::size_t RangeIndex() const {
        const auto& indexes = table_->design().indexes;
        const auto found = std::ranges::find(indexes, u"Name", &IndexDesign::name);
        return static_cast<std::size_t>(found - indexes.begin());
    }
    std::vector<RowId> Rows(const KeyBound& from, const KeyBound& to, bool backwards) {
        std::vector<RowId> rows;
        auto cursor = table_->Range(RangeIndex(), from, to, backwards);
        EXPECT_TRUE(cursor.ok()) << cursor.status().message();
        while (cursor.ok()) {
            const auto row = cursor.value()->Next();
            EXPECT_TRUE(row.ok()) << row.status().message();
            if (!row.ok() || !row.value()) break;
            rows.push_back(*row.value());
        }
        return rows;
    }

    TableDefinition Definition() {
        const auto page = database_->pages().Read(0);
        FileContext file(database_->pages(), ReadPageHeader(page.value().bytes(), "").value());
        Catalog catalog(file);
        const auto* entry = catalog.FindTable(u"Keys").value();
        return ReadTableDefinition(file.store, file.format, file.text, entry->definition_page())
            .value();
    }
    const Format& FormatHere() const { return FormatOf(GetParam()); }
    IndexPageView View(const PageView& page) {
        return IndexPageView::Parse(page.bytes(), FormatHere(), Definition().page).value();
    }
    // Nodes from the root to a leaf of the index of names.
    unsigned Height() {
        PageNumber page = Definition().real_indexes[kByName].root;
        for (unsigned height = 0;; ++height) {
            const auto bytes = database_->pages().Read(page).value();
            const IndexPageView view = View(bytes);
            if (view.is_leaf()) return height;
            page = view.tail();
        }
    }
    std::size_t PageSize() const { return FormatHere().page_size; }
    // Calls `visit` with each index page of the type.
    void ForEach(std::vector<std::byte>& bytes, PageType type,
                 const std::function<void(std::span<std::byte>, PageNumber)>& visit) {
        for (std::size_t at = 0; at < bytes.size(); at += PageSize())
            if (bytes[at] == static_cast<std::byte>(type) && bytes[at + 1] == std::byte{1})
                visit(std::span(bytes).subspan(at, PageSize()),
                      static_cast<PageNumber>(at / PageSize()));
    }
    CheckReport Check(CheckOptions options = {}) {
        return CheckIntegrity(database_->pages(), options);
    }

    bool HasFault(PageNumber page, const std::string& text) {
        const CheckReport report = Check();
        return std::ranges::any_of(report.findings, [&](const Finding& finding) {
            return finding.severity == Severity::kFault && finding.page == page &&
                   finding.text == text;
        });
    }

    // As earlier versions did: the last row of each leaf is deleted, and the keys of the nodes stay
    // what they were. Answers the deleted names.
    std::vector<std::u16string> LeaveLargerKeys() {
        std::vector<std::byte> before = AllBytes(database_->pages());
        std::vector<RowId> lasts;
        const auto map = Definition().real_indexes[kByName].map;
        const auto header = ReadPageHeader(database_->pages().Read(0).value().bytes(), "").value();
        FileContext file(database_->pages(), header);
        const std::vector<PageNumber> pages = file.Map(map).Members().value();
        for (const PageNumber page : pages) {
            const auto bytes = database_->pages().Read(page).value();
            const IndexPageView view = View(bytes);
            if (view.is_leaf() && view.next() != 0 && view.count() > 2)
                lasts.push_back(view.Row(view.count() - 1));
        }
        std::vector<std::u16string> names;
        InTransaction([&] {
            for (std::size_t i = rows_.size(); i-- > 0;)
                if (std::ranges::find(lasts, rows_[i].first) != lasts.end()) {
                    names.push_back(rows_[i].second);
                    Delete(i);
                }
        });
        Edit([&](std::vector<std::byte>& bytes) {
            ForEach(before, PageType::kIndexNode, [&](std::span<std::byte> node, PageNumber page) {
                EXPECT_EQ(bytes[page * PageSize()], node[0]) << "the tree has another shape";
                std::ranges::copy(node,
                                  bytes.begin() + static_cast<std::ptrdiff_t>(page) *
                                                      static_cast<std::ptrdiff_t>(PageSize()));
            });
        });
        return names;
    }

    std::unique_ptr<Database> database_;
    Table* table_ = nullptr;
    std::vector<std::pair<RowId, std::u16string>> rows_;
    std::int32_t next_id_ = 1;
    CheckOptions options_ = test_support::kOwnFile;
    std::mt19937 random_{20261122};
};

TEST_P(DeepTreeTest, NodeKeysAreTheLastEntriesBelow) {
    Grow(3, [&] { return LongName(); });
    ExpectAllRowsFound();
    Churn(300, [&] { return LongName(); });
    DeleteAll();
}

TEST_P(DeepTreeTest, KeysOfAllLengthsKeepNodesExact) {
    const auto name = [&] { return Letters(1 + random_() % 8) + Filler(random_() % 240); };
    Grow(3, name);
    Churn(500, name);
    ExpectAllRowsFound();
    DeleteAll();
}

TEST_P(DeepTreeTest, DeletingFromEitherEndKeepsNodesExact) {
    for (const bool from_the_front : {true, false}) {
        Grow(3, [&] { return LongName(); });
        std::ranges::sort(rows_, {}, [](const auto& row) { return row.second; });
        if (from_the_front) std::ranges::reverse(rows_);
        while (!rows_.empty() && !HasFailure()) {
            InTransaction([&] {
                for (std::size_t i = std::min<std::size_t>(27, rows_.size()); i > 0; --i)
                    Delete(rows_.size() - 1);
            });
            ExpectSound();
        }
    }
}

// Keys of more than a third of a page: a leaf with one of them is not joined with its neighbours,
// and leaves the tree with it.
TEST_P(DeepTreeTest, LeavesOfOneEntryLeaveNodesExact) {
    TableDesign design{u"Pairs",
                       {Column(u"A", ColumnType::kText, 255), Column(u"B", ColumnType::kText, 255)},
                       {Index(u"Both", {{0, true}, {1, true}})},
                       {},
                       {}};
    InTransaction([&] {
        const base::Status created = database_->CreateTable(design);
        ASSERT_TRUE(created.ok()) << created.message();
    });
    Table& pairs = *database_->FindTable(u"Pairs").value();
    std::vector<RowId> rows;
    const auto change = [&](bool insert) {
        if (insert) {
            std::vector<Value> values{Value::Text(Letters(10) + Filler(160)),
                                      Value::Text(Filler(160))};
            const auto row = pairs.Insert(values);
            ASSERT_TRUE(row.ok()) << row.status().message();
            rows.push_back(row.value());
        } else {
            const std::size_t at = random_() % rows.size();
            const base::Status deleted = pairs.Delete(rows[at]);
            ASSERT_TRUE(deleted.ok()) << deleted.message();
            rows.erase(rows.begin() + static_cast<std::ptrdiff_t>(at));
        }
    };
    for (int i = 0; i < 200 && !HasFailure(); ++i) {
        InTransaction([&] { change(i < 40 || (i < 120 && i % 2 == 0) || rows.empty()); });
        EXPECT_TRUE(test_support::PagesAreSound(database_->pages(), options_));
    }
}

// Other engines leave 0 in all nodes, or only in those that they wrote.
TEST_P(DeepTreeTest, LevelBytesAreNotLookedAt) {
    using Level = std::function<std::byte(PageNumber)>;
    const std::map<std::string, Level> kinds = {
        {"none", [](PageNumber) { return std::byte{0}; }},
        {"every other", [](PageNumber page) { return std::byte{page % 2 == 0}; }},
        {"nonsense", [](PageNumber page) { return static_cast<std::byte>(page * 37); }}};
    for (const unsigned levels : {2U, 3U})
        for (const auto& named_level : kinds) {
            const std::string& kind = named_level.first;
            const Level& level = named_level.second;
            SCOPED_TRACE(kind + ", " + std::to_string(levels));
            options_ = test_support::kOwnFile;
            Grow(levels, [&] { return LongName(); });
            Edit([&](std::vector<std::byte>& bytes) {
                ForEach(bytes, PageType::kIndexNode,
                        [&](std::span<std::byte> node, PageNumber page) {
                            node[FormatHere().index_level_offset] = level(page);
                        });
                if (kind == "nonsense")
                    ForEach(bytes, PageType::kIndexLeaf,
                            [&](std::span<std::byte> leaf, PageNumber) {
                                leaf[FormatHere().index_level_offset] = std::byte{3};
                            });
            });
            EXPECT_GT(Check().warnings, 0U);
            EXPECT_FALSE(Check(test_support::kOwnFile).sound());
            options_ = test_support::kStrict;
            ExpectSound();
            ExpectAllRowsFound();
            Churn(150, [&] { return LongName(); });
            ExpectAllRowsFound();
            DeleteAll();
        }
}

TEST_P(DeepTreeTest, NodesThatAreWrittenGetTheirLevel) {
    Grow(3, [&] { return LongName(); });
    Edit([&](std::vector<std::byte>& bytes) {
        ForEach(bytes, PageType::kIndexNode, [&](std::span<std::byte> node, PageNumber) {
            node[FormatHere().index_level_offset] = std::byte{0};
        });
    });
    options_ = test_support::kStrict;
    const auto at_first = Check().warnings;
    Churn(250, [&] { return LongName(); });
    EXPECT_LT(Check().warnings, at_first);
    DeleteAll();
    EXPECT_TRUE(Check(test_support::kOwnFile).sound());
}

TEST_P(DeepTreeTest, KeysLargerThanWhatIsBelowStopNoChange) {
    for (const unsigned levels : {2U, 3U}) {
        options_ = test_support::kOwnFile;
        Grow(levels, [&] { return LongName(); });
        const auto names = LeaveLargerKeys();
        options_ = {};
        ASSERT_GE(names.size(), 3U);
        EXPECT_TRUE(Check().sound());
        EXPECT_GE(Check().warnings, names.size());
        EXPECT_FALSE(Check(test_support::kStrict).sound());
        ExpectSound();
        ExpectAllRowsFound();
        // Names just before those that were the greatest of their leaves.
        for (std::u16string name : names) {
            --name[kLetters - 1];
            InTransaction([&] { Insert(name); });
            ExpectSound();
        }
        EXPECT_TRUE(Check(test_support::kStrict).sound());
        LeaveLargerKeys();
        Churn(250, [&] { return LongName(); });
        ExpectAllRowsFound();
        DeleteAll();
    }
}

// Entries that share most of their bytes fill a node; then comes one that does not share them.
TEST_P(DeepTreeTest, KeysWithoutTheCommonPrefixPartFullNodes) {
    const std::u16string shared(150, u'm');
    const auto name = [&] { return shared + Letters(80); };
    InTransaction([&] {
        for (int i = 0; i < 900; ++i)
            Insert(name());
    });
    ExpectSound();
    for (const char16_t first : {u'a', u'z'})
        InTransaction([&] {
            for (int i = 0; i < 40 && !HasFailure(); ++i)
                Insert(first + Letters(79));
        });
    ExpectSound();
    ExpectAllRowsFound();
    // The keys of nodes are lowered to ones without the prefix, from the one end and from the
    // other.
    for (const bool ascending : {true, false}) {
        std::ranges::sort(rows_, {}, [](const auto& row) { return row.second; });
        if (!ascending) std::ranges::reverse(rows_);
        const auto begin =
            std::ranges::find_if(rows_, [](const auto& row) { return row.second[0] == u'm'; });
        const auto first = static_cast<std::size_t>(begin - rows_.begin());
        for (int i = 0; i < 300 && !HasFailure(); ++i) {
            InTransaction([&] { Delete(first); });
            if (i % 100 == 99) ExpectSound();
        }
    }
    DeleteAll();
}

TEST_P(DeepTreeTest, NodesThatLeadToThemselvesAreDamage) {
    Grow(3, [&] { return LongName(); });
    const PageNumber root = Definition().real_indexes[kByName].root;
    const std::vector<std::byte> whole = AllBytes(database_->pages());
    Edit([&](std::vector<std::byte>& bytes) {
        base::StoreLittle(bytes.data() + root * PageSize() + FormatHere().index_links_offset + 8,
                          root);
    });
    EXPECT_FALSE(Check().sound());
    const KeyBound last{{Value::Text(u"zzzzzzzzzzzzzzzzzzzz")}, true};
    auto cursor = table_->Range(RangeIndex(), last, {}, false);
    const base::Status read = cursor.ok() ? cursor.value()->Next().status() : cursor.status();
    EXPECT_EQ(read.number(), 3049);
    ASSERT_TRUE(database_->Begin().ok());
    std::vector<Value> values{Value::Long(100000), Value::Text(u"zzzzzzzzzzzzzzzzzzzz")};
    EXPECT_EQ(table_->Insert(values).status().number(), 3049);
    database_->Rollback();
    Open(whole);
}

// A node without an entry leads to the last leaf of the last node, which so is a level deeper.
TEST_P(DeepTreeTest, LeavesAtDifferentDepthsAreDamage) {
    Grow(2, [&] { return LongName(); });
    const std::vector<std::byte> whole = AllBytes(database_->pages());
    const PageNumber root = Definition().real_indexes[kByName].root;
    const PageNumber last = View(database_->pages().Read(root).value()).tail();
    const auto added = static_cast<PageNumber>(whole.size() / PageSize());
    Edit([&](std::vector<std::byte>& bytes) {
        bytes.resize(bytes.size() + PageSize());
        std::byte* const node = bytes.data() + added * PageSize();
        std::byte* const parent = bytes.data() + last * PageSize();
        const std::size_t tail = FormatHere().index_links_offset + 8;
        node[0] = std::byte{3};
        node[1] = std::byte{1};
        base::StoreLittle(node + 2, static_cast<std::uint16_t>(IndexRoom(FormatHere())));
        base::StoreLittle(node + 4, Definition().page);
        node[FormatHere().index_level_offset] = std::byte{1};
        base::StoreLittle(node + tail, base::LoadLittle<std::uint32_t>(parent + tail));
        base::StoreLittle(parent + tail, added);
    });
    EXPECT_TRUE(HasFault(last, "index Name: the children are of different levels"));
    // They are read for all that.
    ExpectAllRowsFound();
    Open(whole);
}

TEST_P(DeepTreeTest, APrefixThatReachesIntoAChildsNumberIsDamage) {
    Grow(2, [&] { return LongName(); });
    const std::vector<std::byte> whole = AllBytes(database_->pages());
    const PageNumber root = Definition().real_indexes[kByName].root;
    const IndexPageView view = View(database_->pages().Read(root).value());
    ASSERT_GE(view.count(), 1U);
    const std::size_t first_end = view.End(0);
    constexpr std::size_t kPrefix = 100;
    // Behind the first entry comes one of as many bytes that are not left out.
    const auto set_second = [&](std::size_t stored) {
        std::vector<std::byte> bytes = whole;
        const Format& format = FormatHere();
        std::byte* const page = bytes.data() + root * PageSize();
        std::byte* const mask = page + format.index_mask_offset;
        std::fill(mask, page + format.index_entries_offset, std::byte{0});
        for (const std::size_t end : {first_end, first_end + stored})
            mask[end / 8] |= static_cast<std::byte>(1U << end % 8);
        page[format.index_prefix_offset] = std::byte{kPrefix};
        base::StoreLittle(page + 2,
                          static_cast<std::uint16_t>(IndexRoom(format) - first_end - stored));
        Open(std::move(bytes));
    };
    constexpr const char* kFault = "index Name: the prefix reaches into a child's number";
    set_second(4);
    EXPECT_FALSE(HasFault(root, kFault));
    set_second(3);
    EXPECT_TRUE(HasFault(root, kFault));
    auto cursor = table_->Range(RangeIndex(), {}, {}, false);
    const base::Status read = cursor.ok() ? cursor.value()->Next().status() : cursor.status();
    EXPECT_EQ(read.number(), 3049);
    Open(whole);
}

// Other engines take entries away and leave the page's prefix as it is; with one entry left, it may
// be longer than that.
TEST_P(DeepTreeTest, ALoneEntryWithAStalePrefixIsReadAndChanged) {
    for (const unsigned levels : {0U, 1U})
        for (const std::size_t prefix : {3U, 100U, 255U}) {
            SCOPED_TRACE(std::to_string(levels) + ", " + std::to_string(prefix));
            // Of a leaf, and of a node.
            const bool is_leaf = levels == 0;
            const auto name = [&] { return is_leaf ? Letters(20) : LongName(); };
            InTransaction([&] { Insert(name()); });
            while (Height() < levels && !HasFailure())
                InTransaction([&] { Insert(name()); });
            const PageNumber root = Definition().real_indexes[kByName].root;
            ASSERT_EQ(View(database_->pages().Read(root).value()).count(), 1U);
            const std::vector<std::byte> whole = AllBytes(database_->pages());
            const auto rows = rows_;
            const auto spoil = [&] {
                std::vector<std::byte> bytes = whole;
                std::byte* const page = bytes.data() + root * PageSize();
                page[FormatHere().index_prefix_offset] = static_cast<std::byte>(prefix);
                Open(std::move(bytes));
                rows_ = rows;
            };
            spoil();
            ExpectSound();
            ExpectAllRowsFound();
            Churn(100, name);
            ExpectAllRowsFound();
            // Behind the entry, before it, and one like it.
            for (const std::u16string& added :
                 {u"zz" + name(), u"aa" + name(), rows.front().second}) {
                spoil();
                InTransaction([&] {
                    for (int i = 0; i < 3; ++i)
                        Insert(added);
                });
                ExpectSound();
                ExpectAllRowsFound();
            }
            spoil();
            DeleteAll();
        }
}

INSTANTIATE_TEST_SUITE_P(Versions, DeepTreeTest, testing::Values(4, 3), [](const auto& version) {
    return version.param == 4 ? std::string("NewFile") : std::string("OlderFile");
});

}  // namespace
}  // namespace jet::test
