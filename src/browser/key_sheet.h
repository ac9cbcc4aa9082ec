// The sheet of keys: what each key does and where. The keys of commands come from the command
// table; those that windows and boxes have for themselves are listed here. The help's page on keys
// has the same lines.
#pragma once

#include <QtCore/QString>

#include <vector>

namespace browser {

struct KeyLine {
    QString keys;   // "Ctrl+Z"
    QString where;  // "main window"
    QString what;   // "Undo"
    bool operator==(const KeyLine&) const = default;
};

std::vector<KeyLine> KeySheet();

}  // namespace browser
