// Key bytes of the types that are no text.
#include "jet/index/key_encoder.h"

#include <gtest/gtest.h>

namespace jet {
namespace {

Bytes Raw(std::initializer_list<unsigned> values) {
    Bytes out;
    for (const unsigned value : values)
        out.push_back(static_cast<std::byte>(value));
    return out;
}

class KeyEncoderTest : public testing::Test {
protected:
    Bytes Key(ColumnType type, const Value& value, bool ascending = true) {
        ColumnDefinition column;
        column.type = type;
        Bytes key;
        AppendKeyPart(file_, column, ascending, value, key);
        return key;
    }

    std::unique_ptr<PageStore> pages_ = MakeMemoryPageStore(4096, {});
    FileContext file_{*pages_, PageHeader()};
};

TEST_F(KeyEncoderTest, NullIsFirstAscendingAndLastDescending) {
    EXPECT_EQ(Key(ColumnType::kLong, {}), Raw({0x00}));
    EXPECT_EQ(Key(ColumnType::kLong, {}, false), Raw({0xFF}));
}

TEST_F(KeyEncoderTest, IntegersAreBigEndianWithTheSignFlipped) {
    EXPECT_EQ(Key(ColumnType::kLong, Value::Long(13)), Raw({0x7F, 0x80, 0, 0, 0x0D}));
    EXPECT_EQ(Key(ColumnType::kLong, Value::Long(-1)), Raw({0x7F, 0x7F, 0xFF, 0xFF, 0xFF}));
    EXPECT_EQ(Key(ColumnType::kLong, Value::Long(0), false), Raw({0x80, 0x7F, 0xFF, 0xFF, 0xFF}));
    EXPECT_EQ(Key(ColumnType::kByte, Value::Byte(200)), Raw({0x7F, 0xC8}));
}

TEST_F(KeyEncoderTest, NegativeFloatsAreComplemented) {
    EXPECT_EQ(Key(ColumnType::kDouble, Value::Double(1)),
              Raw({0x7F, 0xBF, 0xF0, 0, 0, 0, 0, 0, 0}));
    EXPECT_EQ(Key(ColumnType::kDouble, Value::Double(-1)),
              Raw({0x7F, 0x40, 0x0F, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF}));
}

TEST_F(KeyEncoderTest, TrueSortsBeforeFalse) {
    EXPECT_EQ(Key(ColumnType::kBoolean, Value::Boolean(true)), Raw({0x7F, 0x00}));
    EXPECT_EQ(Key(ColumnType::kBoolean, Value::Boolean(false), false), Raw({0x80, 0x00}));
}

// 16 bytes of magnitude behind the sign. In a descending column the sign stays as it is.
TEST_F(KeyEncoderTest, DecimalsAreASignAndAMagnitude) {
    const auto decimal = [](bool negative, std::uint32_t magnitude) {
        return Value::Decimal(Numeric{negative, 2, {0, 0x01020304, 0, magnitude}});
    };
    const auto key = [](unsigned flag, unsigned sign, bool complement) {
        Bytes bytes = Raw({0, 0, 0, 0, 1, 2, 3, 4, 0, 0, 0, 0, 0, 0, 0, 0x0D});
        for (std::byte& byte : bytes)
            if (complement) byte = ~byte;
        Bytes all = Raw({flag, sign});
        all.insert(all.end(), bytes.begin(), bytes.end());
        return all;
    };
    EXPECT_EQ(Key(ColumnType::kNumeric, decimal(false, 13)), key(0x7F, 0xFF, false));
    EXPECT_EQ(Key(ColumnType::kNumeric, decimal(true, 13)), key(0x7F, 0x00, true));
    EXPECT_EQ(Key(ColumnType::kNumeric, decimal(false, 13), false), key(0x80, 0xFF, true));
    EXPECT_EQ(Key(ColumnType::kNumeric, decimal(true, 13), false), key(0x80, 0x00, false));
    EXPECT_EQ(Key(ColumnType::kNumeric, {}, false), Raw({0xFF}));
}

TEST_F(KeyEncoderTest, BinaryComesInBlocksOfEight) {
    Bytes bytes(16, std::byte{1});
    Bytes expected = Raw({0x7F, 1, 1, 1, 1, 1, 1, 1, 1, 9, 1, 1, 1, 1, 1, 1, 1, 1, 8});
    EXPECT_EQ(Key(ColumnType::kBinary, Value::Binary(bytes)), expected);
    bytes.resize(1);
    EXPECT_EQ(Key(ColumnType::kBinary, Value::Binary(bytes), false),
              Raw({0x80, 0xFE, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFE}));
    EXPECT_EQ(Key(ColumnType::kBinary, Value::Binary({})), Raw({0x7F}));
}

TEST_F(KeyEncoderTest, DescendingTextIsComplementedAndEndsInZero) {
    EXPECT_EQ(Key(ColumnType::kText, Value::Text(u"Tables"), false),
              Raw({0x80, 0x92, 0xB5, 0xB3, 0xA1, 0xAE, 0x94, 0xFE, 0xFF, 0x00}));
}

}  // namespace
}  // namespace jet
