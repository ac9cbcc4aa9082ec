#include "exchange/exchange_file.h"

#include "platform/files.h"

namespace exchange {

base::Result<QByteArray> ReadFile(const QString& path) {
    const base::Status too_large(base::StatusCode::kUnsupported,
                                 path.toStdString() + ": the file is too large");
    ASSIGN_OR_RETURN(const qint64 size, platform::FileSize(path));
    if (size > kMaxFileBytes) return too_large;
    QFile file;
    const auto failure = [&] {
        return base::Status(base::StatusCode::kIoError,
                            path.toStdString() + ": " + file.errorString().toStdString());
    };
    if (!platform::OpenFile(file, path, QIODevice::ReadOnly)) return failure();
    QByteArray bytes = file.readAll();
    // Nothing else tells a file that ends here from one that could not be read on.
    if (file.error() != QFileDevice::NoError) return failure();
    if (bytes.size() > kMaxFileBytes) return too_large;  // it has grown meanwhile
    return bytes;
}

}  // namespace exchange
