// The files that rows come from.
#pragma once

#include "base/status.h"

#include <QtCore/QByteArray>
#include <QtCore/QString>

namespace exchange {

// More than any catalogue has: a database file has 2 GB at most. Bytes.
inline constexpr qint64 kMaxFileBytes = qint64{1} << 30;

// The whole file, or what comes out of a pipe. kUnsupported: it is larger than kMaxFileBytes.
// kIoError: not all of it can be read.
base::Result<QByteArray> ReadFile(const QString& path);

}  // namespace exchange
