#include "platform/files.h"

namespace platform {

base::Result<QByteArray> ReadFile(const QString& path, qint64 max_bytes) {
    QFile file;
    QByteArray bytes;
    if (OpenFile(file, path, QIODevice::ReadOnly)) bytes = file.read(max_bytes);
    if (file.error() == QFileDevice::NoError) return bytes;
    return base::Status(base::StatusCode::kIoError,
                        path.toStdString() + ": " + file.errorString().toStdString());
}

}  // namespace platform
