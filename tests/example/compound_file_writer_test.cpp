// Files that the writer makes, read by our own reader and by another library.
#include "example/compound_file_writer.h"

#include "cfb/byte_source.h"
#include "cfb/compound_file.h"

#include <gsf/gsf-infile-msole.h>
#include <gsf/gsf-input-memory.h>
#include <gsf/gsf-utils.h>

#include <gtest/gtest.h>

#include <mutex>

namespace example {
namespace {

using Bytes = std::vector<std::byte>;

Bytes Filled(std::size_t size, unsigned seed) {
    Bytes bytes(size);
    for (std::size_t i = 0; i < size; ++i)
        bytes[i] = static_cast<std::byte>((i * 31 + seed) & 0xFF);
    return bytes;
}

// At the borders of sectors, of pieces and of the mini stream.
constexpr std::size_t kSizes[] = {0,   1,    63,   64,   65,   511,   512,
                                  513, 4095, 4096, 4097, 5120, 70000, 200000};

std::u16string StreamName(std::size_t number) {
    std::u16string name = u"Stream";
    for (std::size_t i = 0; i <= number % 5; ++i)
        name += static_cast<char16_t>(u'a' + number);
    return name;
}

Bytes FileOfAllSizes() {
    CompoundFileWriter writer;
    for (std::size_t i = 0; i < std::size(kSizes); ++i)
        writer.Add(u"Inner/" + StreamName(i), Filled(kSizes[i], static_cast<unsigned>(i)));
    writer.Add(u"Other/Deep/x", Filled(10, 3));
    auto bytes = writer.Bytes();
    EXPECT_TRUE(bytes.ok());
    return std::move(bytes).value();
}

TEST(CompoundFileWriterTest, OurReaderFindsEveryStream) {
    auto file = cfb::CompoundFile::Open(cfb::MakeMemorySource(FileOfAllSizes()));
    ASSERT_TRUE(file.ok()) << file.status().message();
    const auto inner = (*file)->Find((*file)->root(), u"Inner");
    ASSERT_TRUE(inner.ok());
    const auto listed = (*file)->List(*inner);
    ASSERT_TRUE(listed.ok()) << listed.status().message();
    EXPECT_EQ(listed->size(), std::size(kSizes));
    for (std::size_t i = 0; i < std::size(kSizes); ++i) {
        const auto stream = (*file)->Find(*inner, StreamName(i));
        ASSERT_TRUE(stream.ok()) << i;
        const auto bytes = (*file)->Read(*stream);
        ASSERT_TRUE(bytes.ok()) << bytes.status().message();
        EXPECT_EQ(*bytes, Filled(kSizes[i], static_cast<unsigned>(i))) << i;
    }
}

TEST(CompoundFileWriterTest, MembersStandInTheOrderOfTheFormat) {
    auto file = cfb::CompoundFile::Open(cfb::MakeMemorySource(FileOfAllSizes()));
    ASSERT_TRUE(file.ok());
    const auto inner = (*file)->Find((*file)->root(), u"Inner");
    const auto listed = (*file)->List(*inner);
    ASSERT_TRUE(listed.ok());
    for (std::size_t i = 1; i < listed->size(); ++i) {
        const auto &before = (*listed)[i - 1].name, &name = (*listed)[i].name;
        EXPECT_TRUE(before.size() < name.size() || (before.size() == name.size() && before < name));
    }
}

TEST(CompoundFileWriterTest, AnotherLibraryFindsEveryStream) {
    static std::once_flag once;
    std::call_once(once, [] { gsf_init(); });
    const Bytes bytes = FileOfAllSizes();
    GsfInput* const input = gsf_input_memory_new(reinterpret_cast<const guint8*>(bytes.data()),
                                                 static_cast<gsf_off_t>(bytes.size()), FALSE);
    GsfInfile* const root = gsf_infile_msole_new(input, nullptr);
    ASSERT_NE(root, nullptr);
    GsfInput* const inner = gsf_infile_child_by_name(root, "Inner");
    ASSERT_NE(inner, nullptr);
    EXPECT_EQ(gsf_infile_num_children(GSF_INFILE(inner)), static_cast<int>(std::size(kSizes)));
    for (std::size_t i = 0; i < std::size(kSizes); ++i) {
        const std::u16string wide = StreamName(i);
        GsfInput* const stream = gsf_infile_child_by_name(
            GSF_INFILE(inner), std::string(wide.begin(), wide.end()).c_str());
        ASSERT_NE(stream, nullptr) << i;
        ASSERT_EQ(gsf_input_size(stream), static_cast<gsf_off_t>(kSizes[i]));
        const auto* const read =
            reinterpret_cast<const std::byte*>(gsf_input_read(stream, kSizes[i], nullptr));
        if (kSizes[i] > 0) {
            ASSERT_NE(read, nullptr);
            EXPECT_EQ(Bytes(read, read + kSizes[i]), Filled(kSizes[i], static_cast<unsigned>(i)));
        }
        g_object_unref(stream);
    }
    g_object_unref(inner);
    g_object_unref(root);
    g_object_unref(input);
}

TEST(CompoundFileWriterTest, AFileThatIsTooLargeIsRefused) {
    CompoundFileWriter writer;
    writer.Add(u"big", Bytes(8'000'000));
    EXPECT_EQ(writer.Bytes().status().code(), base::StatusCode::kUnsupported);
}

}  // namespace
}  // namespace example
