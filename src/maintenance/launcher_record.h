// One line of VPLauncher's data file: fields separated by single backslashes, counted from 0.
//   0 name   1 version   2 CRC, with or without a "$" before it   3 author   4 year
//   5 company, "-" for none   6 "VPinMame" for a table that needs it      further fields are
//   ignored
#pragma once

#include <QtCore/QString>

#include <optional>

namespace maintenance {

struct LauncherRecord {
    QString name;
    QString version;
    QString checksum;  // as in the line
    QString key;  // the checksum without its "$": what a row's CRC, else its DisplayName, must be
    QString author;
    QString year;
    QString company;  // field 6 when field 5 is "-"
    bool pin_mame = false;
    bool operator==(const LauncherRecord&) const = default;
};

// nullopt: fewer than seven fields, or a NUL character.
std::optional<LauncherRecord> ParseLauncherLine(const QString& line);

}  // namespace maintenance
