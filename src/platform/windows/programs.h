// Starting other programs; knows no Qt.
#pragma once

#include "platform/windows/owned_handle.h"

#include <cstdint>
#include <map>
#include <string>

namespace platform {

enum class ShownAs : std::uint8_t { kNormal, kMinimised };

class Programs {
public:
    struct Started {
        DWORD error = ERROR_SUCCESS;  // the system's number of the failure
        DWORD process_id = 0;
    };

    // Starts `program` in the current folder with this very command line, which it sees as it
    // stands, and does not wait for it. Its first window has the focus. Nothing of ours is
    // inherited.
    Started Start(const std::wstring& program, std::wstring command_line, ShownAs shown_as);
    // Whether a program is still there.
    bool IsRunning(DWORD process_id) const;

private:
    // Of the programs that were started here and were running when the last one was: as long as
    // one of these is open, no other process has its number.
    std::map<DWORD, OwnedHandle> running_;
};

}  // namespace platform
