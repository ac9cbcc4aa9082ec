#include "maintenance/launcher_record.h"

#include <QtCore/QStringList>

namespace maintenance {

std::optional<LauncherRecord> ParseLauncherLine(const QString& line) {
    if (line.contains(QChar(u'\0'))) return std::nullopt;
    const QStringList fields = line.split(u'\\');
    if (fields.size() < 7) return std::nullopt;
    LauncherRecord record;
    record.name = fields[0];
    record.version = fields[1];
    record.checksum = fields[2];
    record.key = fields[2].startsWith(u'$') ? fields[2].sliced(1) : fields[2];
    record.author = fields[3];
    record.year = fields[4];
    record.company = fields[5] == u"-" ? fields[6] : fields[5];
    record.pin_mame = fields[6] == u"VPinMame";
    return record;
}

}  // namespace maintenance
