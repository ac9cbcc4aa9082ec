#include "base/byte_reader.h"
#include "base/byte_writer.h"
#include "base/scope_guards.h"
#include "base/status.h"

#include <gtest/gtest.h>

#include <array>

namespace base {
namespace {

TEST(BytesTest, LittleEndianRoundTrip) {
    std::vector<std::byte> bytes;
    AppendLittle<std::uint32_t>(bytes, 0x01020304);
    AppendLittle<std::int16_t>(bytes, -2);
    ASSERT_EQ(bytes.size(), 6U);
    EXPECT_EQ(bytes[0], std::byte{4});
    EXPECT_EQ(LittleAt<std::uint32_t>(bytes, 0), 0x01020304U);
    EXPECT_EQ(LittleAt<std::int16_t>(bytes, 4), std::int16_t{-2});
}

TEST(BytesTest, BigEndianRoundTrip) {
    std::vector<std::byte> bytes;
    AppendBig<std::uint32_t>(bytes, 0x01020304);
    EXPECT_EQ(bytes[0], std::byte{1});
    EXPECT_EQ(LoadBig<std::uint32_t>(bytes.data()), 0x01020304U);
    EXPECT_EQ(LoadBig<std::uint8_t>(bytes.data()), 1U);
}

TEST(BytesTest, ReadingOutsideIsNothing) {
    const std::array<std::byte, 3> bytes{};
    EXPECT_EQ(LittleAt<std::uint32_t>(bytes, 0), std::nullopt);
    EXPECT_EQ(LittleAt<std::uint16_t>(bytes, 2), std::nullopt);
    EXPECT_EQ(LittleAt<std::uint16_t>(bytes, SIZE_MAX), std::nullopt);
    EXPECT_FALSE(BytesAt(bytes, 1, 3).has_value());
    EXPECT_TRUE(BytesAt(bytes, 3, 0).has_value());
}

TEST(BytesTest, DoubleRoundTrip) {
    std::array<std::byte, 8> bytes{};
    StoreDouble(bytes.data(), -1.25);
    EXPECT_EQ(LoadDouble(bytes.data()), -1.25);
}

TEST(ScopedFlagTest, FormerValueIsBackAfterwards) {
    bool flag = false;
    {
        ScopedFlag guard(flag);
        EXPECT_TRUE(flag);
    }
    EXPECT_FALSE(flag);
}

Result<int> Half(int number) {
    if (number % 2 != 0) return Status(StatusCode::kInvalidArgument, "odd", 7);
    return number / 2;
}

Result<int> Quarter(int number) {
    ASSIGN_OR_RETURN(const int half, Half(number));
    return Half(half);
}

TEST(ResultTest, FailureTravelsWithCodeTextAndNumber) {
    const auto result = Quarter(6);
    ASSERT_FALSE(result.ok());
    EXPECT_EQ(result.status(), Status(StatusCode::kInvalidArgument, "odd", 7));
    EXPECT_EQ(Quarter(8).value(), 2);
}

}  // namespace
}  // namespace base
