#include "browser/text_store.h"

#include <gtest/gtest.h>

namespace browser {
namespace {

TEST(TextStoreTest, GivesBackWhatItWasGiven) {
    TextStore store;
    const auto one = store.Add(u"one");
    const auto none = store.Add(u"");
    const auto two = store.Add(u"t\xd800wo");  // file names may hold half a surrogate pair
    const auto narrow = store.Add(u"\u00e9\u00ff");
    const auto wide = store.Add(u"\u00e9\u0100");
    EXPECT_EQ(store.Get(one).toStdU16String(), u"one");
    EXPECT_EQ(store.Get(none).toStdU16String(), u"");
    EXPECT_EQ(store.Get(two).toStdU16String(), u"t\xd800wo");
    EXPECT_FALSE(narrow.is_wide());
    EXPECT_TRUE(wide.is_wide());
    EXPECT_EQ(store.Get(narrow).toStdU16String(), u"\u00e9\u00ff");
    EXPECT_EQ(store.Get(wide).toStdU16String(), u"\u00e9\u0100");
}

TEST(TextStoreTest, KeepsTextsOfManyBlocks) {
    TextStore store;
    std::vector<TextStore::Reference> references;
    for (int i = 0; i < 20'000; ++i)
        references.push_back(store.Add(std::u16string(static_cast<std::size_t>(i % 40), u'a')));
    for (int i = 0; i < 20'000; ++i)
        ASSERT_EQ(store.Get(references[static_cast<std::size_t>(i)]).size(), i % 40);
}

TEST(TextStoreTest, ATextLongerThanABlockIsKeptWhole) {
    TextStore store;
    const auto before = store.Add(u"before");
    const auto long_text = store.Add(std::u16string(200'000, u'x'));
    const auto after = store.Add(u"after");
    EXPECT_EQ(store.Get(before).toStdU16String(), u"before");
    EXPECT_EQ(store.Get(long_text), QString(200'000, u'x'));
    EXPECT_EQ(store.Get(after).toStdU16String(), u"after");
}

TEST(TextStoreTest, ATextThatFillsABlockExactlyIsKept) {
    TextStore store;
    const auto full = store.Add(std::u16string(65'536, u'f'));
    const auto next = store.Add(u"n");
    EXPECT_EQ(store.Get(full).size(), 65'536);
    EXPECT_EQ(store.Get(next).toStdU16String(), u"n");
}

}  // namespace
}  // namespace browser
