// Windows command lines, split by the rules of the Microsoft C runtime for the arguments of main().
// Source: "main function and command-line arguments", section "Parsing C command-line arguments",
// in the Microsoft C language reference:
//  - blanks and tabs separate arguments unless they are quoted;
//  - the program's name ends at the first unquoted blank or tab. Only quotes are special in it; a
//    doubled quote inside a quoted part is a literal quote (our addition: a program's name may
//    contain a quote on this system);
//  - in the arguments, 2n backslashes before a quote are n backslashes, and the quote opens or
//    closes a quoted part; 2n+1 are n backslashes and a literal quote; backslashes before any other
//    character are literal;
//  - a doubled quote inside a quoted part is a literal quote.
// `"exe" /Play -"a b.vpt"` has three arguments; the last one is `-a b.vpt`.
#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

namespace platform {

// The program's name and the arguments. Empty for an empty line.
QStringList SplitCommandLine(const QString& command_line);

// `text` in quotes, escaped so that SplitCommandLine restores it. A Windows file name, which has no
// quote and no backslash at its end, is not changed between the quotes.
QString QuoteForCommandLine(const QString& text);

// The same for the program's name at the start of the line.
QString QuoteProgramName(const QString& name);

}  // namespace platform
