// Shell: opens files and addresses with the desktop's programs for them, and finds desktop tools.
#pragma once

#include "base/status.h"

#include <QtCore/QString>

#include <memory>

namespace platform {

class Shell {
public:
    virtual ~Shell() = default;
    // Opens a file or an address. `target` is passed as a single argument and never interpreted by
    // a command shell. kNotFound: the desktop has no program for it. To find that out may take two
    // seconds, in which window events are processed.
    virtual base::Status Open(const QString& target) = 0;
    // Opens a help file at one of its pages ("settings.html") when the desktop's viewer supports
    // that, otherwise at its first page.
    virtual base::Status OpenHelp(const QString& file, const QString& /*page*/) {
        return Open(file);
    }
    // Whether the desktop has a viewer for help files. May take a second.
    virtual bool HasHelpViewer() { return true; }
    // Path of the desktop's system-information tool; empty when none is installed.
    virtual QString SystemInformationTool() = 0;
};

std::unique_ptr<Shell> MakeShell();

}  // namespace platform
