// The program tavolo-dbcheck as a user or a script calls it.
#include "support/page_workload.h"
#include "support/test_data.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include <sys/wait.h>
#include <unistd.h>

namespace {

struct Answer {
    int status = -1;
    std::string output;
};

Answer Dbcheck(const std::string& arguments) {
    Answer answer;
    FILE* pipe = ::popen((std::string(DBCHECK) + " " + arguments + " 2>&1").c_str(), "r");
    if (pipe == nullptr) return answer;
    std::array<char, 4096> buffer{};
    for (std::size_t size = 0; (size = std::fread(buffer.data(), 1, buffer.size(), pipe)) > 0;)
        answer.output.append(buffer.data(), size);
    const int state = ::pclose(pipe);
    answer.status = WIFEXITED(state) ? WEXITSTATUS(state) : -1;
    return answer;
}

class DbcheckProgramTest : public testing::Test {
protected:
    DbcheckProgramTest() {
        std::string name =
            (std::filesystem::temp_directory_path() / "tavolo-check-XXXXXX").string();
        folder_ = ::mkdtemp(name.data());
    }
    ~DbcheckProgramTest() override { std::filesystem::remove_all(folder_); }

    std::string Write(const std::string& name, const std::vector<std::byte>& bytes) {
        const auto path = folder_ / name;
        std::ofstream(path, std::ios::binary)
            .write(reinterpret_cast<const char*>(bytes.data()),
                   static_cast<std::streamsize>(bytes.size()));
        return "'" + path.string() + "'";
    }

    std::filesystem::path folder_;
};

TEST_F(DbcheckProgramTest, WrongUseIsStatusTwo) {
    EXPECT_EQ(Dbcheck("").status, 2);
    EXPECT_EQ(Dbcheck("--wrong").status, 2);
    EXPECT_EQ(Dbcheck("a.mdb b.mdb").status, 2);
    EXPECT_NE(Dbcheck("").output.find("Usage: tavolo-dbcheck [--json] FILE"), std::string::npos);
    EXPECT_EQ(Dbcheck("--help").status, 0);
}

TEST_F(DbcheckProgramTest, AFileThatCannotBeOpenedIsStatusTwo) {
    const auto missing = Dbcheck("'" + (folder_ / "none.mdb").string() + "'");
    EXPECT_EQ(missing.status, 2);
    EXPECT_NE(missing.output.find("Could not find file"), std::string::npos);
    const auto text = Dbcheck(Write("text.mdb", std::vector<std::byte>(5000, std::byte{'x'})));
    EXPECT_EQ(text.status, 2);
    EXPECT_NE(text.output.find("Unrecognized database format"), std::string::npos);
}

TEST_F(DbcheckProgramTest, FaultsAreStatusOneAsTextAndAsJson) {
    const std::string file = Write("name \"quoted\".mdb", test_support::MakePages(1, 3));
    const auto text = Dbcheck(file);
    EXPECT_EQ(text.status, 1);
    EXPECT_NE(text.output.find("page 0: the place of the map of free pages is wrong\n"),
              std::string::npos)
        << text.output;
    const auto json = Dbcheck("--json " + file);
    EXPECT_EQ(json.status, 1);
    EXPECT_NE(json.output.find("{\"severity\": \"fault\", \"page\": 0, \"table\": \"\", \"text\": "
                               "\"the place of the map of free pages is wrong\"}"),
              std::string::npos)
        << json.output;
    EXPECT_NE(json.output.find("name \\\"quoted\\\".mdb\""), std::string::npos);
}

TEST_F(DbcheckProgramTest, CompactsInPlace) {
    const auto path = folder_ / "a.mdb";
    std::filesystem::copy_file(test_support::DataFolder() / "databases/arcade-jet4.mdb", path);
    std::filesystem::permissions(path, std::filesystem::perms::owner_all);
    const auto answer = Dbcheck("--compact '" + path.string() + "'");
    EXPECT_EQ(answer.status, 0) << answer.output;
    EXPECT_NE(answer.output.find(" pages now, "), std::string::npos) << answer.output;
    EXPECT_EQ(Dbcheck("'" + path.string() + "'").status, 0);
    EXPECT_EQ(Dbcheck("--compact '" + (folder_ / "none.mdb").string() + "'").status, 2);
    EXPECT_EQ(Dbcheck("--compact --json '" + path.string() + "'").status, 2);
}

TEST_F(DbcheckProgramTest, RepairsIntoANewFile) {
    const auto sound = test_support::DataFolder() / "databases/arcade-jet4.mdb";
    const std::string to = "'" + (folder_ / "new.mdb").string() + "'";
    EXPECT_EQ(Dbcheck("--repair '" + sound.string() + "'").status, 2);
    const auto whole = Dbcheck("--repair '" + sound.string() + "' " + to);
    EXPECT_EQ(whole.status, 0) << whole.output;
    EXPECT_EQ(Dbcheck("--repair '" + sound.string() + "' " + to).status, 2);  // it is there
    std::vector<std::byte> bytes(std::filesystem::file_size(sound));
    std::ifstream(sound, std::ios::binary)
        .read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    std::fill_n(bytes.begin(), 16, std::byte{0xEE});
    const std::string damaged = Write("damaged.mdb", bytes);
    const std::string other = "'" + (folder_ / "other.mdb").string() + "'";
    const auto lossy = Dbcheck("--repair " + damaged + " " + other);
    EXPECT_EQ(lossy.status, 1) << lossy.output;
    EXPECT_NE(lossy.output.find("page 0: the first page was damaged"), std::string::npos);
    EXPECT_EQ(Dbcheck(other).status, 0);
}

TEST_F(DbcheckProgramTest, ASoundFileIsStatusZero) {
    const auto answer =
        Dbcheck("'" + (test_support::DataFolder() / "databases/arcade-jet3.mdb").string() + "'");
    EXPECT_EQ(answer.status, 0) << answer.output;
    EXPECT_NE(answer.output.find("0 faults, 0 warnings\n"), std::string::npos) << answer.output;
}

}  // namespace
