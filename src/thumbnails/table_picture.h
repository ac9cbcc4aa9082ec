// The screenshot of a table: the image file that its row names, else the one inside of its table
// file; and the small picture of it, which is kept for the next time. Threads: from any.
#pragma once

#include "base/status.h"
#include "widgets/picture_loader.h"

#include <QtCore/QHashFunctions>
#include <QtCore/QSize>
#include <QtCore/QString>
#include <QtGui/QImage>

namespace thumbnails {

// The files in which a row looks for its screenshot; both may be empty, or name nothing.
struct TablePicture {
    QString image_file;
    QString table_file;
    bool operator==(const TablePicture&) const = default;
};

inline std::size_t qHash(const TablePicture& picture, std::size_t seed = 0) {
    return qHashMulti(seed, picture.image_file, picture.table_file);
}

// True if `path` contains a "." and names an existing file.
bool IsUsablePictureFile(const QString& path);

// Where the screenshot is; empty: there is none. Reads the one inside of the table file.
widgets::PictureSource ScreenshotOf(const TablePicture& picture);

// Where small pictures are kept.
struct ThumbnailFolders {
    QString shared;  // those of files, beside other programs' ones
    QString own;     // those of screenshots inside of table files, under the table file's name
};

// For this user on this desktop.
ThumbnailFolders UserThumbnailFolders();

// The screenshot with its proportions kept, as large as fits into `box` (pixels), never larger than
// it is. A small picture that is kept is taken instead, and one that is not is kept from then on;
// that it cannot be written is no failure. kNotFound: there is no screenshot; otherwise the errors
// of DecodePicture. Requires: box is not empty.
base::Result<QImage> LoadThumbnail(const TablePicture& picture, QSize box,
                                   const ThumbnailFolders& folders);

}  // namespace thumbnails
