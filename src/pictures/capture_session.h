// CaptureSession: one picture from the clipboard on its way to a JPEG file, without a window. Every
// paste goes through a JPEG round trip, so what is shown and saved later is the compressed picture;
// a reduction happens while decoding, and saving writes the reduced picture.
#pragma once

#include "base/status.h"
#include "catalogue/process_values.h"
#include "pictures/dib_section.h"
#include "platform/user_prompts.h"

#include <QtGui/QImage>

#include <functional>

namespace pictures {

// "jpg", "jpe" or "jpeg" after the last ".", in any letter case.
bool IsJpegName(const QString& path);

// A name for the picture of a table: what no file name may hold is left out; empty if nothing is
// left.
QString ProposedName(const QString& table_name);

class CaptureSession {
public:
    // Both borrowed; they outlive the session.
    CaptureSession(catalogue::ProcessValues& values, platform::UserPrompts& prompts);

    // The clipboard's picture (null: it holds none, and nothing happens) becomes temp.jpg in the
    // application folder and is shown. After a failure, which was reported, current file and
    // picture are what they were.
    void Paste(const QImage& clipboard);
    // 1, 2, 4 or 8; decodes and shows the current file again if there is one.
    void SetScale(int scale);
    // Asks for a name, for which it proposes that of the table, and writes the picture there.
    // Empty: cancelled, or it could not be written
    // (reported).
    QString Save(const QString& table_name = {});
    // What became of LastPictureDir after "Save and Set" and after "Save Only".
    void RememberFolderOf(const QString& path);

    const cDIBSection& picture() const { return picture_; }
    const QString& current_file() const { return current_file_; }
    int scale() const { return scale_; }
    // "200X150".
    QString SizeText() const;

private:
    QString FolderToSaveIn() const;
    bool WriteTemporaryBmp(const QImage& image, const QString& path);
    bool Convert(const QString& bmp, const QString& jpeg);
    bool Show(const QString& path);
    void ReportStatus(const base::Status& status);

    catalogue::ProcessValues& values_;
    platform::UserPrompts& prompts_;
    cDIBSection picture_;
    QString current_file_;
    int scale_ = 1;
};

}  // namespace pictures
