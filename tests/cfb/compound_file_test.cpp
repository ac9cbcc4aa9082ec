#include "cfb/compound_file.h"
#include "support/vpt_builder.h"

#include <gtest/gtest.h>

#include <random>

namespace cfb {
namespace {

using test_support::VptBuilder;

class BuiltFileTest : public testing::Test {
protected:
    BuiltFileTest()
        : path_(std::filesystem::temp_directory_path() /
                ("tavolo-cfb-" + std::to_string(std::random_device{}()) + ".vpt")) {}
    ~BuiltFileTest() override { std::filesystem::remove(path_); }

    std::unique_ptr<CompoundFile> Build(const VptBuilder& builder) {
        const auto written = builder.Write(path_);
        EXPECT_TRUE(written.ok()) << written.message();
        auto opened = CompoundFile::Open(path_);
        EXPECT_TRUE(opened.ok()) << opened.status().message();
        return opened.ok() ? std::move(*opened) : nullptr;
    }
    static std::u16string NameFor(std::size_t size) {
        const std::string digits = std::to_string(size);
        return {digits.begin(), digits.end()};
    }
    static std::vector<std::byte> ReadAt(CompoundFile& file,
                                         std::initializer_list<std::u16string_view> path) {
        Element at = file.root();
        for (const auto name : path) {
            auto next = file.Find(at, name);
            EXPECT_TRUE(next.ok()) << next.status().message();
            if (!next.ok()) return {};
            at = *next;
        }
        auto bytes = file.Read(at);
        EXPECT_TRUE(bytes.ok()) << bytes.status().message();
        return bytes.value_or({});
    }

    std::filesystem::path path_;
};

TEST_F(BuiltFileTest, StreamsOfEverySizeComeBackByteForByte) {
    for (const unsigned sector_size : {512u, 4096u}) {
        VptBuilder builder;
        builder.SectorSize(sector_size);
        const std::size_t sizes[] = {0,   1,    63,   64,   65,   511,   512,
                                     513, 4095, 4096, 4097, 8192, 300000};
        for (const std::size_t size : sizes)
            builder.Bytes(NameFor(size), test_support::FillerBytes(size, 7));
        auto file = Build(builder);
        ASSERT_TRUE(file);
        for (const std::size_t size : sizes)
            EXPECT_EQ(ReadAt(*file, {u"TableInfo", NameFor(size)}),
                      test_support::FillerBytes(size, 7))
                << size << " bytes, sectors of " << sector_size;
    }
}

}  // namespace
}  // namespace cfb
