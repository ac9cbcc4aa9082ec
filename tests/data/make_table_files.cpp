#include "data/invented.h"
#include "data/make_test_data.h"
#include "support/vpt_builder.h"

#include <fstream>

namespace test_data {
namespace {

using test_support::VptBuilder;

// The first byte of the fuzzer's seed is a choice of its own; the picture follows.
std::vector<std::byte> Picture() {
    std::ifstream file(TEST_PICTURE, std::ios::binary);
    file.seekg(1);
    const std::string bytes{std::istreambuf_iterator<char>(file), {}};
    return test_support::BytesOf(bytes);
}

// What the simulator keeps of the game itself.
void AddGame(VptBuilder& builder, std::uint32_t seed, std::size_t items) {
    Invented invented(seed);
    builder.Filler(6000, seed);
    for (std::size_t i = 0; i < items; ++i)
        builder.Stream(u"GameStg/GameItem" + Digits(i), invented.Bytes(20 + 37 * i));
}

// All ten standard streams, a picture, and three that the author has added.
VptBuilder WholeInformation() {
    Invented invented(21);
    VptBuilder builder;
    AddGame(builder, 21, 12);
    builder.Text(u"TableName", u"Otto's Windmill")
        .Text(u"AuthorName", u"Zoë Brückner")
        .Text(u"TableVersion", u"2.0")
        .Text(u"ReleaseDate", u"May 4, 2004")
        .Text(u"AuthorEmail", u"zoe@example.org")
        .Text(u"AuthorWebSite", u"http://www.example.org/windmill")
        .Text(u"TableBlurb", u"Four sails, two balls.")
        .Text(u"TableDescription", invented.Prose(900))
        .Text(u"TableRules", invented.Prose(5000))
        .Screenshot(Picture())
        .Text(u"Designer", u"Ada Marlow")
        .Text(u"CompanyName", u"Kugelwerk")
        .Text(u"CompanyYear", u"1979");
    return builder;
}

// Four standard streams and two of another program.
VptBuilder SomeInformation() {
    VptBuilder builder;
    AddGame(builder, 22, 20);
    builder.Text(u"TableName", u"Quiet Harbour")
        .Text(u"TableVersion", u"1.2")
        .Text(u"AuthorWebSite", u"http://www.example.org")
        .Text(u"TableDescription", u"A harbour at night.")
        .Text(u"TableSaveRev", u"37")
        .Text(u"TableSaveDate", u"Sat Mar 06 20:15:01 2010");
    return builder;
}

}  // namespace

base::Status MakeTableFiles(const std::filesystem::path& folder) {
    VptBuilder empty;
    AddGame(empty, 23, 4);
    empty.WithTableInfo();
    VptBuilder none;
    AddGame(none, 24, 4);
    // Deep storages of another kind, in sectors of 4096 bytes.
    VptBuilder deep;
    deep.SectorSize(4096);
    deep.Stream(u"GameStg/Collection/Sounds/Bumper/wave", Invented(25).Bytes(3000));
    deep.Stream(u"GameStg/Collection/Sounds/Slingshot/wave", Invented(26).Bytes(70));
    deep.Storage(u"GameStg/Collection/Empty");
    RETURN_IF_ERROR(WholeInformation().Write(folder / "Whole Information.vpt"));
    RETURN_IF_ERROR(SomeInformation().Write(folder / "some-information.vpt"));
    RETURN_IF_ERROR(empty.Write(folder / "empty-information.vpt"));
    RETURN_IF_ERROR(none.Write(folder / "no-information.vpt"));
    return deep.Write(folder / "Deep Storages (2000).vpt");
}

}  // namespace test_data
