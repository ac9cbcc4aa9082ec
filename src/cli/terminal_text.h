// Texts of the catalogue in a line of results: characters that break the line or talk to the
// terminal are written as escapes: \n, \r, \t, \xNN. A backslash stays one, for the sake of paths;
// JSON is exact.
#pragma once

#include <QtCore/QString>

#include <string>
#include <string_view>

namespace cli {

// How much is collected before it is written.
inline constexpr std::size_t kPieceBytes = std::size_t{64} << 10;

// Appends the text as UTF-8; bytes of file names that are none as they are.
void AppendTerminalText(std::string& bytes, std::u16string_view text);

// The same for a text of several lines, which may keep its line ends and tabs.
QString ShownText(const QString& text);

}  // namespace cli
