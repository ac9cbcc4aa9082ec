// The shortcut for plain texts must give what the collation gives.
#include "jet/sql/functions/sort_key.h"
#include "jet/text/plain_text.h"

#include "base/unicode.h"
#include "jet/text/collation.h"

#include <gtest/gtest.h>

#include <random>

namespace {

using jet::AppendPlainKey;
using jet::ComparePlain;

std::string KeyOf(std::u16string_view text) {
    jet::Bytes bytes;
    jet::AppendTextKey(text, bytes);
    std::string key;
    for (const std::byte b : bytes)
        key += static_cast<char>(b);
    return key;
}

std::u16string RandomText(std::mt19937& random, std::u16string_view alphabet) {
    std::u16string text(random() % 6, u' ');
    for (char16_t& unit : text)
        unit = alphabet[random() % alphabet.size()];
    return text;
}

TEST(PlainTextTest, LettersDigitsAndBlanksArePlain) {
    std::string key;
    EXPECT_TRUE(AppendPlainKey(u"Attack from Space 2", key));
    EXPECT_EQ(key, KeyOf(u"Attack from Space 2"));
}

TEST(PlainTextTest, MarksAndAccentsAreNot) {
    for (const char16_t* text : {u"co-op", u"O'Brien", u"caf\u00e9", u"\u0001"}) {
        std::string key = "before";
        EXPECT_FALSE(AppendPlainKey(text, key)) << base::ToUtf8(text);
        EXPECT_EQ(key, "before");
        EXPECT_FALSE(ComparePlain(text, u"a").has_value());
        EXPECT_FALSE(ComparePlain(u"", text).has_value());
    }
}

TEST(PlainTextTest, OrderAndKeysAreTheCollations) {
    std::mt19937 random(1);
    const std::u16string alphabet = u"aAbBzZ019 ._~!#$%&()*+,/:;<=>?@[\\]^{|}-'\u00e4\u0301";
    int plain = 0;
    for (int i = 0; i < 20000; ++i) {
        const std::u16string a = RandomText(random, alphabet);
        const std::u16string b = RandomText(random, alphabet);
        std::string key;
        if (AppendPlainKey(a, key)) {
            ASSERT_EQ(key, KeyOf(a)) << base::ToUtf8(a);
        }
        const auto order = ComparePlain(a, b);
        const auto constant = jet::PlainText::Of(b);
        ASSERT_EQ(order, constant ? constant->Order(a) : std::nullopt) << base::ToUtf8(a);
        if (!order) continue;
        ++plain;
        ASSERT_EQ(*order, jet::CompareText(a, b)) << base::ToUtf8(a) << " and " << base::ToUtf8(b);
    }
    EXPECT_GT(plain, 1000);
}

TEST(PlainTextTest, TextsOfOneByteACharacterHaveTheSameKeysAndOrder) {
    std::mt19937 random(2);
    const auto constant = jet::PlainText::Of(u"Mm 5");
    ASSERT_TRUE(constant.has_value());
    for (int i = 0; i < 20000; ++i) {
        const std::u16string text = RandomText(random, u"aAmMzZ059 ._-'\u00e4\u00ff");
        const std::string narrow(text.begin(), text.end());
        std::string key = "before";
        std::string narrow_key = "before";
        ASSERT_EQ(AppendPlainKey(std::string_view(narrow), narrow_key), AppendPlainKey(text, key));
        ASSERT_EQ(narrow_key, key);
        ASSERT_EQ(constant->Order(std::string_view(narrow)), constant->Order(text));
    }
}

TEST(PlainTextTest, KeysHoldTheFirst255Characters) {
    const std::u16string long_text(255, u'x');
    std::string key;
    ASSERT_TRUE(AppendPlainKey(long_text + u"a", key));
    EXPECT_EQ(key, KeyOf(long_text + u"a"));
    EXPECT_EQ(key, KeyOf(long_text));
}

TEST(PlainTextTest, LongTextsAreLeftToTheCollation) {
    const std::u16string long_text(255, u'x');
    EXPECT_EQ(ComparePlain(long_text, long_text), std::weak_ordering::equivalent);
    EXPECT_FALSE(ComparePlain(long_text + u"a", long_text).has_value());
    EXPECT_FALSE(ComparePlain(long_text, long_text + u"a").has_value());
    EXPECT_FALSE(jet::PlainText::Of(long_text + u"a").has_value());
    const auto constant = jet::PlainText::Of(long_text);
    ASSERT_TRUE(constant.has_value());
    EXPECT_EQ(constant->Order(long_text), std::weak_ordering::equivalent);
    EXPECT_FALSE(constant->Order(long_text + u"a").has_value());
    EXPECT_FALSE(constant->Order(std::string(256, 'x')).has_value());
}

TEST(PlainTextTest, WholeTextsAreCompared) {
    const std::u16string head(255, u'x');
    EXPECT_TRUE(jet::CompareText(head + u"a", head + u"b") < 0);
    EXPECT_TRUE(jet::CompareText(head + u"b", head + u"a") > 0);
    EXPECT_TRUE(jet::CompareText(head + u"a", head) > 0);
    EXPECT_TRUE(jet::CompareText(head + u"A", head + u"a") == 0);
    EXPECT_TRUE(jet::CompareText(head + u"  ", head) == 0);
    EXPECT_TRUE(jet::CompareText(head + head + u"a", head + head + u"b") < 0);
    EXPECT_TRUE(jet::CompareText(u"a" + head + u"z", u"b" + head + u"a") < 0);
}

// The keys for hashing agree with the comparison about what is equal.
TEST(PlainTextTest, KeysOfEqualTextsAreEqual) {
    const std::u16string head(255, u'x');
    const std::u16string texts[] = {u"",
                                    u" ",
                                    head,
                                    head + u"  ",
                                    head + u"a",
                                    head + u"A",
                                    head + u"b",
                                    head + u"\u0001",
                                    head + head,
                                    head + head + u"a",
                                    head + std::u16string(255, u' ') + u"a",
                                    std::u16string(255, u'X'),
                                    u"a",
                                    u"\u0001a"};
    const auto key_of = [](const std::u16string& text) {
        std::string key;
        jet::sql::AppendEqualKey(jet::Value::Text(text), key);
        return key;
    };
    for (const std::u16string& a : texts)
        for (const std::u16string& b : texts)
            EXPECT_EQ(jet::CompareText(a, b) == 0, key_of(a) == key_of(b))
                << base::ToUtf8(a) << " and " << base::ToUtf8(b);
}

}  // namespace
