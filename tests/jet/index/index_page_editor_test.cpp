// Single entries put into a leaf, and when a leaf has to be written anew.
#include "jet/index/index_page_editor.h"

#include <gtest/gtest.h>

namespace jet {
namespace {

Bytes Entry(const std::string& text) {
    const auto bytes = std::as_bytes(std::span(text));
    return {bytes.begin(), bytes.end()};
}

constexpr PageNumber kTable = 7;

class InsertInPlaceTest : public testing::TestWithParam<int> {
protected:
    // All entries begin with "same": that part stands once on the page.
    InsertInPlaceTest() {
        IndexPageImage image;
        image.entries = {Entry("same b 1234"), Entry("same d 1234")};
        image.Write(page_, format_, kTable);
    }
    IndexPageView View() const { return *IndexPageView::Parse(page_, format_, kTable); }
    std::string TextOf(std::size_t i) const {
        Bytes entry;
        View().CopyEntry(i, entry);
        return {reinterpret_cast<const char*>(entry.data()), entry.size()};
    }
    bool Insert(std::size_t position, const std::string& entry) {
        return InsertInPlace(page_, format_, View(), position, Entry(entry));
    }

    const Format& format_ = FormatOf(GetParam());
    Bytes page_ = Bytes(format_.page_size);
};

TEST_P(InsertInPlaceTest, EntryWithThePrefixIsPutBetween) {
    ASSERT_TRUE(Insert(1, "same c 1234"));
    ASSERT_EQ(View().count(), 3U);
    EXPECT_EQ(TextOf(1), "same c 1234");
    EXPECT_EQ(TextOf(2), "same d 1234");
}

TEST_P(InsertInPlaceTest, TheFirstEntryCarriesThePrefix) {
    ASSERT_GT(View().prefix_bytes(), 0U);
    EXPECT_FALSE(Insert(0, "same a 1234"));
}

TEST_P(InsertInPlaceTest, EntryWithAnotherPrefixNeedsAnotherPage) {
    EXPECT_FALSE(Insert(2, "tame d 1234"));
}

// As a damaged page may suggest: nothing would be left of the entry.
TEST_P(InsertInPlaceTest, EntryThatIsNotLongerThanThePrefixIsRefused) {
    const Bytes before = page_;
    const std::string prefix = std::string("same b").substr(0, View().prefix_bytes());
    EXPECT_FALSE(Insert(1, prefix));
    EXPECT_FALSE(Insert(1, prefix.substr(1)));
    EXPECT_FALSE(Insert(1, prefix.substr(0, prefix.size() - 1)));
    EXPECT_EQ(page_, before);
}

INSTANTIATE_TEST_SUITE_P(Versions, InsertInPlaceTest, testing::Values(3, 4),
                         [](const auto& version) { return "Jet" + std::to_string(version.param); });

}  // namespace
}  // namespace jet
