// A Windows command line taken apart the way the Microsoft C runtime does it for main().
// Source of the rules: "main function and command-line arguments", section "Parsing C command-line
// arguments", in the Microsoft C language reference:
//  - blanks and tabs part arguments unless they are quoted;
//  - the program's name ends at the first unquoted blank, and only quotes are special in it; one
//  that is doubled inside a
//    quoted part is a plain quote (ours: the runtime knows no program with a quote in its name,
//    this system may have one);
//  - elsewhere 2n backslashes before a quote give n backslashes and the quote opens or closes, 2n+1
//  give n backslashes and
//    a plain quote, and backslashes before anything else are themselves;
//  - a doubled quote inside a quoted part is a plain quote.
// So `"exe" /Play -"a b.vpt"` has three arguments, the last one being `-a b.vpt`.
#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

namespace platform {

// The program's name first. An empty line gives no argument.
QStringList SplitCommandLine(const QString& command_line);

// `text` between quotes so that SplitCommandLine gives it back inside its argument. A file name of
// Windows has neither a quote nor a backslash at its end and stands between the quotes as it is.
QString QuoteForCommandLine(const QString& text);

// The same for the program's name, which comes first in the line.
QString QuoteProgramName(const QString& name);

}  // namespace platform
