// The name and version of this program.
#pragma once

#include <QtCore/QString>

namespace dialogs {

struct Version {
    int major = 0;
    int minor = 0;
    int revision = 0;
};

// "Tavolo".
QString ApplicationTitle();
// As set by the build.
Version ProgramVersion();
// "1.6.0".
QString VersionText(const Version& version);

}  // namespace dialogs
