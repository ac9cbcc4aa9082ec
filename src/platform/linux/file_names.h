// File names of this system as texts and back.
// A name is bytes here, mostly UTF-8. A byte that is no part of valid UTF-8 (an archive unpacked
// with the code page of another system leaves such names) becomes the lone surrogate U+DC00 + byte,
// as in Python's "surrogateescape", so that every name that a folder listing shows can be opened
// again.
#pragma once

#include <QtCore/QString>

#include <string>
#include <string_view>

namespace platform {

QString DecodeFileName(std::string_view bytes);
std::string EncodeFileName(const QString& name);

// True for C:\Tables\Foo.vpt, C:/Tables and \\server\share: a path of Windows, which names nothing
// on this system.
bool IsForeignPath(const QString& path);

// The bytes to give to a system call; empty when the path can name nothing here (empty, foreign, or
// with a NUL inside).
std::string SystemPath(const QString& path);

}  // namespace platform
