// The checker finds nothing in whole files, and each kind of damage that is planted in them.
#include "jet/check/check.h"

#include "base/byte_reader.h"
#include "base/byte_writer.h"
#include "support/check_database.h"
#include "support/test_data.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <functional>
#include <random>

namespace {

using Bytes = std::vector<std::byte>;

using test_support::DataFolder;
using test_support::FilesIn;
using test_support::OurFilesAndReal;
using test_support::SampleFolder;

constexpr const char* kOurs = "databases/arcade-jet4.mdb";

Bytes ReadFile(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    const std::string text{std::istreambuf_iterator<char>(file), {}};
    const auto* data = reinterpret_cast<const std::byte*>(text.data());
    return {data, data + text.size()};
}

jet::CheckReport Check(const Bytes& file, jet::CheckOptions options = {}) {
    const std::uint32_t page_size = file[0x14] == std::byte{0} ? 2048 : 4096;
    const auto store = jet::MakeMemoryPageStore(page_size, file);
    return jet::CheckIntegrity(*store, options);
}

TEST(CheckTest, FindsNoFaultInAnyWholeFile) {
    auto files = FilesIn(DataFolder() / "databases", ".mdb");
    EXPECT_EQ(files.size(), 5U);
    if (const auto samples = SampleFolder())
        for (const char* folder : {"mdb", "catalogue"}) {
            const auto real = FilesIn(*samples / folder, ".mdb");
            EXPECT_GE(real.size(), 2U);
            files.insert(files.end(), real.begin(), real.end());
        }
    for (const auto& file : files)
        EXPECT_TRUE(test_support::DatabaseIsSound(file)) << file;
}

// What was read and let go is read again, and nothing is found that is not there.
TEST(CheckTest, HoldsFewPages) {
    for (const auto& path : FilesIn(DataFolder() / "databases", ".mdb")) {
        const Bytes file = ReadFile(path);
        const std::uint32_t page_size = file[0x14] == std::byte{0} ? 2048 : 4096;
        const auto store = jet::MakeReadOnlyPageStore(jet::PagesOf(file, page_size), 0);
        const jet::CheckReport few = jet::CheckIntegrity(*store);
        const jet::CheckReport all = Check(file);
        EXPECT_TRUE(few.sound()) << path;
        EXPECT_EQ(few.warnings, all.warnings) << path;
        EXPECT_EQ(few.rows, all.rows) << path;
        EXPECT_EQ(few.long_values, all.long_values) << path;
        EXPECT_EQ(few.index_entries, all.index_entries) << path;
    }
}

// Our own files, and those of the engine that made the format; the old catalogues among the real
// ones are by one that keeps no levels.
TEST(CheckTest, WholeFilesHaveExactNodeKeysAndLevels) {
    auto files = FilesIn(DataFolder() / "databases", ".mdb");
    if (const auto samples = SampleFolder()) {
        const auto real = FilesIn(*samples / "mdb", ".mdb");
        files.insert(files.end(), real.begin(), real.end());
    }
    for (const auto& file : files)
        EXPECT_TRUE(test_support::DatabaseIsSound(file, test_support::kOwnFile)) << file;
}

TEST(CheckTest, LooksAtEverythingThereIs) {
    const auto report = Check(ReadFile(DataFolder() / "databases/arcade-jet3.mdb"));
    EXPECT_EQ(report.pages, 70u);
    EXPECT_EQ(report.warnings, 0u);
    EXPECT_EQ(report.tables, 9u);
    EXPECT_EQ(report.rows, 95u);
    EXPECT_EQ(report.index_entries, 298u);
    EXPECT_EQ(report.long_values, 34u);
    const auto samples = SampleFolder();
    if (!samples) return;
    const auto real = Check(ReadFile(*samples / "mdb/a97-orders.mdb"));
    EXPECT_EQ(real.pages, 1466u);
    EXPECT_EQ(real.warnings, 0u);
    EXPECT_EQ(real.tables, 19u);
    EXPECT_GT(real.rows, 5000u);
    EXPECT_GT(real.index_entries, 20000u);
    EXPECT_GT(real.long_values, 400u);
}

TEST(CheckTest, HelperNamesTheFault) {
    auto file = ReadFile(DataFolder() / kOurs);
    file[0xE02] = std::byte{0};
    file[0xE03] = std::byte{0};
    const auto store = jet::MakeMemoryPageStore(4096, file);
    const auto result = test_support::PagesAreSound(*store);
    EXPECT_FALSE(result);
    EXPECT_NE(std::string(result.message()).find("page 0: commit word 1"), std::string::npos)
        << result.message();
}

// ------------------------------------------------------------------------- planted damage

// A Jet 4 file whose pages a test damages.
class Victim {
public:
    explicit Victim(const std::filesystem::path& file) : bytes_(ReadFile(file)) {}

    const Bytes& bytes() const { return bytes_; }
    std::byte* at(std::size_t page, std::size_t offset) {
        return bytes_.data() + page * 4096 + offset;
    }
    std::uint16_t U16(std::size_t page, std::size_t offset) {
        return base::LoadLittle<std::uint16_t>(at(page, offset));
    }
    std::uint32_t U32(std::size_t page, std::size_t offset) {
        return base::LoadLittle<std::uint32_t>(at(page, offset));
    }
    void Set16(std::size_t page, std::size_t offset, std::size_t value) {
        base::StoreLittle(at(page, offset), static_cast<std::uint16_t>(value));
    }
    void Set32(std::size_t page, std::size_t offset, std::size_t value) {
        base::StoreLittle(at(page, offset), static_cast<std::uint32_t>(value));
    }

    // Of an index page: where its first entry ends.
    std::size_t FirstEntryEnd(std::size_t page) {
        std::size_t bit = 0;
        while ((std::to_integer<unsigned>(*at(page, 27 + bit / 8)) >> (bit % 8) & 1U) == 0)
            ++bit;
        return 0x1E0 + bit;
    }
    bool IsFree(std::size_t page) {
        const std::size_t row = U16(1, 14) & 0x1FFF;  // the first map on page 1, inline
        return (std::to_integer<unsigned>(*at(1, row + 5 + page / 8)) >> (page % 8) & 1U) != 0;
    }
    // The first page in use for which `wanted` holds; a test fails when there is none.
    std::size_t Find(const std::function<bool(std::size_t)>& wanted) {
        for (std::size_t page = 2; page < bytes_.size() / 4096; ++page)
            if (!IsFree(page) && wanted(page)) return page;
        ADD_FAILURE() << "the file has no such page";
        return 0;
    }
    std::size_t FindType(unsigned type) {
        return Find([&](std::size_t page) { return *at(page, 0) == static_cast<std::byte>(type); });
    }
    // A data page of a user table with at least `rows` rows, none of them deleted or moved at
    // first.
    std::size_t FindData(std::size_t rows) {
        return Find([&](std::size_t page) {
            const bool is_data = *at(page, 0) == std::byte{1} && U32(page, 4) > 5 &&
                                 U32(page, 4) < 0x10000 && U16(page, 12) >= rows;
            for (std::size_t i = 0; is_data && i < rows; ++i)
                if ((U16(page, 14 + 2 * i) & 0xC000) != 0) return false;
            return is_data;
        });
    }

private:
    Bytes bytes_;
};

struct Damage {
    const char* name;
    const char* real;  // below the folder of real files
    std::function<std::size_t(Victim&)>
        plant;         // answers the page where it must be reported; 0: any
    const char* text;  // part of the finding
    bool is_warning = false;
};

constexpr const char* kIndexed = "mdb/a2000-composite-index.mdb";
constexpr const char* kMoved = "mdb/a2003-relations.mdb";
constexpr const char* kLongValues = "mdb/a2000-wide-table.mdb";

const Damage kDamages[] = {
    {"freeSpaceOfADataPage", kIndexed,
     [](Victim& v) {
         const auto page = v.FindData(2);
         v.Set16(page, 2, v.U16(page, 2) + 1U);
         return page;
     },
     "bytes are free"},
    {"rowsThatOverlap", kIndexed,
     [](Victim& v) {
         const auto page = v.FindData(2);
         v.Set16(page, 16, v.U16(page, 14) + 8U);
         return page;
     },
     "the row's place is wrong"},
    {"ownerOfADataPage", kIndexed,
     [](Victim& v) {
         const auto page = v.FindData(1);
         v.Set32(page, 4, v.U32(page, 4) + 1);
         return page;
     },
     "is in the table's map, but says that it belongs to"},
    {"rowThatVanished", kIndexed,
     [](Victim& v) {
         const auto page = v.FindData(2);
         v.Set16(page, 14, v.U16(page, 14) | 0xC000U);
         return page;
     },
     "has an entry for a row that is not there"},
    {"rowWithTooManyColumns", kIndexed,
     [](Victim& v) {
         const auto page = v.FindData(1);
         v.Set16(page, v.U16(page, 14) & 0x1FFFU, 250);
         return page;
     },
     "the row has more columns than the table"},
    {"keyOfALeaf", kIndexed,
     [](Victim& v) {
         const auto page = v.FindType(4);
         *v.at(page, 0x1E0 + 2) ^= std::byte{0x20};
         return std::size_t{0};
     },
     "the key is"},
    {"freeSpaceOfALeaf", kIndexed,
     [](Victim& v) {
         const auto page = v.FindType(4);
         v.Set16(page, 2, v.U16(page, 2) - 1U);
         return page;
     },
     "bytes are free"},
    {"linkBetweenLeaves", kIndexed,
     [](Victim& v) {
         const auto page = v.Find(
             [&](std::size_t p) { return *v.at(p, 0) == std::byte{4} && v.U32(p, 16) != 0; });
         v.Set32(page, 16, 0);
         return page;
     },
     "the links between the leaves are wrong"},
    {"levelOfALeaf", kIndexed,
     [](Victim& v) {
         const auto page = v.FindType(4);
         *v.at(page, 26) = std::byte{1};
         return page;
     },
     "a page that says level 1, but is of level 0", true},
    {"levelOfANode", kIndexed,
     [](Victim& v) {
         const auto page = v.FindType(3);
         *v.at(page, 26) = std::byte{0};
         return page;
     },
     "a page that says level 0, but is of level 1", true},
    {"keyOfANodeThatIsLarger", kIndexed,
     [](Victim& v) {
         const auto page = v.FindType(3);
         *v.at(page, v.FirstEntryEnd(page) - 5) = std::byte{0xFE};  // the slot, before the child
         return page;
     },
     "an entry of a node is larger than the last one below it", true},
    {"keyOfANodeThatIsSmaller", kIndexed,
     [](Victim& v) {
         const auto page = v.FindType(3);
         *v.at(page, 0x1E0) = std::byte{0};
         return page;
     },
     "an entry of a node is less than what is below it"},
    {"keyOfANodeThatReachesIntoTheNextChild", kIndexed,
     [](Victim& v) {
         const auto page = v.FindType(3);
         *v.at(page, 0x1E0) = std::byte{0xFF};
         return std::size_t{0};
     },
     "an entry that the node above has before this leaf"},
    {"nodeWithoutATail", kIndexed,
     [](Victim& v) {
         const auto page = v.FindType(3);
         v.Set32(page, 20, 0);
         return page;
     },
     "a node without a tail"},
    {"nodeThatPointsBackToItself", kIndexed,
     [](Victim& v) {
         const auto page = v.FindType(3);
         v.Set32(page, 20, page);
         return page;
     },
     "uses it, but so does"},
    {"tableOfAnIndexPage", kIndexed,
     [](Victim& v) {
         const auto page = v.FindType(4);
         v.Set32(page, 4, 77);
         return page;
     },
     "but does not say so"},
    {"lengthOfADefinition", kIndexed,
     [](Victim& v) {
         v.Set32(3, 8, v.U32(3, 8) - 2);
         return std::size_t{3};
     },
     "definition"},
    {"freeSpaceOfADefinition", kIndexed,
     [](Victim& v) {
         v.Set16(3, 2, v.U16(3, 2) + 4U);
         return std::size_t{3};
     },
     "bytes are free"},
    {"definitionChainThatTurnsBack", kIndexed,
     [](Victim& v) {
         v.Set32(3, 4, 3);
         return std::size_t{3};
     },
     "uses it, but so does"},
    {"rowCount", kIndexed,
     [](Victim& v) {
         v.Set32(3, 16, v.U32(3, 16) + 1);
         return std::size_t{3};
     },
     "rows, but it has", true},
    {"usedPageMarkedFree", kIndexed,
     [](Victim& v) {
         const auto page = v.FindData(1);
         *v.at(1, (v.U16(1, 14) & 0x1FFFU) + 5 + page / 8) |=
             static_cast<std::byte>(1U << page % 8);
         return page;
     },
     "is in use, but the global map has it as free"},
    {"freePageMarkedUsed", kLongValues,
     [](Victim& v) {
         std::size_t page = 2;
         while (!v.IsFree(page))
             ++page;
         EXPECT_LT(page, v.bytes().size() / 4096);
         *v.at(1, (v.U16(1, 14) & 0x1FFFU) + 5 + page / 8) &=
             ~static_cast<std::byte>(1U << page % 8);
         return page;
     },
     "is not free, but nothing uses it", true},
    {"moveThatLeadsElsewhere", kMoved,
     [](Victim& v) {
         std::size_t slot = 0;
         const auto page = v.Find([&](std::size_t p) {
             if (*v.at(p, 0) != std::byte{1} || v.U32(p, 4) > 0x10000) return false;
             for (slot = 0; slot < v.U16(p, 12); ++slot)
                 if ((v.U16(p, 14 + 2 * slot) & 0xC000) == 0x4000) return true;
             return false;
         });
         *v.at(page, v.U16(page, 14 + 2 * slot) & 0x1FFFU) ^= std::byte{0x55};
         return page;
     },
     "says that the row went"},
    {"longValueThatVanished", kLongValues,
     [](Victim& v) {
         const auto page = v.Find([&](std::size_t p) {
             return *v.at(p, 0) == std::byte{1} && v.U32(p, 4) == 0x4C41564C && v.U16(p, 12) > 0 &&
                    (v.U16(p, 14) & 0xC000) == 0;
         });
         v.Set16(page, 14, v.U16(page, 14) | 0xC000U);
         return std::size_t{0};
     },
     "where no long value is"},
    {"commitWord", kIndexed,
     [](Victim& v) {
         v.Set16(0, 0xE00 + 2 * 17, 1);
         return std::size_t{0};
     },
     "commit word 17"},
};

// In a file of our own, and in a real one that has what the damage needs.
struct PlantedDamage {
    const Damage* damage;
    std::filesystem::path file;
    std::string name;
};

void PrintTo(const PlantedDamage& planted, std::ostream* out) {
    *out << planted.name;
}

std::vector<PlantedDamage> PlantedDamages() {
    std::vector<PlantedDamage> all;
    const auto samples = SampleFolder();
    for (const Damage& damage : kDamages) {
        all.push_back({&damage, DataFolder() / kOurs, damage.name});
        if (samples)
            all.push_back(
                {&damage, *samples / damage.real, damage.name + std::string("InARealFile")});
    }
    return all;
}

class PlantedDamageTest : public testing::TestWithParam<PlantedDamage> {};

TEST_P(PlantedDamageTest, IsReportedWhereItIs) {
    const Damage& damage = *GetParam().damage;
    Victim victim(GetParam().file);
    const std::size_t page = damage.plant(victim);
    const auto report = Check(victim.bytes());
    EXPECT_EQ(report.sound(), damage.is_warning);
    std::string all;
    bool is_found = false;
    for (const jet::Finding& finding : report.findings) {
        all += jet::Describe(finding) + "\n";
        is_found = is_found || (finding.text.find(damage.text) != std::string::npos &&
                                (page == 0 || finding.page == page));
    }
    EXPECT_TRUE(is_found) << "page " << page << "\n" << all;
}

INSTANTIATE_TEST_SUITE_P(Kinds, PlantedDamageTest, testing::ValuesIn(PlantedDamages()),
                         [](const auto& planted) { return planted.param.name; });

TEST(CheckTest, AnyByteMayBeWrong) {
    std::mt19937 random(3);
    for (const auto& path :
         OurFilesAndReal({"databases/arcade-jet3.mdb", kOurs, "databases/catalogue-jet4.mdb"},
                         {"mdb/a97-tables.mdb", kMoved, kLongValues})) {
        const Bytes whole = ReadFile(path);
        std::size_t noticed = 0;
        for (int i = 0; i < 400; ++i) {
            Bytes file = whole;
            for (int flips = 0; flips <= i % 8; ++flips)
                file[0x18 + random() % (file.size() - 0x18)] = static_cast<std::byte>(random());
            noticed += Check(file).sound() ? 0 : 1;
        }
        EXPECT_GT(noticed, 20u) << path;
    }
}

TEST(CheckTest, AFileCutAtAnyPageIsReported) {
    for (const auto& path : OurFilesAndReal({kOurs}, {kMoved})) {
        const Bytes whole = ReadFile(path);
        for (std::size_t pages = 1; pages + 8 < whole.size() / 4096; ++pages) {
            Bytes file = whole;
            file.resize(pages * 4096);
            EXPECT_FALSE(Check(file).sound()) << path << pages << " pages";
        }
    }
}

}  // namespace
