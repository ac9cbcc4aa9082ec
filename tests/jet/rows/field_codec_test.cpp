// What a column holds at most.
#include "jet/rows/field_codec.h"

#include "jet/errors.h"
#include "jet/pages/page_store.h"

#include <gtest/gtest.h>

namespace jet {
namespace {

class FieldCodecTest : public testing::TestWithParam<int> {
protected:
    FieldCodecTest() : pages_(MakeMemoryPageStore(FormatOf(GetParam()).page_size, {})) {}
    base::Status Encode(ColumnType type, std::uint16_t length, const Value& value,
                        std::uint8_t flags = 0) {
        PageHeader header;
        header.version = GetParam();
        const FileContext file(*pages_, header);
        ColumnDefinition column;
        column.type = type;
        column.length = length;
        column.flags = flags;
        return EncodeField(file, column, value).status();
    }

    std::unique_ptr<PageStore> pages_;
};

TEST_P(FieldCodecTest, TextsFitTheirColumn) {
    const auto length = static_cast<std::uint16_t>(GetParam() == 3 ? 5 : 10);
    for (const std::uint8_t flags : {std::uint8_t{0}, std::uint8_t{kColumnFixed}}) {
        EXPECT_TRUE(Encode(ColumnType::kText, length, Value::Text(u"12345"), flags).ok());
        EXPECT_TRUE(Is(Encode(ColumnType::kText, length, Value::Text(u"123456"), flags),
                       ErrorNumber::kFieldTooSmall));
    }
}

TEST_P(FieldCodecTest, BytesFitTheirColumn) {
    EXPECT_TRUE(Encode(ColumnType::kBinary, 3, Value::Binary(Bytes(3))).ok());
    EXPECT_TRUE(
        Is(Encode(ColumnType::kBinary, 3, Value::Binary(Bytes(4))), ErrorNumber::kFieldTooSmall));
}

INSTANTIATE_TEST_SUITE_P(Versions, FieldCodecTest, testing::Values(3, 4),
                         [](const auto& version) { return "Jet" + std::to_string(version.param); });

}  // namespace
}  // namespace jet
