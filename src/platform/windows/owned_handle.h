// A handle of the system, closed with its owner.
#pragma once

#include "platform/windows/windows_header.h"

#include <utility>

namespace platform {

// What others may do with a file while it is open: all that they may do on other systems too.
inline constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

class OwnedHandle {
public:
    OwnedHandle() = default;
    // Takes what CreateFileW and its like give; INVALID_HANDLE_VALUE and null own nothing.
    explicit OwnedHandle(HANDLE handle) : handle_(handle) {}
    ~OwnedHandle() {
        if (is_open()) CloseHandle(handle_);
    }
    OwnedHandle(OwnedHandle&& other) noexcept : handle_(std::exchange(other.handle_, nullptr)) {}
    OwnedHandle& operator=(OwnedHandle&& other) noexcept {
        std::swap(handle_, other.handle_);
        return *this;
    }

    bool is_open() const { return handle_ != nullptr && handle_ != INVALID_HANDLE_VALUE; }
    HANDLE get() const { return handle_; }

private:
    HANDLE handle_ = nullptr;
};

}  // namespace platform
