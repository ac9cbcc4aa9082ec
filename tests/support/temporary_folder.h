// TemporaryFolder: a new folder, removed with everything in it at the end.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <random>
#include <string>
#include <system_error>

namespace test_support {

class TemporaryFolder {
public:
    enum class On {
        kDisk,
        kMemory,  // where the system has files in memory: for tests that sync many thousand times
    };

    explicit TemporaryFolder(On on = On::kDisk) {
        const std::filesystem::path memory = "/dev/shm";
        std::error_code unknown;
        const bool in_memory = on == On::kMemory && std::filesystem::is_directory(memory, unknown);
        const auto place = in_memory ? memory : std::filesystem::temp_directory_path();
        std::random_device random;
        for (bool is_made = false; !is_made; is_made = std::filesystem::create_directory(path_))
            path_ = place / ("tavolo-test-" + std::to_string(random()));
    }
    ~TemporaryFolder() {
        std::error_code failed;
        std::filesystem::remove_all(path_, failed);
        EXPECT_FALSE(failed) << failed.message();
    }
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    const std::filesystem::path& path() const { return path_; }

private:
    std::filesystem::path path_;
};

}  // namespace test_support
