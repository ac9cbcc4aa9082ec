// Shell: hands a file or an address to the desktop's "open" action, and finds desktop tools.
#pragma once

#include "base/status.h"

#include <QtCore/QString>

#include <memory>

namespace platform {

class Shell {
public:
    virtual ~Shell() = default;
    // `target` is one argument of the shell's open call, whatever it holds: it can name nothing
    // else to be started. Fails also when the desktop has nobody who opens such a target; to learn
    // that may take a moment, in which windows repaint and nothing else happens.
    virtual base::Status Open(const QString& target) = 0;
    // Opens the help file at one of its pages ("settings.html"), where the desktop's viewer of such
    // files can be told one; otherwise the file.
    virtual base::Status OpenHelp(const QString& file, const QString& /*page*/) {
        return Open(file);
    }
    // Path of the desktop's system-information tool; empty: there is none.
    virtual QString SystemInformationTool() = 0;
};

std::unique_ptr<Shell> MakeShell();

}  // namespace platform
