// Conversion between paths of this system and QString (by base/file_names.h), and the texts that
// name nothing on this system.
#pragma once

#include <QtCore/QString>

#include <string>
#include <string_view>

namespace platform {

QString DecodeFileName(std::string_view bytes);
std::string EncodeFileName(const QString& name);

// True for paths of Windows, which name nothing on this system: C:\Tables\Foo.vpt, C:/Tables,
// \\server\share.
bool IsForeignPath(const QString& path);

// The path for a system call; empty when `path` is empty, foreign or contains a NUL.
std::string SystemPath(const QString& path);

}  // namespace platform
