#include "support/unreadable.h"

#include "support/windows/system_header.h"

#include <gtest/gtest.h>

#include <utility>

namespace test_support {

Unreadable::Unreadable(std::vector<std::filesystem::path> paths) : paths_(std::move(paths)) {
    constexpr DWORD kSharedWithNobody = 0;
    for (const auto& path : paths_) {
        // The flag is asked for by folders.
        handles_.push_back(CreateFileW(path.c_str(), GENERIC_READ, kSharedWithNobody, nullptr,
                                       OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
        EXPECT_NE(handles_.back(), INVALID_HANDLE_VALUE) << path;
    }
}

Unreadable::~Unreadable() {
    for (void* const handle : handles_)
        CloseHandle(handle);
}

}  // namespace test_support
