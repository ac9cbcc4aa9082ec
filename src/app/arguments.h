// The command line of tavolo.
#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

namespace app {

struct Arguments {
    QString folder{};   // empty: not given
    bool demo = false;  // the example collection
    QString tables{};   // a table file or a folder of them; empty: not given
    bool help = false;
    bool version = false;
    QString error{};  // what is wrong with the arguments; empty when they are valid
    bool operator==(const Arguments&) const = default;
};

// `words`: without the program's name.
Arguments ParseArguments(const QStringList& words);

// For --help.
QString HelpText();
// For --version: "Tavolo 1.6.0".
QString VersionLine();

}  // namespace app
