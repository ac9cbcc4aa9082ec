#include "pictures/capture_session.h"

#include "catalogue/error_report.h"
#include "catalogue/path_names.h"
#include "catalogue/program_files.h"
#include "pictures/jpeg_bridge.h"
#include "pictures/texts.h"
#include "platform/application_folder.h"
#include "platform/files.h"

#include <QtCore/QFile>
#include <QtGui/QPainter>

namespace pictures {
namespace {

// Bitmaps have no transparency: transparent pixels are drawn on white.
QImage Opaque(const QImage& image) {
    if (!image.hasAlphaChannel()) return image.convertToFormat(QImage::Format_RGB32);
    QImage flat(image.size(), QImage::Format_RGB32);
    flat.fill(Qt::white);
    QPainter(&flat).drawImage(0, 0, image);
    return flat;
}

}  // namespace

bool IsJpegName(const QString& path) {
    const QString extension = path.section(u'.', -1).toLower();
    return path.contains(u'.') &&
           (extension == u"jpg" || extension == u"jpe" || extension == u"jpeg");
}

QString ProposedName(const QString& table_name) {
    constexpr qsizetype kMost = 100;
    QString name;
    for (const QChar c : table_name)
        if (c.isPrint() && !QStringLiteral("\\/:*?\"<>|").contains(c)) name.append(c);
    name = name.left(kMost).trimmed();
    while (name.startsWith(u'.'))  // it would be hidden
        name.remove(0, 1);
    return name.isEmpty() ? QString() : name + QStringLiteral(".jpg");
}

CaptureSession::CaptureSession(catalogue::ProcessValues& values, platform::UserPrompts& prompts)
    : values_(values), prompts_(prompts) {}

void CaptureSession::Paste(const QImage& clipboard) {
    if (clipboard.isNull()) return;
    const QString bmp =
        platform::FileIn(values_.ApplicationFolder, catalogue::kTemporaryBitmap.toString());
    const QString jpeg =
        platform::FileIn(values_.ApplicationFolder, catalogue::kTemporaryJpeg.toString());
    if (WriteTemporaryBmp(clipboard, bmp) && Convert(bmp, jpeg) && Show(jpeg)) current_file_ = jpeg;
    platform::RemoveFile(bmp);
}

bool CaptureSession::WriteTemporaryBmp(const QImage& image, const QString& path) {
    QFile file;
    if (qint64{image.width()} * image.height() <= kMaxPixels &&
        platform::OpenFile(file, path, QIODevice::WriteOnly) && Opaque(image).save(&file, "BMP") &&
        file.flush())
        return true;
    ReportStatus({base::StatusCode::kIoError,
                  PicturesTexts::tr("%1: the picture cannot be written").arg(path).toStdString()});
    return false;
}

bool CaptureSession::Convert(const QString& bmp, const QString& jpeg) {
    cDIBSection pasted;
    if (!pasted.Load(bmp, prompts_)) return false;
    const auto saved = Helpers::SaveJPG(pasted, jpeg, prompts_);
    if (!saved.ok()) ReportStatus(saved.status());
    return saved.value_or(false);
}

void CaptureSession::SetScale(int scale) {
    scale_ = scale;
    if (!current_file_.isEmpty()) Show(current_file_);
}

bool CaptureSession::Show(const QString& path) {
    cDIBSection shown;
    if (!IsJpegName(path)) {
        if (!shown.Load(path, prompts_)) return false;
    } else {
        const auto loaded = Helpers::LoadJPG(shown, path, scale_, prompts_);
        if (!loaded.ok()) ReportStatus(loaded.status());
        if (!loaded.value_or(false)) return false;
    }
    picture_ = std::move(shown);
    return true;
}

// Not beside the work files in the application folder, where a dialog without a folder would open.
QString CaptureSession::FolderToSaveIn() const {
    if (!values_.LastPictureDir.isEmpty()) return values_.LastPictureDir;
    const QString& last = values_.last_folders.capture;
    return last.isEmpty() ? platform::PicturesFolder() : last;
}

QString CaptureSession::Save(const QString& table_name) {
    const QString path = prompts_.ChooseFileToSave(
        {.title = {},
         .filter = PicturesTexts::tr("JPEG Files") +
                   QStringLiteral(" (*.jpg;*.jpe;*.jpeg)|*.jpg;*.jpe;*.jpeg|"),
         .file_name = ProposedName(table_name),
         .folder = FolderToSaveIn(),
         .default_extension = QStringLiteral(".jpg"),
         .name = QStringLiteral("FileDlg")});
    if (path.isEmpty()) return {};
    const auto saved = Helpers::SaveJPG(picture_, path, prompts_);
    if (!saved.ok()) ReportStatus(saved.status());
    if (saved.value_or(false)) values_.last_folders.capture = catalogue::GetFolder(path);
    return saved.value_or(false) ? path : QString();
}

void CaptureSession::RememberFolderOf(const QString& path) {
    values_.LastPictureDir = catalogue::GetFolder(path);
}

QString CaptureSession::SizeText() const {
    return QStringLiteral("%1X%2").arg(picture_.dib_width()).arg(picture_.dib_height());
}

void CaptureSession::ReportStatus(const base::Status& status) {
    catalogue::ShowError(prompts_, status);
}

}  // namespace pictures
