#include "pictures/jpeg_bridge.h"

#include "pictures/jpeg_codec.h"
#include "pictures/texts.h"
#include "platform/files.h"

#include <QtCore/QFile>

namespace pictures::Helpers {
namespace {

// More than any JPEG of kMaxPixels pixels has.
constexpr qint64 kMaxFileBytes = qint64{512} << 20;

QString DecodeContext(JpegStep step) {
    switch (step) {
    case JpegStep::kInitialise:
        return PicturesTexts::tr("Failed to initialise the IJL library: ");
    case JpegStep::kReadParameters:
        return PicturesTexts::tr("FAILED TO READ IMAGE PARAMS - ");
    default:
        return PicturesTexts::tr("FAILED TO READ IMAGE DATA - ");
    }
}

QString EncodeContext(JpegStep step) {
    return step == JpegStep::kInitialise ? PicturesTexts::tr("Failed to initialise the IJL library")
                                         : PicturesTexts::tr("Failed to save to JPG");
}

void Report(const JpegOutcome& outcome, const QString& context, platform::UserPrompts& prompts) {
    ReportIJLError(context, outcome.code, PtrToString(outcome.text.c_str()), prompts);
}

base::Status FileError(const QFileDevice& file, const QString& path) {
    return {base::StatusCode::kIoError,
            (path + QStringLiteral(": ") + file.errorString()).toStdString()};
}

}  // namespace

base::Result<bool> LoadJPG(cDIBSection& target, const QString& path, int scale,
                           platform::UserPrompts& prompts) {
    QFile file;
    if (!platform::OpenFile(file, path, QIODevice::ReadOnly)) return FileError(file, path);
    if (file.size() > kMaxFileBytes)
        return base::Status(base::StatusCode::kUnsupported,
                            PicturesTexts::tr("%1: the file is too large").arg(path).toStdString());
    const QByteArray bytes = file.readAll();
    if (file.error() != QFileDevice::NoError) return FileError(file, path);
    const auto* data = reinterpret_cast<const std::uint8_t*>(bytes.constData());  // NOLINT: bytes
    return LoadJPGFromPtr(target, {data, static_cast<std::size_t>(bytes.size())}, scale, prompts);
}

bool LoadJPGFromPtr(cDIBSection& target, std::span<const std::uint8_t> jpeg, int scale,
                    platform::UserPrompts& prompts) {
    const JpegOutcome outcome = JpegDecode(jpeg, scale, target);
    if (!outcome.ok()) Report(outcome, DecodeContext(outcome.failed), prompts);
    return outcome.ok();
}

base::Result<bool> SaveJPG(const cDIBSection& source, const QString& path,
                           platform::UserPrompts& prompts) {
    std::vector<std::uint8_t> jpeg;
    const JpegOutcome outcome = JpegEncode(source, kJpegQuality, jpeg);
    if (!outcome.ok()) {
        Report(outcome, EncodeContext(outcome.failed), prompts);
        return false;
    }
    const auto* data = reinterpret_cast<const char*>(jpeg.data());  // NOLINT: bytes
    RETURN_IF_ERROR(platform::SaveFile(path, {data, static_cast<qsizetype>(jpeg.size())}));
    return true;
}

void ReportIJLError(const QString& context, int status, const QString& text,
                    platform::UserPrompts& prompts) {
    prompts.Ask({.text = PicturesTexts::tr("IJL ERROR: [%1]").arg(status) + QStringLiteral(" - ") +
                         text + QStringLiteral(" - ") + context,
                 .title = PicturesTexts::tr("Intel(R) JPEG Library"),
                 .icon = platform::MessageIcon::kExclamation});
}

QString PtrToString(const char* text) {
    return QString::fromLatin1(text);
}

}  // namespace pictures::Helpers
