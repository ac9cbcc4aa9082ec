// Reads rules texts from files in the usual encodings and with any line ends.
#pragma once

#include "base/status.h"

#include <QtCore/QByteArrayView>
#include <QtCore/QString>

namespace browser {

inline constexpr qint64 kMaxRulesFileBytes = qint64{256} * 1024 * 1024;

// Decodes UTF-16 or UTF-8 with a byte order mark, which is dropped; valid UTF-8 without one; any
// other bytes as Windows code page 1252.
QString DecodeText(QByteArrayView bytes);

// `text` with each line end (CR LF, LF or CR) replaced by CR LF, and one added after a last line
// without.
QString LinesWithCrLf(const QString& text);

// The text of a file, its lines ending with CR LF; empty for an empty file.
// kNotFound: the file cannot be opened. kIoError: it cannot be read. kUnsupported: it is larger
// than kMaxRulesFileBytes.
base::Result<QString> ReadRulesFile(const QString& path);

}  // namespace browser
