// The program tavolo-dbcheck as a user or a script calls it.
#include "base/file_names.h"
#include "support/page_workload.h"
#include "support/programs.h"
#include "support/temporary_folder.h"
#include "support/test_data.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

namespace {

test_support::ProgramRun Dbcheck(std::vector<std::string> words) {
    words.insert(words.begin(), DBCHECK);
    return test_support::RunProgram(words);
}

std::string Escaped(const std::string& name) {
    std::string escaped;
    for (const char c : name)
        escaped += c == '"' || c == '\\' ? std::string("\\") + c : std::string(1, c);
    return escaped;
}

class DbcheckProgramTest : public testing::Test {
protected:
    std::string Write(const std::string& name, const std::vector<std::byte>& bytes) {
        std::ofstream(folder_.path() / name, std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()),
                   static_cast<std::streamsize>(bytes.size()));
        return In(name);
    }
    std::string In(const std::string& name) { return base::Utf8Of(folder_.path() / name); }
    static std::string Data(const std::string& name) {
        return base::Utf8Of(test_support::DataFolder() / "databases" / name);
    }

    test_support::TemporaryFolder folder_;
};

TEST_F(DbcheckProgramTest, WrongUseIsStatusTwo) {
    EXPECT_EQ(Dbcheck({}).status, 2);
    EXPECT_EQ(Dbcheck({"--wrong"}).status, 2);
    EXPECT_EQ(Dbcheck({"a.mdb", "b.mdb"}).status, 2);
    EXPECT_NE(Dbcheck({}).output.find("Usage: tavolo-dbcheck [--json] FILE"), std::string::npos);
    EXPECT_EQ(Dbcheck({"--help"}).status, 0);
}

TEST_F(DbcheckProgramTest, AFileThatCannotBeOpenedIsStatusTwo) {
    const auto missing = Dbcheck({In("none.mdb")});
    EXPECT_EQ(missing.status, 2);
    EXPECT_NE(missing.output.find("Could not find file"), std::string::npos);
    const auto text = Dbcheck({Write("text.mdb", std::vector<std::byte>(5000, std::byte{'x'}))});
    EXPECT_EQ(text.status, 2);
    EXPECT_NE(text.output.find("Unrecognized database format"), std::string::npos);
}

TEST_F(DbcheckProgramTest, FaultsAreStatusOneAsTextAndAsJson) {
    const std::string file = Write(test_support::kHardFileName, test_support::MakePages(1, 3));
    const auto text = Dbcheck({file});
    EXPECT_EQ(text.status, 1);
    EXPECT_NE(text.output.find("page 0: the place of the map of free pages is wrong\n"),
              std::string::npos)
        << text.output;
    const auto json = Dbcheck({"--json", file});
    EXPECT_EQ(json.status, 1);
    EXPECT_NE(json.output.find("{\"severity\": \"fault\", \"page\": 0, \"table\": \"\", \"text\": "
                               "\"the place of the map of free pages is wrong\"}"),
              std::string::npos)
        << json.output;
    EXPECT_NE(json.output.find("{\"file\": \"" + Escaped(file) + "\""), std::string::npos)
        << json.output;
}

TEST_F(DbcheckProgramTest, CompactsInPlace) {
    const std::string path = In("a.mdb");
    std::filesystem::copy_file(Data("arcade-jet4.mdb"), path);
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
    const auto answer = Dbcheck({"--compact", path});
    EXPECT_EQ(answer.status, 0) << answer.output;
    EXPECT_NE(answer.output.find(" pages now, "), std::string::npos) << answer.output;
    EXPECT_EQ(Dbcheck({path}).status, 0);
    EXPECT_EQ(Dbcheck({"--compact", In("none.mdb")}).status, 2);
    EXPECT_EQ(Dbcheck({"--compact", "--json", path}).status, 2);
}

TEST_F(DbcheckProgramTest, RepairsIntoANewFile) {
    const std::string sound = Data("arcade-jet4.mdb");
    const std::string to = In("new.mdb");
    EXPECT_EQ(Dbcheck({"--repair", sound}).status, 2);
    const auto whole = Dbcheck({"--repair", sound, to});
    EXPECT_EQ(whole.status, 0) << whole.output;
    EXPECT_EQ(Dbcheck({"--repair", sound, to}).status, 2);  // it is there
    std::vector<std::byte> bytes(std::filesystem::file_size(sound));
    std::ifstream(sound, std::ios::binary)
        .read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    std::fill_n(bytes.begin(), 16, std::byte{0xEE});
    const std::string damaged = Write("damaged.mdb", bytes);
    const std::string other = In("other.mdb");
    const auto lossy = Dbcheck({"--repair", damaged, other});
    EXPECT_EQ(lossy.status, 1) << lossy.output;
    EXPECT_NE(lossy.output.find("page 0: the first page was damaged"), std::string::npos);
    EXPECT_EQ(Dbcheck({other}).status, 0);
}

TEST_F(DbcheckProgramTest, ASoundFileIsStatusZero) {
    const auto answer = Dbcheck({Data("arcade-jet3.mdb")});
    EXPECT_EQ(answer.status, 0) << answer.output;
    EXPECT_NE(answer.output.find("0 faults, 0 warnings\n"), std::string::npos) << answer.output;
}

}  // namespace
