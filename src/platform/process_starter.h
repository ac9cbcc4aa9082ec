// ProcessStarter: starts another program and does not wait for it.
#pragma once

#include "base/status.h"

#include <QtCore/QString>

#include <cstdint>
#include <memory>

namespace platform {

class ProcessStarter {
public:
    virtual ~ProcessStarter() = default;
    // Starts a program in the current directory and returns its process id. `command_line`: the
    // quoted executable and its arguments, see command_line.h. The program starts minimised with
    // the focus where the system has such a start; X11 and Wine have not. A Windows executable is
    // run by Wine on other systems; paths among its arguments are converted to Wine's.
    // kNotFound with the number kPathNotFound: no such folder; with kFileNotFound: no such
    // executable; kPermissionDenied: not executable.
    virtual base::Result<std::int64_t> Start(const QString& command_line) = 0;
    // Starts a program without arguments, in a normal window; errors as of Start.
    virtual base::Result<std::int64_t> StartTool(const QString& program) = 0;
    // Whether a program that was started is still there. Where that is not known, it is.
    virtual bool IsRunning(std::int64_t /*process_id*/) { return true; }
};

std::unique_ptr<ProcessStarter> MakeProcessStarter();

}  // namespace platform
