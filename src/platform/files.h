// Files and folders of the operating system. Paths are texts as the catalogue stores them; a path
// of another system (C:\... on Linux) names nothing here. Errors are Status values that name the
// file.
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

// A catalogue that was written on Windows may spell a name in another letter case than the disk.
// The result is the name on the disk: `path` when that exists, otherwise a path that differs from
// it (and in the names of its folders) in letter case only, otherwise `path`. All functions below
// that need an existing file or folder look for it in this way.
QString ExistingName(const QString& path);

// ExistingName(path) for the standard library.
std::filesystem::path ToPath(const QString& path);
// The absolute path without "." and "..", without a trailing separator. Nothing needs to exist.
QString AbsolutePath(const QString& path);
// The absolute path with all links resolved; empty when nothing has this name.
QString RealPath(const QString& path);

// True for an existing regular file; false for a folder, an empty text, an unreachable drive.
bool FileExists(const QString& path);
// In local time; invalid when there is no such file.
QDateTime LastModified(const QString& path);
// In bytes. kNotFound with the number kFileNotFound: no such file.
base::Result<qint64> FileSize(const QString& path);

// Opens `file` as `path`. QFile::open alone reaches only names that are valid in the locale's
// character set. False on failure, with the reason in file.errorString().
bool OpenFile(QFile& file, const QString& path, QIODevice::OpenMode mode);
// The first `max_bytes` of the file, or all there are. kIoError: it cannot be opened or read.
base::Result<QByteArray> ReadFile(const QString& path, qint64 max_bytes);
// Replaces the content of the file, or creates it, atomically: on failure the file is unchanged.
// A link stays a link. kNoSpace: the disk is full.
base::Status SaveFile(const QString& path, QByteArrayView bytes);
// The same for a file that can be made again: it is not waited for until it is on the disk, and the
// file, as the folders that are made for it, is this user's alone.
base::Status SaveCacheFile(const QString& path, QByteArrayView bytes);
// Failures are ignored.
void RemoveFile(const QString& path);
// kAlreadyExists: `to` exists; it is not overwritten. The copy has the permissions of the original,
// and its owner may write to it.
base::Status CopyNewFile(const QString& from, const QString& to);

bool FolderExists(const QString& folder);
// Creates the folder and those above it; ok when it exists already.
base::Status MakeFolder(const QString& folder);

struct FolderEntry {
    QString name;
    bool is_folder = false;  // also true for a link to a folder
    bool is_link = false;
};

// Calls `visit` for each entry of `folder` except "." and "..", in the order of the file system.
// Devices, pipes and broken links are left out: reading them could block. A folder that cannot be
// opened is an error, and `visit` is not called.
base::Status ListFolder(const QString& folder,
                        const std::function<void(const FolderEntry&)>& visit);

// A text that is equal for all names of one file or folder, links resolved; empty when there is no
// such file or folder.
QString Identity(const QString& path);

// True for a folder of a file system that shows the kernel's data (such as /proc): what is listed
// there is not stored in files.
bool IsPseudoFileSystem(const QString& folder);

// kNotFound with the number kPathNotFound (error_numbers.h): no such folder.
base::Status ChangeDirectory(const QString& folder);

}  // namespace platform
