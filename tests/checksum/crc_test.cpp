#include "base/file_names.h"
#include "checksum/checksum_text.h"
#include "checksum/clsCRC.h"
#include "checksum/crc_16.h"
#include "support/programs.h"

#include <gtest/gtest.h>

#include <array>
#include <fstream>
#include <random>
#include <span>
#include <sstream>
#include <string>

namespace checksum {
namespace {

constexpr std::u16string_view kDigits = u"123456789";

std::vector<std::byte> RandomBytes(std::size_t size) {
    std::mt19937 random(20261121);
    std::vector<std::byte> bytes(size);
    for (std::byte& byte : bytes)
        byte = static_cast<std::byte>(random());
    return bytes;
}

// The definition of the CRC-32, bit by bit, as the second opinion.
std::uint32_t SlowCrc32(std::span<const std::byte> bytes) {
    std::uint32_t crc = 0xFFFFFFFF;
    for (const std::byte byte : bytes) {
        crc ^= static_cast<std::uint32_t>(byte);
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc & 1) != 0 ? (crc >> 1) ^ 0xEDB88320 : crc >> 1;
    }
    return ~crc;
}

class FileCrcTest : public testing::Test {
protected:
    FileCrcTest() : folder_(std::filesystem::temp_directory_path() / FolderName()) {
        std::filesystem::create_directories(folder_);
    }
    ~FileCrcTest() override { std::filesystem::remove_all(folder_); }

    std::filesystem::path Write(const std::string& name, std::span<const std::byte> bytes) {
        std::ofstream file(folder_ / name, std::ios::binary);
        file.write(reinterpret_cast<const char*>(bytes.data()),
                   static_cast<std::streamsize>(bytes.size()));
        return folder_ / name;
    }
    static std::string FolderName() {
        const auto* info = testing::UnitTest::GetInstance()->current_test_info();
        return std::string("tavolo-crc-") + info->name() + "-" +
               std::to_string(std::random_device{}());
    }

    std::filesystem::path folder_;
};

TEST(CrcTest, ANewObjectComputesCrc32) {
    clsCRC crc;
    EXPECT_EQ(crc.Algorithm(), -1);
    EXPECT_EQ(crc.CalculateString(kDigits), -873187034);
    EXPECT_EQ(ChecksumText(crc.Value()), u"CBF43926");
}

TEST(CrcTest, Crc16IsXmodems) {
    clsCRC crc;
    crc.Algorithm(Crc16);
    EXPECT_EQ(crc.Algorithm(), 0);
    EXPECT_EQ(crc.CalculateString(kDigits), 0x31C3);
}

TEST(CrcTest, AnySelectorButZeroSelectsCrc32AndReadsBackAsMinusOne) {
    clsCRC crc;
    for (const std::int32_t selector : {1, 2, -1, 0x10000}) {
        crc.Algorithm(Crc16);
        crc.Algorithm(selector);
        EXPECT_EQ(crc.Algorithm(), -1) << selector;
        EXPECT_EQ(crc.CalculateString(kDigits), -873187034) << selector;
    }
}

TEST(CrcTest, PiecesGiveTheValueOfTheWhole) {
    for (const std::int32_t algorithm : {Crc16, Crc32}) {
        clsCRC whole;
        whole.Algorithm(algorithm);
        clsCRC pieces;
        pieces.Algorithm(algorithm);
        pieces.AddString(u"1234");
        EXPECT_EQ(pieces.AddString(u"56789"), whole.CalculateString(kDigits)) << algorithm;
    }
}

TEST(CrcTest, CalculatingStartsAfresh) {
    clsCRC crc;
    crc.AddString(u"something before");
    EXPECT_EQ(crc.CalculateString(kDigits), -873187034);
}

TEST(CrcTest, SwitchingTheAlgorithmClearsBothRegisters) {
    clsCRC crc;
    crc.AddString(u"abc");
    crc.Algorithm(Crc16);
    EXPECT_EQ(crc.Value(), 0);
    crc.AddString(u"abc");
    crc.Algorithm(Crc32);
    EXPECT_EQ(crc.Value(), 0);
    crc.Algorithm(Crc16);
    EXPECT_EQ(crc.Value(), 0);
}

TEST(CrcTest, AWrittenValueReadsBackComplementedUnderCrc32) {
    clsCRC crc;
    crc.Value(0);
    EXPECT_EQ(crc.Value(), -1);
    crc.Value(-1);
    EXPECT_EQ(crc.Value(), 0);
    crc.Value(0x12345678);
    EXPECT_EQ(crc.Value(), ~0x12345678);
}

TEST(CrcTest, AWrittenValueReadsBackInItsLow16BitsUnderCrc16) {
    clsCRC crc;
    crc.Algorithm(Crc16);
    crc.Value(0x1234ABCD);
    EXPECT_EQ(crc.Value(), 0xABCD);
}

TEST(CrcTest, AWrittenRegisterIsContinuedFrom) {
    clsCRC crc;
    const std::int32_t first = crc.CalculateString(u"1234");
    crc.Clear();
    crc.Value(~first);
    EXPECT_EQ(crc.AddString(u"56789"), -873187034);
}

TEST(CrcTest, ClearingGivesTheValueOfNoBytes) {
    clsCRC crc;
    crc.AddString(u"abc");
    crc.Clear();
    EXPECT_EQ(crc.Value(), 0);
}

TEST(CrcTest, NoBytesChangeNothing) {
    clsCRC crc;
    const std::int32_t before = crc.AddString(u"abc");
    EXPECT_EQ(crc.AddBytes({}), before);
    EXPECT_EQ(crc.AddString({}), before);
}

TEST(CrcTest, AgreesWithTheBitwiseDefinitionAtEveryLengthAndAlignment) {
    const std::vector<std::byte> bytes = RandomBytes(600);
    for (std::size_t start = 0; start < 3; ++start)
        for (std::size_t size = 1; start + size <= bytes.size(); ++size) {
            const auto part = std::span(bytes).subspan(start, size);
            ASSERT_EQ(static_cast<std::uint32_t>(clsCRC().CalculateBytes(part)), SlowCrc32(part))
                << size;
        }
}

TEST(CrcTest, TextOutsideTheCodePageIsSummedOverItsAnsiForm) {
    clsCRC crc;
    const std::array<std::byte, 4> ansi = {std::byte{0xE9}, std::byte{0x80}, std::byte{'?'},
                                           std::byte{'A'}};
    const std::int32_t expected = crc.CalculateBytes(ansi);
    EXPECT_EQ(crc.CalculateString(u"\u00E9\u20AC\u4E2DA"), expected);
}

TEST(Crc16Test, OnlyTheLow16BitsOfTheRegisterMatter) {
    const std::array<std::byte, 2> bytes = {std::byte{0xFF}, std::byte{0x01}};
    EXPECT_EQ(UpdateCrc16(0xABCD1234, bytes), UpdateCrc16(0x1234, bytes));
}

TEST(Crc16Test, TheLastTableEntryIs1EF0) {
    const std::array<std::byte, 1> last = {std::byte{0xFF}};
    EXPECT_EQ(UpdateCrc16(0, last), 0x1EF0u);
}

TEST(ChecksumTextTest, HasNoLeadingZeros) {
    EXPECT_EQ(ChecksumText(0x0000ABCD), u"ABCD");
    EXPECT_EQ(ChecksumText(0x0A), u"A");
}

TEST(ChecksumTextTest, ANegativeValueIsItsUnsignedNumber) {
    EXPECT_EQ(ChecksumText(-873187034), u"CBF43926");
    EXPECT_EQ(ChecksumText(-1), u"FFFFFFFF");
}

TEST(ChecksumTextTest, ZeroAndNoValueAreTheDigitZero) {
    EXPECT_EQ(ChecksumText(0), u"0");
    EXPECT_EQ(ChecksumText(std::nullopt), u"0");
}

TEST_F(FileCrcTest, AFileHasTheValueOfItsBytes) {
    for (const std::size_t size : {1u, 9u, 4096u, 65535u, 65536u, 65537u, 1000000u}) {
        const auto bytes = RandomBytes(size);
        const auto path = Write("table.vpt", bytes);
        for (const std::int32_t algorithm : {Crc16, Crc32}) {
            clsCRC of_file;
            of_file.Algorithm(algorithm);
            clsCRC of_bytes;
            of_bytes.Algorithm(algorithm);
            const auto value = of_file.CalculateFile(path);
            ASSERT_TRUE(value.ok()) << value.status().message();
            EXPECT_EQ(**value, of_bytes.CalculateBytes(bytes)) << size;
            EXPECT_EQ(of_file.Value(), of_bytes.Value()) << size;
        }
    }
}

TEST_F(FileCrcTest, AnotherProgramComputesTheSame) {
    ASSERT_TRUE(test_support::HasTool("rhash")) << "rhash is not installed";
    const auto path = Write("other.vpt", RandomBytes(777777));
    const auto theirs = test_support::OutputOf({"rhash", "--printf=%C", base::Utf8Of(path)});
    ASSERT_TRUE(theirs);
    const auto number = static_cast<std::uint32_t>(std::stoul(*theirs, nullptr, 16));
    clsCRC crc;
    EXPECT_EQ(static_cast<std::uint32_t>(**crc.CalculateFile(path)), number);
}

TEST_F(FileCrcTest, AnEmptyFileHasNoValueAndLeavesTheRegisters) {
    clsCRC crc;
    const std::int32_t before = crc.AddString(u"before");
    const auto value = crc.CalculateFile(Write("empty.vpt", {}));
    ASSERT_TRUE(value.ok());
    EXPECT_EQ(*value, std::nullopt);
    EXPECT_EQ(crc.Value(), before);
}

TEST_F(FileCrcTest, AMissingFileIsTheSystemsFileNotFoundError) {
    clsCRC crc;
    const auto value = crc.CalculateFile(folder_ / "missing.vpt");
    ASSERT_FALSE(value.ok());
    EXPECT_EQ(value.status().code(), base::StatusCode::kNotFound);
    EXPECT_EQ(value.status().number(), 53);
}

TEST_F(FileCrcTest, AFolderIsNoFile) {
    EXPECT_EQ(clsCRC().CalculateFile(folder_).status().code(), base::StatusCode::kUnsupported);
}

TEST_F(FileCrcTest, AFailureLeavesTheRegisters) {
    clsCRC crc;
    const std::int32_t before = crc.AddString(u"before");
    EXPECT_FALSE(crc.CalculateFile(folder_ / "missing.vpt").ok());
    EXPECT_EQ(crc.Value(), before);
}

// Reading that fails somewhere behind the first chunk.
TEST(CrcStreamTest, AReadThatFailsMidwayIsAnErrorAndLeavesTheRegisters) {
    constexpr std::size_t kLength = 200'000;
    for (const std::size_t there :
         {std::size_t{0}, std::size_t{1}, std::size_t{65'536}, std::size_t{150'000}, kLength - 1}) {
        std::istringstream stream(std::string(there, 'x'));
        clsCRC crc;
        const std::int32_t before = crc.CalculateString(u"123456789");
        const auto value = crc.CalculateStream(stream, kLength);
        ASSERT_FALSE(value.ok()) << there;
        EXPECT_EQ(value.status().code(), base::StatusCode::kIoError);
        EXPECT_EQ(crc.Value(), before) << there;
    }
}

TEST(CrcStreamTest, AWholeStreamIsItsBytes) {
    const std::string bytes(200'000, 'x');
    std::istringstream stream(bytes);
    clsCRC crc;
    const auto value = crc.CalculateStream(stream, bytes.size());
    ASSERT_TRUE(value.ok());
    clsCRC other;
    EXPECT_EQ(*value, other.CalculateBytes(std::as_bytes(std::span(bytes))));
}

}  // namespace
}  // namespace checksum
