// The file side of the operating system: facts about files, folder listings, the current directory.
// Texts are paths as the catalogue stores them. A path of another system (C:\... on Linux) names nothing here.
#pragma once

#include "base/status.h"

#include <QtCore/QDateTime>
#include <QtCore/QString>

#include <filesystem>
#include <functional>
#include <memory>

namespace platform {

// "\" on Windows, "/" elsewhere.
QChar NativeSeparator();

std::filesystem::path ToPath(const QString& path);

// True for an existing file; a folder, an empty text and an unreachable drive are no files.
bool FileExists(const QString& path);
// Local time. Invalid: no such file.
QDateTime LastModified(const QString& path);
// nullopt-like: kNotFound when there is no such file.
base::Result<qint64> FileSize(const QString& path);

struct FolderEntry {
    QString name;
    bool is_folder = false;  // also true for a link to a folder
};

// Calls `visit` for every entry of `folder` ("." and ".." left out) in the order in which the file system returns them.
// What is neither a file nor a folder (a device, a pipe, a link to nothing) is left out: reading it could block.
// A folder that cannot be listed gives a Status and no call.
base::Status ListFolder(const QString& folder, const std::function<void(const FolderEntry&)>& visit);

// A text that is equal for two names of the same folder (links resolved); empty when the folder cannot be reached.
QString FolderIdentity(const QString& folder);

// kNotFound with number 76: there is no such folder.
base::Status ChangeDirectory(const QString& folder);

}  // namespace platform
