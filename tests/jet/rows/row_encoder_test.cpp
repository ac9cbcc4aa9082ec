// Rows as they are encoded are read back, at every length: Jet 3 keeps one byte of each offset and
// tells in more bytes where the next 256 begin.
#include "jet/rows/row_encoder.h"

#include "jet/rows/row_view.h"

#include <gtest/gtest.h>

namespace jet {
namespace {

ColumnDefinition VariableColumn(std::uint16_t number) {
    ColumnDefinition column;
    column.number = number;
    column.variable_index = number;
    return column;
}

class RowEncoderTest : public testing::TestWithParam<int> {
protected:
    RowEncoderTest() {
        table_.columns_ever = 3;
        table_.variables_ever = 3;
        for (std::uint16_t number = 0; number < 3; ++number)
            table_.columns.push_back(VariableColumn(number));
    }
    std::string FieldOf(const RowView& view, std::size_t column) const {
        const auto bytes = view.Field(table_.columns[column]);
        return bytes ? std::string(reinterpret_cast<const char*>(bytes->data()), bytes->size())
                     : "damage";
    }
    static RowField Field(const std::string& text) {
        const auto bytes = std::as_bytes(std::span(text));
        return {true, Bytes(bytes.begin(), bytes.end())};
    }

    const Format& format_ = FormatOf(GetParam());
    TableDefinition table_;
};

TEST_P(RowEncoderTest, FieldsOfAnyLengthComeBack) {
    for (std::size_t length = 0; length < 900; ++length) {
        for (const std::size_t second : {std::size_t{0}, std::size_t{1}, std::size_t{255}}) {
            const std::string texts[] = {std::string(length, 'a'), std::string(second, 'b'), "end"};
            const RowField fields[] = {Field(texts[0]), Field(texts[1]), Field(texts[2])};
            const Bytes row = EncodeRow(format_, table_, fields);
            const auto view = RowView::Parse(row, format_);
            ASSERT_TRUE(view);
            for (std::size_t column = 0; column < 3; ++column)
                ASSERT_EQ(FieldOf(*view, column), texts[column]) << length << " and " << second;
        }
    }
}

// The offset 256 is the first that the first jump byte counts for.
TEST_P(RowEncoderTest, AnOffsetOf256IsBehindTheJump) {
    const std::size_t head = GetParam() == 3 ? 1 : 2;
    const RowField fields[] = {Field(std::string(256 - head, 'a')), Field("b"), Field("c")};
    const Bytes row = EncodeRow(format_, table_, fields);
    std::vector<int> tail;
    for (std::size_t at = 258; at < row.size(); ++at)
        tail.push_back(std::to_integer<int>(row[at]));
    // Jet 3: the offsets from the end's down, the jump, how many, the mask. Jet 4: words, no jump.
    const std::vector<int> jet3 = {2, 1, 0, 1, 1, 3, 0x07};
    const std::vector<int> jet4 = {2, 1, 1, 1, 0, 1, 2, 0, 3, 0, 0x07};
    EXPECT_EQ(tail, GetParam() == 3 ? jet3 : jet4);
}

TEST_P(RowEncoderTest, ManyColumnsAreCounted) {
    if (!format_.jet4()) {
        table_.columns_ever = 255;
        EXPECT_EQ(EncodeRow(format_, table_, {})[0], std::byte{255});
        return;
    }
    table_.columns_ever = 300;  // dropped ones count
    const Bytes row = EncodeRow(format_, table_, {});
    EXPECT_EQ(row[0], std::byte{300 - 256});
    EXPECT_EQ(row[1], std::byte{1});
}

INSTANTIATE_TEST_SUITE_P(Versions, RowEncoderTest, testing::Values(3, 4),
                         [](const auto& version) { return "Jet" + std::to_string(version.param); });

}  // namespace
}  // namespace jet
