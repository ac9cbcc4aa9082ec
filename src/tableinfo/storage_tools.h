// StorageTools: what a table file says about itself. A table file (.vpt) is a compound file; its
// storage TableInfo holds one stream per field. Read-only. Errors are not reported: what cannot be
// read (no such file, not a compound file, damaged, no such stream) reads as empty, since callers
// treat an absent field and an empty one alike. Damage in one stream does not affect the others.
// Names are found without regard to letter case; standard names are told from custom ones by exact
// spelling. Threads: a TableInfoFile belongs to one thread.
#pragma once

#include "base/status.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <memory>
#include <optional>

namespace tableinfo {

// The text of stream TableInfo/`stream_name`.
QString ReadTableInfoStream(const QString& path, const QString& stream_name);
// True when the file's root has an element named exactly TableInfo.
bool HasTableInfo(const QString& path);
// Appends the names of the custom-field streams in the file's order; the result is the number of
// elements in TableInfo, of all kinds.
int ListCustomInfoStreams(const QString& path, QStringList& names);
// One of the ten standard names, letter for letter.
bool IsStandardInfoStream(const QString& name);
// The picture file in stream Screenshot, not decoded. nullopt: there is none, or it is
// empty, or larger than 256 MB.
std::optional<QByteArray> LoadTableScreenshot(const QString& path);

// The same functions on one open file. The file stays open as long as the object lives.
class TableInfoFile {
public:
    explicit TableInfoFile(const QString& path);
    ~TableInfoFile();
    TableInfoFile(TableInfoFile&&) noexcept;
    TableInfoFile& operator=(TableInfoFile&&) noexcept;

    bool HasTableInfo();
    QString ReadStream(const QString& stream_name);
    int ListCustomStreams(QStringList& names);
    std::optional<QByteArray> Screenshot();

    // The first thing that could not be read so far; ok if there was none. What is not there (the
    // file, the information, a stream) is no failure.
    const base::Status& failure() const;

private:
    class Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace tableinfo
