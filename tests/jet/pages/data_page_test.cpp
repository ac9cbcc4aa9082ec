// The offset table of a data page as a stranger may have written it.
#include "jet/pages/data_page.h"

#include <gtest/gtest.h>

namespace jet {
namespace {

class DataPageTest : public testing::TestWithParam<int> {
protected:
    DataPageTest() {
        DataPageEditor editor = DataPageEditor::Create(page_, format_, 7);
        editor.Append(row_, 0);
        editor.Append(row_, 0);
    }
    void SetOffset(std::size_t slot, std::size_t offset) {
        base::StoreLittle(page_.data() + format_.slots_offset + 2 * slot,
                          static_cast<std::uint16_t>(offset));
    }
    std::optional<std::size_t> SizeOf(std::size_t slot) const {
        const auto bytes = DataPage::Parse(page_, format_)->Bytes(slot);
        return bytes ? std::optional(bytes->size()) : std::nullopt;
    }

    const Format& format_ = FormatOf(GetParam());
    std::vector<std::byte> page_ = std::vector<std::byte>(format_.page_size);
    std::vector<std::byte> row_ = std::vector<std::byte>(10);
};

TEST_P(DataPageTest, RowsLieBetweenTheirOffsetAndTheOneBefore) {
    EXPECT_EQ(SizeOf(0), 10U);
    EXPECT_EQ(SizeOf(1), 10U);
    EXPECT_EQ(SizeOf(2), std::nullopt);
}

TEST_P(DataPageTest, RowBeginsBehindTheOffsetTable) {
    const std::size_t table_end = format_.slots_offset + 4;
    SetOffset(1, table_end);
    EXPECT_EQ(SizeOf(1), format_.page_size - 10 - table_end);
    SetOffset(1, table_end - 1);
    EXPECT_EQ(SizeOf(1), std::nullopt);
    EXPECT_EQ(SizeOf(0), 10U);
}

TEST_P(DataPageTest, RowDoesNotEndBeforeItBegins) {
    SetOffset(0, format_.page_size - 21);
    EXPECT_EQ(SizeOf(1), std::nullopt);
    EXPECT_EQ(SizeOf(0), 21U);
}

INSTANTIATE_TEST_SUITE_P(Versions, DataPageTest, testing::Values(3, 4),
                         [](const auto& version) { return "Jet" + std::to_string(version.param); });

}  // namespace
}  // namespace jet
