// The files that tests read: those of tests/data, and real ones where the environment variable
// TAVOLO_SHARED names a folder that has some.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace test_support {

// tests/data of the source tree.
inline std::filesystem::path DataFolder() {
    return TAVOLO_TEST_DATA;
}

// The folder of real files; nullopt: TAVOLO_SHARED is not set, or empty. A variable that names no
// such folder is a mistake, which fails the test.
inline std::optional<std::filesystem::path> SampleFolder() {
    const char* shared = std::getenv("TAVOLO_SHARED");
    if (shared == nullptr || *shared == '\0') return std::nullopt;
    std::filesystem::path folder = std::filesystem::path(shared) / "samples";
    EXPECT_TRUE(std::filesystem::is_directory(folder)) << folder;
    return folder;
}

// The files of a folder with this extension, sorted.
inline std::vector<std::filesystem::path> FilesIn(const std::filesystem::path& folder,
                                                  const std::string& extension) {
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        if (entry.path().extension() == extension) files.push_back(entry.path());
    std::ranges::sort(files);
    return files;
}

// `ours`, paths below tests/data, and behind them `real`, paths below the folder of real files, if
// there is one. For the parameters of tests.
inline std::vector<std::filesystem::path> OurFilesAndReal(const std::vector<std::string>& ours,
                                                          const std::vector<std::string>& real) {
    std::vector<std::filesystem::path> files;
    for (const std::string& name : ours)
        files.push_back(DataFolder() / name);
    if (const auto samples = SampleFolder())
        for (const std::string& name : real)
            files.push_back(*samples / name);
    return files;
}

// Catalogues as older installations have them, with twelve columns and with nineteen.
inline std::vector<std::filesystem::path> OldCatalogues() {
    return OurFilesAndReal({"databases/catalogue-jet3.mdb", "databases/catalogue-jet4.mdb"},
                           {"catalogue/old-base-250.mdb", "catalogue/old-full-1000.mdb"});
}

// For the names of such tests: the file's name, letters and digits only.
inline std::string LettersOf(const std::filesystem::path& file) {
    std::string name = file.stem().string();
    std::erase_if(name, [](unsigned char c) { return std::isalnum(c) == 0; });
    return name;
}
inline std::string NameOfFile(const testing::TestParamInfo<std::filesystem::path>& file) {
    return LettersOf(file.param);
}

}  // namespace test_support
