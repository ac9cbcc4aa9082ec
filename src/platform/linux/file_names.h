// Paths of this system as texts and back: base/file_names.h for QString, and the texts that can
// name nothing here.
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
