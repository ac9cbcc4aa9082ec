// The exit statuses of tavolo-cli; its manual page names them.
#pragma once

namespace cli {

enum ExitStatus : int {
    kDone = 0,
    kFailed = 1,       // also: nothing found, faults found, rows that cannot be imported
    kWrongUsage = 2,   // nothing was done
    kInUse = 3,        // another program has the catalogue; nothing was done
    kPipeClosed = 141  // nobody reads the results any more; what a shell says of such a program
};

}  // namespace cli
