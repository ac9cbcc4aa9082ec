#include "exchange/exchange_file.h"

#include "platform/files.h"

namespace exchange {
namespace {

constexpr qint64 kReadAtOnce = qint64{1} << 20;

}  // namespace

base::Result<QByteArray> ReadFile(const QString& path) {
    const auto size = platform::FileSize(path);
    const base::Status too_large(base::StatusCode::kUnsupported,
                                 path.toStdString() + ": the file is too large");
    if (size.ok() && *size > kMaxFileBytes) return too_large;
    QFile file;
    const bool is_open = platform::OpenFile(file, path, QIODevice::ReadOnly);
    // A pipe has no size. A folder has none either, but can be opened.
    if (!size.ok() && (!is_open || !file.isSequential())) return size.status();
    QByteArray bytes;
    QByteArray piece;
    do {
        piece = file.read(kReadAtOnce);
        bytes += piece;
        if (bytes.size() > kMaxFileBytes) return too_large;
    } while (!piece.isEmpty());
    // Nothing else tells a file that ends here from one that could not be read on.
    if (is_open && file.error() == QFileDevice::NoError) return bytes;
    return base::Status(base::StatusCode::kIoError,
                        path.toStdString() + ": " + file.errorString().toStdString());
}

}  // namespace exchange
