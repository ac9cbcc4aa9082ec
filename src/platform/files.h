// The file side of the operating system: facts about files, folder listings, the current directory.
// Texts are paths as the catalogue stores them. A path of another system (C:\... on Linux) names
// nothing here.
#pragma once

#include "base/status.h"

#include <QtCore/QByteArrayView>
#include <QtCore/QDateTime>
#include <QtCore/QFile>
#include <QtCore/QString>

#include <filesystem>
#include <functional>
#include <memory>

namespace platform {

// "\" on Windows, "/" elsewhere.
QChar NativeSeparator();

// A name from a catalogue may differ from the disk's in letter case: it was written on a system to
// which case means nothing. The name as it is on the disk: `path` itself when that exists,
// otherwise the one that differs in letter case only, of its folders, too; `path` again when there
// is none. All functions here that look for something that exists find it so.
QString ExistingName(const QString& path);

// For a system call: of ExistingName.
std::filesystem::path ToPath(const QString& path);
// `path` as a path from the root, without "." and "..", without a separator at its end. Nothing
// needs to exist.
QString AbsolutePath(const QString& path);
// Without links; empty when there is nothing of that name.
QString RealPath(const QString& path);

// True for an existing file; a folder, an empty text and an unreachable drive are no files.
bool FileExists(const QString& path);
// Local time. Invalid: no such file.
QDateTime LastModified(const QString& path);
// nullopt-like: kNotFound when there is no such file.
base::Result<qint64> FileSize(const QString& path);

// Opens `file` under the name `path`. By itself QFile reaches only names that are valid in the
// locale's character set. False: file.errorString() says why.
bool OpenFile(QFile& file, const QString& path, QIODevice::OpenMode mode);
// Replaces the file by `bytes` in one step; on failure it stays as it was. The message names the
// file. kNoSpace: the disk is full.
base::Status SaveFile(const QString& path, QByteArrayView bytes);
// A failure is without consequence: what cannot be removed stays.
void RemoveFile(const QString& path);
// Nothing is overwritten. The copy has the permissions of the file, and its owner may write to it.
base::Status CopyNewFile(const QString& from, const QString& to);

bool FolderExists(const QString& folder);
// Makes it and the folders above it. ok when it is there already.
base::Status MakeFolder(const QString& folder);

struct FolderEntry {
    QString name;
    bool is_folder = false;  // also true for a link to a folder
    bool is_link = false;
};

// Calls `visit` for every entry of `folder` ("." and ".." left out) in the order in which the file
// system returns them. What is neither a file nor a folder (a device, a pipe, a link to nothing) is
// left out: reading it could block. A folder that cannot be listed gives a Status and no call.
base::Status ListFolder(const QString& folder,
                        const std::function<void(const FolderEntry&)>& visit);

// A text that is equal for two names of the same file or folder (links resolved); empty when it
// cannot be reached.
QString Identity(const QString& path);

// True for a folder of the system's own making (processes, devices' registers): what looks like a
// file there lies elsewhere or nowhere.
bool IsPseudoFileSystem(const QString& folder);

// kNotFound with the number kPathNotFound (error_numbers.h): there is no such folder.
base::Status ChangeDirectory(const QString& folder);

}  // namespace platform
