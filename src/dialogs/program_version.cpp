#include "dialogs/program_version.h"

namespace dialogs {

QString ApplicationTitle() {
    return QStringLiteral("Tavolo");
}

Version ProgramVersion() {
    return {TAVOLO_VERSION_MAJOR, TAVOLO_VERSION_MINOR, TAVOLO_VERSION_PATCH};
}

QString VersionText(const Version& version) {
    return QStringLiteral("%1.%2.%3").arg(version.major).arg(version.minor).arg(version.revision);
}

}  // namespace dialogs
