#include "cfb/compound_file.h"

#include "base/unicode.h"
#include "cfb/layout.h"
#include "cfb/raw_file.h"
#include "support/other_compound_files.h"
#include "support/test_data.h"
#include "support/vpt_builder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <random>

namespace cfb {
namespace {

using base::StatusCode;
using cfb_test::RawFile;
using test_support::BytesOf;
using Contents = test_support::CompoundContents;
using test_support::FillerBytes;
using test_support::Utf16Bytes;
using test_support::VptBuilder;

// Counts what is asked for, so that a test can say how much of a file was read.
class CountingSource final : public ByteSource {
public:
    CountingSource(std::unique_ptr<ByteSource> source, std::uint64_t& bytes_read)
        : source_(std::move(source)), bytes_read_(bytes_read) {}
    std::uint64_t size_bytes() const override { return source_->size_bytes(); }
    base::Status ReadAt(std::uint64_t offset, std::span<std::byte> bytes) override {
        bytes_read_ += bytes.size();
        return source_->ReadAt(offset, bytes);
    }

private:
    std::unique_ptr<ByteSource> source_;
    std::uint64_t& bytes_read_;
};

// Fails every read after the first `good` ones.
class FailingSource final : public ByteSource {
public:
    FailingSource(std::vector<std::byte> bytes, int good)
        : source_(MakeMemorySource(std::move(bytes))), good_(good) {}
    std::uint64_t size_bytes() const override { return source_->size_bytes(); }
    base::Status ReadAt(std::uint64_t offset, std::span<std::byte> bytes) override {
        if (good_-- > 0) return source_->ReadAt(offset, bytes);
        return {StatusCode::kIoError, "the disk fails"};
    }

private:
    std::unique_ptr<ByteSource> source_;
    int good_;
};

// Everything that can be reached; the first failure is kept in `status`.
void Collect(CompoundFile& file, const Element& storage, const std::string& prefix,
             Contents& contents, base::Status& status) {
    const auto members = file.List(storage);
    if (!members.ok()) {
        if (status.ok()) status = members.status();
        return;
    }
    for (const Element& member : *members) {
        const std::string name = prefix + base::ToUtf8(member.name);
        if (member.type == ElementType::kStorage) {
            if (!contents.try_emplace(name + "/").second || prefix.size() > 2000) continue;
            Collect(file, member, name + "/", contents, status);
            continue;
        }
        auto bytes = file.Read(member);
        if (!bytes.ok() && status.ok()) status = bytes.status();
        contents[name] = bytes.value_or({});
    }
}

// ok: everything in the file could be read.
base::Status Walk(std::unique_ptr<ByteSource> source, Contents* contents = nullptr) {
    auto file = CompoundFile::Open(std::move(source));
    if (!file.ok()) return file.status();
    Contents all;
    base::Status status;
    Collect(**file, (*file)->root(), "", all, status);
    if (contents) *contents = std::move(all);
    return status;
}

base::Status Walk(const RawFile& file) {
    return Walk(MakeMemorySource(file.bytes));
}

class CompoundFileTest : public testing::Test {
protected:
    CompoundFileTest()
        : folder_(std::filesystem::temp_directory_path() /
                  ("tavolo-cfb-" + std::to_string(std::random_device{}()))),
          path_(folder_ / "table.vpt") {
        std::filesystem::create_directories(folder_);
    }
    ~CompoundFileTest() override { std::filesystem::remove_all(folder_); }

    RawFile Raw(const VptBuilder& builder) {
        const auto written = builder.Write(path_);
        EXPECT_TRUE(written.ok()) << written.message();
        return RawFile(path_);
    }
    std::unique_ptr<CompoundFile> Build(const VptBuilder& builder) {
        const auto written = builder.Write(path_);
        EXPECT_TRUE(written.ok()) << written.message();
        auto opened = CompoundFile::Open(path_);
        EXPECT_TRUE(opened.ok()) << opened.status().message();
        return opened.ok() ? std::move(*opened) : nullptr;
    }
    void ExpectSameAsOther(const std::filesystem::path& path) {
        const auto theirs = test_support::ReadCompoundFile(path);
        ASSERT_TRUE(theirs) << path;
        Contents ours;
        auto source = OpenFileSource(path);
        ASSERT_TRUE(source.ok());
        const base::Status status = Walk(std::move(*source), &ours);
        EXPECT_TRUE(status.ok()) << path << ": " << status.message();
        EXPECT_TRUE(ours == *theirs)
            << path << ": " << ours.size() << " and " << theirs->size() << " elements";
    }
    // A file with every kind of thing in it, small enough for tests that try every byte.
    static VptBuilder SmallFile() {
        return VptBuilder()
            .Text(u"TableName", u"Attack")
            .Text(u"TableRules", std::u16string(200, u'r'))
            .Bytes(u"Screenshot", FillerBytes(4200))
            .Stream(u"GameStg/Deep/Deeper/Item", BytesOf("item"));
    }
    // The entry of the stream or storage of that name.
    EntryId IdOf(const RawFile& file, std::u16string_view name) {
        const auto wanted = Utf16Bytes(std::u16string(name) + u'\0');
        for (EntryId id = 0;; ++id) {
            const std::size_t at = file.EntryOffset(id);
            if (file.Get<std::uint16_t>(at + entry::kNameLength) == wanted.size() &&
                std::equal(wanted.begin(), wanted.end(),
                           file.bytes.begin() + static_cast<std::ptrdiff_t>(at)))
                return id;
        }
    }

    std::filesystem::path folder_;
    std::filesystem::path path_;
};

std::vector<std::byte> ReadPath(CompoundFile& file,
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

std::vector<std::u16string> NamesIn(CompoundFile& file, const Element& storage) {
    std::vector<std::u16string> names;
    auto members = file.List(storage);
    EXPECT_TRUE(members.ok()) << members.status().message();
    for (const Element& member : members.value_or({}))
        names.push_back(member.name);
    return names;
}

TEST_F(CompoundFileTest, StreamsOfEverySizeComeBackByteForByteInBothVersions) {
    constexpr std::array<std::size_t, 13> sizes = {0,   1,    63,   64,   65,   511,   512,
                                                   513, 4095, 4096, 4097, 8192, 300000};
    for (const unsigned sector_size : {512u, 4096u}) {
        VptBuilder builder;
        builder.SectorSize(sector_size);
        for (const std::size_t size : sizes)
            builder.Bytes(base::ToUtf16(std::to_string(size)), FillerBytes(size));
        auto file = Build(builder);
        ASSERT_TRUE(file);
        for (const std::size_t size : sizes)
            EXPECT_EQ(ReadPath(*file, {u"TableInfo", base::ToUtf16(std::to_string(size))}),
                      FillerBytes(size))
                << size << " bytes, sectors of " << sector_size;
    }
}

TEST_F(CompoundFileTest, AFileWithMoreAllocationSectorsThanTheHeaderHoldsIsReadWhole) {
    // 109 allocation sectors in the header reach 7.1 million bytes.
    VptBuilder builder;
    builder.Text(u"TableName", u"Large")
        .Filler(20'000'000)
        .Stream(u"GameStg/Zlast", FillerBytes(5000, 3));
    auto file = Build(builder);
    ASSERT_TRUE(file);
    EXPECT_EQ(ReadPath(*file, {u"GameStg", u"GameData"}), FillerBytes(20'000'000));
    EXPECT_EQ(ReadPath(*file, {u"GameStg", u"Zlast"}), FillerBytes(5000, 3));
    EXPECT_EQ(ReadPath(*file, {u"TableInfo", u"TableName"}), Utf16Bytes(u"Large"));
}

TEST_F(CompoundFileTest, TheOtherReaderFindsTheSameInAFileOfManyStorages) {
    VptBuilder builder = SmallFile();
    for (int i = 0; i < 300; ++i) {
        const std::u16string name = base::ToUtf16(std::to_string(i));
        builder.Stream(u"GameStg/GameItem" + name,
                       FillerBytes(static_cast<std::size_t>(i) * 37, 5));
        builder.Storage(u"Empty" + name);
    }
    ASSERT_TRUE(builder.Write(path_).ok());
    ExpectSameAsOther(path_);
}

TEST_F(CompoundFileTest, TheOtherReaderFindsTheSameInWholeTableFiles) {
    auto files = test_support::FilesIn(test_support::DataFolder() / "tables", ".vpt");
    EXPECT_EQ(files.size(), 5U);
    if (const auto samples = test_support::SampleFolder()) {
        const auto real = test_support::FilesIn(*samples / "tables", ".vpt");
        EXPECT_GT(real.size(), 3U);
        files.insert(files.end(), real.begin(), real.end());
    }
    for (const auto& file : files)
        ExpectSameAsOther(file);
}

TEST_F(CompoundFileTest, OnlyAFewKilobytesOfALargeFileAreRead) {
    VptBuilder builder;
    builder.Text(u"TableName", u"Large").Text(u"TableBlurb", u"Heavy").Filler(50'000'000);
    ASSERT_TRUE(builder.Write(path_).ok());
    std::uint64_t bytes_read = 0;
    auto source = OpenFileSource(path_);
    ASSERT_TRUE(source.ok());
    auto file =
        CompoundFile::Open(std::make_unique<CountingSource>(std::move(*source), bytes_read));
    ASSERT_TRUE(file.ok());
    EXPECT_EQ(ReadPath(**file, {u"TableInfo", u"TableName"}), Utf16Bytes(u"Large"));
    EXPECT_EQ(ReadPath(**file, {u"TableInfo", u"TableBlurb"}), Utf16Bytes(u"Heavy"));
    EXPECT_LE(bytes_read, 64u * 1024);
}

TEST_F(CompoundFileTest, MembersComeShorterNamesFirstThenByUpperCasedLetters) {
    VptBuilder builder;
    for (const auto* name : {u"bb", u"Zed", u"a", u"abc", u"B", u"AA", u"_x"})
        builder.Bytes(name, BytesOf("x"));
    auto file = Build(builder);
    ASSERT_TRUE(file);
    const auto storage = file->Find(file->root(), u"TableInfo");
    ASSERT_TRUE(storage.ok());
    EXPECT_EQ(NamesIn(*file, *storage),
              (std::vector<std::u16string>{u"a", u"B", u"AA", u"bb", u"_x", u"abc", u"Zed"}));
}

TEST_F(CompoundFileTest, NamesAreFoundWithoutRegardToLetterCase) {
    VptBuilder builder;
    builder.Text(u"\u00E9t\u00E9", u"summer").Text(u"\u0436", u"zhe").Text(u"TableName", u"Attack");
    auto file = Build(builder);
    ASSERT_TRUE(file);
    EXPECT_EQ(ReadPath(*file, {u"tableinfo", u"TABLENAME"}), Utf16Bytes(u"Attack"));
    EXPECT_EQ(ReadPath(*file, {u"TABLEINFO", u"\u00C9T\u00C9"}), Utf16Bytes(u"summer"));
    EXPECT_EQ(ReadPath(*file, {u"TableInfo", u"\u0416"}), Utf16Bytes(u"zhe"));
}

TEST_F(CompoundFileTest, AMissingNameIsNotFound) {
    auto file = Build(SmallFile());
    ASSERT_TRUE(file);
    EXPECT_EQ(file->Find(file->root(), u"TableInf").status().code(), StatusCode::kNotFound);
    EXPECT_EQ(file->Find(file->root(), u"").status().code(), StatusCode::kNotFound);
}

TEST_F(CompoundFileTest, AStreamHasNoMembersAndAStorageNoBytes) {
    auto file = Build(SmallFile());
    ASSERT_TRUE(file);
    const auto storage = file->Find(file->root(), u"TableInfo");
    ASSERT_TRUE(storage.ok());
    const auto stream = file->Find(*storage, u"TableName");
    ASSERT_TRUE(stream.ok());
    EXPECT_EQ(file->List(*stream).status().code(), StatusCode::kInvalidArgument);
    EXPECT_EQ(file->Find(*stream, u"x").status().code(), StatusCode::kInvalidArgument);
    EXPECT_EQ(file->Read(*storage).status().code(), StatusCode::kInvalidArgument);
}

TEST_F(CompoundFileTest, AFileThatEndsInsideItsLastSectorIsReadAsIfZerosFollowed) {
    RawFile file = Raw(VptBuilder().Stream(u"Z", FillerBytes(5000)));
    const auto start = file.Get<SectorNumber>(file.EntryOffset(IdOf(file, u"Z")) + entry::kStart);
    // The stream's last sector becomes the last of the file, and is cut after 10 bytes.
    const SectorNumber moved = static_cast<SectorNumber>(file.bytes.size() / 512) - 1;
    SectorNumber before_last = start;
    while (file.Next(file.Next(before_last)) != kEndOfChain)
        before_last = file.Next(before_last);
    const SectorNumber last = file.Next(before_last);
    file.Set(file.FatEntryOffset(before_last), moved);
    file.Set(file.FatEntryOffset(moved), kEndOfChain);
    const std::vector<std::byte> tail(
        file.bytes.begin() + static_cast<std::ptrdiff_t>(RawFile::SectorOffset(last)),
        file.bytes.begin() + static_cast<std::ptrdiff_t>(RawFile::SectorOffset(last)) + 10);
    file.bytes.insert(file.bytes.end(), tail.begin(), tail.end());
    Contents contents;
    const auto status = Walk(MakeMemorySource(file.bytes), &contents);
    ASSERT_TRUE(status.ok()) << status.message();
    std::vector<std::byte> expected = FillerBytes(5000);
    std::fill(expected.begin() + (5000 - 5000 % 512) + 10, expected.end(), std::byte{0});
    EXPECT_TRUE(contents["Z"] == expected);
}

TEST_F(CompoundFileTest, WhatIsNoCompoundFileIsUnsupported) {
    const auto code_of = [](std::vector<std::byte> bytes) {
        return Walk(MakeMemorySource(std::move(bytes))).code();
    };
    EXPECT_EQ(code_of({}), StatusCode::kUnsupported);
    EXPECT_EQ(code_of(BytesOf("just a text")), StatusCode::kUnsupported);
    EXPECT_EQ(code_of(FillerBytes(100'000)), StatusCode::kUnsupported);
    EXPECT_EQ(code_of(std::vector<std::byte>(4096)), StatusCode::kUnsupported);
}

TEST_F(CompoundFileTest, AMissingFileIsNotFoundAndAFolderIsUnsupported) {
    EXPECT_EQ(CompoundFile::Open(folder_ / "missing.vpt").status().code(), StatusCode::kNotFound);
    EXPECT_EQ(CompoundFile::Open(folder_).status().code(), StatusCode::kUnsupported);
}

TEST_F(CompoundFileTest, AnUnknownVersionIsUnsupportedAndAWrongSectorSizeIsDamage) {
    RawFile file = Raw(SmallFile());
    file.Set<std::uint16_t>(header::kMajorVersion, 5);
    EXPECT_EQ(Walk(file).code(), StatusCode::kUnsupported);
    file.Set<std::uint16_t>(header::kMajorVersion, 3);
    file.Set<std::uint16_t>(header::kSectorShift, 31);
    EXPECT_EQ(Walk(file).code(), StatusCode::kCorruption);
    file.Set<std::uint16_t>(header::kSectorShift, 9);
    file.Set<std::uint16_t>(header::kMiniSectorShift, 0);
    EXPECT_EQ(Walk(file).code(), StatusCode::kCorruption);
    file.Set<std::uint16_t>(header::kMiniSectorShift, 6);
    file.Set<std::uint32_t>(header::kMiniStreamCutoff, 0xFFFFFFFF);
    EXPECT_EQ(Walk(file).code(), StatusCode::kCorruption);
}

TEST_F(CompoundFileTest, ALoopInAStreamsChainIsDamage) {
    RawFile file = Raw(SmallFile());
    const auto start =
        file.Get<SectorNumber>(file.EntryOffset(IdOf(file, u"Screenshot")) + entry::kStart);
    const SectorNumber third = file.Next(file.Next(start));
    file.Set(file.FatEntryOffset(third), start);
    EXPECT_EQ(Walk(file).code(), StatusCode::kCorruption);
    file.Set(file.FatEntryOffset(start), start);
    EXPECT_EQ(Walk(file).code(), StatusCode::kCorruption);
}

TEST_F(CompoundFileTest, ALoopInTheDirectorysChainIsDamage) {
    RawFile file = Raw(SmallFile());
    const auto start = file.Get<SectorNumber>(header::kDirectoryStart);
    file.Set(file.FatEntryOffset(start), start);
    // An entry number beyond every real one makes the reader follow the chain.
    file.Set<EntryId>(file.EntryOffset(0) + entry::kChild, 0x7FFFFFFF);
    EXPECT_EQ(Walk(file).code(), StatusCode::kCorruption);
}

TEST_F(CompoundFileTest, ALoopInTheMiniStreamOrItsTableIsDamageOrHarmless) {
    RawFile file = Raw(SmallFile());
    const auto mini_fat = RawFile::SectorOffset(file.Get<SectorNumber>(header::kMiniFatStart));
    const auto start =
        file.Get<std::uint32_t>(file.EntryOffset(IdOf(file, u"TableRules")) + entry::kStart);
    file.Set(mini_fat + start * 4, start);
    EXPECT_TRUE(Walk(file).ok());  // the stream's size is the bound; its bytes are rubbish
    file.Set<std::uint32_t>(mini_fat + start * 4, 0x00FFFFFF);
    EXPECT_EQ(Walk(file).code(), StatusCode::kCorruption);
}

// The sectors are there, but the root says that the mini stream ends before.
TEST_F(CompoundFileTest, AShortStreamPastTheEndOfTheMiniStreamIsDamage) {
    RawFile file = Raw(SmallFile());
    ASSERT_TRUE(Walk(file).ok());
    file.Set<std::uint32_t>(file.EntryOffset(0) + entry::kStreamSize, 64);
    EXPECT_EQ(Walk(file).code(), StatusCode::kCorruption);
}

TEST_F(CompoundFileTest, ALoopOfTheAllocationTablesOwnChainIsDamage) {
    RawFile file = Raw(VptBuilder().Filler(8'000'000));
    const auto difat = file.Get<SectorNumber>(header::kDifatStart);
    ASSERT_LT(difat, kLastSectorNumber);
    file.Set(RawFile::SectorOffset(difat) + 127 * 4, difat);
    EXPECT_TRUE(Walk(file).ok());  // nothing needs the second round
    file.bytes.resize(file.bytes.size() + 512 * 40'000);
    file.Set<SectorNumber>(file.EntryOffset(IdOf(file, u"GameData")) + entry::kStart, 50'000);
    const base::Status damage = Walk(file);
    EXPECT_EQ(damage.code(), StatusCode::kCorruption);
    EXPECT_NE(damage.message().find("DIFAT"), std::string::npos) << damage.message();
}

TEST_F(CompoundFileTest, ALoopInATreeOfMembersIsDamage) {
    for (const std::size_t link : {entry::kLeft, entry::kRight}) {
        RawFile file = Raw(SmallFile());
        const EntryId id = IdOf(file, u"TableRules");
        file.Set(file.EntryOffset(id) + link, id);
        EXPECT_EQ(Walk(file).code(), StatusCode::kCorruption) << link;
    }
}

// The root's tree has TableInfo in it, and TableInfo's own tree four streams.
std::string TextIn(CompoundFile& file, std::u16string_view name) {
    const auto storage = file.Find(file.root(), u"TableInfo");
    if (!storage.ok()) return storage.status().message();
    const auto stream = file.Find(*storage, name);
    if (!stream.ok()) return stream.status().message();
    const auto bytes = file.Read(*stream);
    return bytes.ok() ? "read " + std::to_string(bytes->size()) : bytes.status().message();
}

TEST_F(CompoundFileTest, ABadSiblingLinkHidesOnlyWhatItLeadsTo) {
    for (const std::size_t link : {entry::kLeft, entry::kRight})
        for (const EntryId target : {EntryId{0x7FFFFFFF}, EntryId{0}, EntryId{0xFFFFFFFE}}) {
            RawFile raw = Raw(SmallFile());
            raw.Set(raw.EntryOffset(IdOf(raw, u"TableInfo")) + link, target);
            auto file = CompoundFile::Open(MakeMemorySource(raw.bytes));
            ASSERT_TRUE(file.ok());
            EXPECT_EQ(TextIn(**file, u"TableName"), "read 12") << link << " " << target;
            EXPECT_EQ((*file)->List((*file)->root()).status().code(), StatusCode::kCorruption);
            EXPECT_FALSE((*file)->ListReadable((*file)->root()).empty());
        }
}

// The entry is the top of its tree, so every other name is found through its links.
TEST_F(CompoundFileTest, AnEntryThatCannotBeUsedHidesItselfOnly) {
    const RawFile whole = Raw(SmallFile());
    const std::size_t top = whole.EntryOffset(
        whole.Get<EntryId>(whole.EntryOffset(IdOf(whole, u"TableInfo")) + entry::kChild));
    struct Damage {
        std::size_t offset;
        std::uint8_t value;
    };
    for (const Damage damage :
         {Damage{entry::kType, 0}, Damage{entry::kType, 3}, Damage{entry::kType, 5},
          Damage{entry::kType, 0xFF}, Damage{entry::kNameLength, 1}}) {
        RawFile raw = whole;
        raw.Set(top + damage.offset, damage.value);
        auto file = CompoundFile::Open(MakeMemorySource(raw.bytes));
        ASSERT_TRUE(file.ok());
        const auto storage = (*file)->Find((*file)->root(), u"TableInfo");
        ASSERT_TRUE(storage.ok());
        EXPECT_EQ((*file)->ListReadable(*storage).size(), 2U) << int{damage.value};
        EXPECT_EQ((*file)->List(*storage).status().code(), StatusCode::kCorruption);
        int read = 0;
        for (const auto* name : {u"TableName", u"TableRules", u"Screenshot"})
            read += TextIn(**file, name).starts_with("read ") ? 1 : 0;
        EXPECT_EQ(read, 2) << int{damage.value};
    }
}

TEST_F(CompoundFileTest, WhatIsMissingFromADamagedStorageIsCalledDamage) {
    RawFile raw = Raw(SmallFile());
    raw.Set<EntryId>(raw.EntryOffset(IdOf(raw, u"TableInfo")) + entry::kChild, 0x7FFFFFFF);
    auto file = CompoundFile::Open(MakeMemorySource(raw.bytes));
    ASSERT_TRUE(file.ok());
    const auto storage = (*file)->Find((*file)->root(), u"TableInfo");
    ASSERT_TRUE(storage.ok());
    EXPECT_EQ((*file)->Find(*storage, u"TableName").status().code(), StatusCode::kCorruption);
    EXPECT_TRUE((*file)->ListReadable(*storage).empty());
}

TEST_F(CompoundFileTest, ABadLinkBehindTheLastSectorIsNotLookedAt) {
    const RawFile whole = Raw(SmallFile());
    const auto screenshot =
        whole.Get<SectorNumber>(whole.EntryOffset(IdOf(whole, u"Screenshot")) + entry::kStart);
    const auto mini_stream = whole.Get<SectorNumber>(whole.EntryOffset(0) + entry::kStart);
    for (const SectorNumber start :
         {screenshot, mini_stream, whole.Get<SectorNumber>(header::kMiniFatStart),
          whole.Get<SectorNumber>(header::kDirectoryStart)}) {
        RawFile raw = whole;
        SectorNumber last = start;
        while (raw.Next(last) != kEndOfChain)
            last = raw.Next(last);
        raw.Set<SectorNumber>(raw.FatEntryOffset(last), 0x00FFFFFF);
        const auto status = Walk(raw);
        EXPECT_TRUE(status.ok()) << start << ": " << status.message();
    }
}

TEST_F(CompoundFileTest, AStreamOfMoreThan256MegabytesIsUnsupported) {
    RawFile raw = Raw(SmallFile());
    const std::size_t size_at = raw.EntryOffset(IdOf(raw, u"Screenshot")) + entry::kStreamSize;
    const std::uint64_t cap = 256ULL * 1024 * 1024;
    const auto code_for = [&](std::uint64_t size) {
        raw.Set(size_at, size);
        std::ofstream(path_, std::ios::binary)
            .write(reinterpret_cast<const char*>(raw.bytes.data()),
                   static_cast<std::streamsize>(raw.bytes.size()));
        std::filesystem::resize_file(path_,
                                     cap + 1'000'000);  // a hole, so that the size is possible
        auto source = OpenFileSource(path_);
        return source.ok() ? Walk(std::move(*source)).code() : source.status().code();
    };
    EXPECT_EQ(code_for(cap + 1), StatusCode::kUnsupported);
    EXPECT_EQ(code_for(cap), StatusCode::kCorruption);  // the size may be; the chain is shorter
    EXPECT_EQ(code_for(4200), StatusCode::kOk);
}

TEST_F(CompoundFileTest, AStorageInsideItselfEndsTheWalk) {
    RawFile file = Raw(SmallFile());
    const EntryId deep = IdOf(file, u"Deep");
    file.Set(file.EntryOffset(IdOf(file, u"Deeper")) + entry::kChild, deep);
    EXPECT_TRUE(Walk(file).ok());  // each storage is listed for itself; the walk of this test goes
                                   // 2000 letters deep
    file.Set<EntryId>(file.EntryOffset(deep) + entry::kChild, 0);
    EXPECT_EQ(Walk(file).code(), StatusCode::kCorruption);
}

TEST_F(CompoundFileTest, AStreamLargerThanItsFileIsDamage) {
    for (const std::uint64_t size : {std::uint64_t{1'000'000}, std::uint64_t{0xFFFFFFFF}}) {
        RawFile file = Raw(SmallFile());
        file.Set(file.EntryOffset(IdOf(file, u"Screenshot")) + entry::kStreamSize, size);
        EXPECT_EQ(Walk(file).code(), StatusCode::kCorruption) << size;
    }
}

TEST_F(CompoundFileTest, AStreamLargerThanItsChainIsDamage) {
    RawFile file = Raw(SmallFile());
    const std::size_t size_at = file.EntryOffset(IdOf(file, u"Screenshot")) + entry::kStreamSize;
    file.Set<std::uint64_t>(size_at, 4200 + 1024);
    EXPECT_EQ(Walk(file).code(), StatusCode::kCorruption);
    const std::size_t short_size_at =
        file.EntryOffset(IdOf(file, u"TableName")) + entry::kStreamSize;
    file.Set<std::uint64_t>(size_at, 4200);
    file.Set<std::uint64_t>(short_size_at, 4000);
    EXPECT_EQ(Walk(file).code(), StatusCode::kCorruption);
}

TEST_F(CompoundFileTest, Version3IgnoresTheUpperHalfOfASize) {
    RawFile file = Raw(SmallFile());
    const std::size_t size_at = file.EntryOffset(IdOf(file, u"Screenshot")) + entry::kStreamSize;
    file.Set<std::uint32_t>(size_at + 4, 0xDEADBEEF);
    EXPECT_TRUE(Walk(file).ok());
}

TEST_F(CompoundFileTest, AnEntryWithAnImpossibleNameIsDamage) {
    for (const std::uint16_t length : {0, 1, 3, 66, 0xFFFF}) {
        RawFile file = Raw(SmallFile());
        file.Set(file.EntryOffset(IdOf(file, u"TableName")) + entry::kNameLength, length);
        EXPECT_EQ(Walk(file).code(), StatusCode::kCorruption) << length;
    }
}

TEST_F(CompoundFileTest, AFailingDiskIsAnIoErrorAtEveryRead) {
    const RawFile file = Raw(SmallFile());
    bool succeeded = false;
    for (int good = 0; good < 100 && !succeeded; ++good) {
        const auto status = Walk(std::make_unique<FailingSource>(file.bytes, good));
        succeeded = status.ok();
        if (!succeeded) {
            EXPECT_EQ(status.code(), StatusCode::kIoError) << good;
        }
    }
    EXPECT_TRUE(succeeded);
}

TEST_F(CompoundFileTest, CutAtEachLengthItGivesAValueOrAStatus) {
    const RawFile file = Raw(SmallFile());
    int readable = 0;
    for (std::size_t length = 0; length < file.bytes.size(); ++length) {
        std::vector<std::byte> cut(file.bytes.begin(),
                                   file.bytes.begin() + static_cast<std::ptrdiff_t>(length));
        const auto status = Walk(MakeMemorySource(std::move(cut)));
        if (status.ok()) ++readable;
        if (length < 512) {
            EXPECT_EQ(status.code(), StatusCode::kUnsupported) << length;
        }
    }
    EXPECT_LT(readable, 1024);  // only what cuts into the last sectors goes unnoticed
}

TEST_F(CompoundFileTest, WithEachByteChangedItGivesAValueOrAStatus) {
    RawFile file = Raw(SmallFile());
    int damaged = 0;
    for (const std::byte change : {std::byte{0xFF}, std::byte{0x01}, std::byte{0x80}})
        for (std::byte& byte : file.bytes) {
            const std::byte before = byte;
            byte ^= change;
            if (!Walk(file).ok()) ++damaged;
            byte = before;
        }
    EXPECT_GT(damaged, 100);
    EXPECT_TRUE(Walk(file).ok());
}

}  // namespace
}  // namespace cfb
