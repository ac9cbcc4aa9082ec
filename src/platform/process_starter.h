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
    // `command_line` is a quoted executable followed by its arguments, written as for Windows:
    // blanks part arguments, double quotes keep them together. The program starts in the current
    // directory, minimised with the focus where the system knows such a start (X11 and Wine do not:
    // there it shows itself as it likes). The result is its process id. A Windows executable runs
    // through Wine on other systems, and the native paths among its arguments are given to it in
    // the form that it can open. kNotFound with the number kPathNotFound: no such folder; with
    // kFileNotFound: no such executable; kPermissionDenied: not executable.
    virtual base::Result<std::int64_t> Start(const QString& command_line) = 0;
    // A tool in a normal window.
    virtual base::Result<std::int64_t> StartTool(const QString& program) = 0;
};

std::unique_ptr<ProcessStarter> MakeProcessStarter();

}  // namespace platform
