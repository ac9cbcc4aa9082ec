// Unreadable: as long as it lives this process cannot read some files, nor list some folders: on
// Linux it is another user meanwhile, on Windows another handle has them to itself. One at a time.
// One backend for each system, in linux/ and windows/.
#pragma once

#include <filesystem>
#include <vector>

namespace test_support {

class [[nodiscard]] Unreadable {
public:
    // Of the temporary folder of this system.
    explicit Unreadable(std::vector<std::filesystem::path> paths);
    ~Unreadable();
    Unreadable(const Unreadable&) = delete;
    Unreadable& operator=(const Unreadable&) = delete;

private:
    std::vector<std::filesystem::path> paths_;
    std::vector<void*> handles_;  // Windows'
};

}  // namespace test_support
