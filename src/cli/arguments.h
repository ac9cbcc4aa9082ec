// The words of a command line, sorted by the entry of their command: options may stand anywhere, as
// --name VALUE, --name=VALUE, -n VALUE or -nVALUE; short ones without a value may be joined; an
// unmistakable beginning of a long name will do; -- ends them, and - alone is an operand.
#pragma once

#include "cli/command_table.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <map>
#include <string>

namespace cli {

class Arguments {
public:
    // nullptr: none was named.
    const Command* command = nullptr;
    QStringList operands;
    bool help = false;
    bool version = false;
    // What is wrong with the words; empty: nothing.
    QString error;

    bool Has(std::string_view option) const { return values_.contains(option); }
    // The last one given; `fallback`: none was.
    QString Value(std::string_view option, const QString& fallback = {}) const;
    QStringList Values(std::string_view option) const;

private:
    friend class ArgumentParser;
    std::map<std::string, QStringList, std::less<>> values_;
};

// `words`: without the program's name.
Arguments ParseArguments(const QStringList& words);

}  // namespace cli
