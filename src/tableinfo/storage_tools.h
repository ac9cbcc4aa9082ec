// StorageTools: what a table file says about itself. A table file (.vpt) is a compound file; its
// storage TableInfo holds one stream per field. Strictly read-only. Whatever is wrong with a file
// (not there, not a compound file, damaged, no such stream) reads as "nothing there": an absent
// field and an empty one are the same to the callers, and nothing is reported. Damage hides what it
// hits and no more.
// Inside a file a name is found without regard to letter case; standard names are told from custom
// ones exactly. Threads: a TableInfoFile belongs to one thread.
#pragma once

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
// The picture file in stream Screenshot, not decoded. nullopt: there is none, or it is empty.
std::optional<QByteArray> LoadTableScreenshot(const QString& path);

// The same for several questions to one file, which is opened once. The file stays open as long as
// the object.
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

private:
    class Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace tableinfo
