// The words after the program's name.
#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

namespace app {

struct Arguments {
    QString folder;  // empty: not given
    bool help = false;
    bool version = false;
    QString error;  // what is wrong with them; empty: nothing
    bool operator==(const Arguments&) const = default;
};

// `words`: without the program's own name.
Arguments ParseArguments(const QStringList& words);

// For --help.
QString HelpText();
// For --version: "Tavolo 1.6.0".
QString VersionLine();

}  // namespace app
