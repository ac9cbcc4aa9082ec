// What is dropped on the main window, by its kind.
#pragma once

#include <QtCore/QString>
#include <QtCore/QStringList>

class QMimeData;

namespace browser {

struct DroppedFiles {
    QStringList tables;  // table files and folders, to be added to the catalogue
    QString picture;     // the first one; becomes the screenshot; empty: none
    QString text;        // the first one; becomes the rules; empty: none
    bool is_empty() const { return tables.isEmpty() && picture.isEmpty() && text.isEmpty(); }
    bool operator==(const DroppedFiles&) const = default;
};

// Only files and folders of this system; a file is known by its extension.
DroppedFiles DroppedFilesOf(const QMimeData& data);

}  // namespace browser
