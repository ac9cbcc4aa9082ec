#include "exchange/exchange_file.h"

#include "platform/files.h"

namespace exchange {

base::Result<QByteArray> ReadFile(const QString& path) {
    ASSIGN_OR_RETURN(const qint64 size, platform::FileSize(path));
    if (size > kMaxFileBytes)
        return base::Status(base::StatusCode::kUnsupported,
                            path.toStdString() + ": the file is too large");
    QFile file;
    if (!platform::OpenFile(file, path, QIODevice::ReadOnly))
        return base::Status(base::StatusCode::kIoError,
                            path.toStdString() + ": " + file.errorString().toStdString());
    return file.read(kMaxFileBytes);
}

}  // namespace exchange
