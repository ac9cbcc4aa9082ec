// Shell: hands a file or an address to the desktop's "open" action, and finds desktop tools.
#pragma once

#include "base/status.h"

#include <QtCore/QString>

#include <memory>

namespace platform {

class Shell {
public:
    virtual ~Shell() = default;
    // `target` is one argument of the shell's open call, whatever it holds: it can name nothing else to be started.
    virtual base::Status Open(const QString& target) = 0;
    // Path of the desktop's system-information tool; empty: there is none.
    virtual QString SystemInformationTool() = 0;
};

std::unique_ptr<Shell> MakeShell();

}  // namespace platform
