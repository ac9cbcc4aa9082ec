// The pieces of a stored path, as texts: nothing here looks at a disk.
// Both "\" and "/" separate, on every system: a catalogue keeps the paths of the system it was made
// on.
#pragma once

#include <string>
#include <string_view>

namespace base {

constexpr bool IsPathSeparator(char16_t c) {
    return c == u'\\' || c == u'/';
}

// The text after the last separator; a path without one is returned whole. Blank in, empty out.
std::u16string_view GetFileName(std::u16string_view path);

// The path without its last component, the separator kept: C:\Tables\Foo.vpt gives C:\Tables\ .
// Blank in, empty out.
std::u16string_view GetFolder(std::u16string_view path);

// The name without its last four characters, whatever they are: made for table file names, which
// end in .vpt. Blank in, empty out; empty also for a name of fewer than four characters, which no
// table file has.
std::u16string_view StripExtension(std::u16string_view file_name);

// `folder` ending in a separator: as it is when it ends in one already; otherwise "\" is appended
// to a path of the Windows kind (a drive letter, or a "\" in it), "/" to one that has a "/", and
// `native` to any other.
std::u16string WithTrailingSeparator(std::u16string_view folder, char16_t native);

}  // namespace base
