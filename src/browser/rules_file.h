// Rules texts out of files that people have: any of the usual encodings, any line ends.
#pragma once

#include "base/status.h"

#include <QtCore/QByteArrayView>
#include <QtCore/QString>

namespace browser {

inline constexpr qint64 kLargestRulesFileBytes = 256 * 1024 * 1024;

// UTF-16 or UTF-8 when a byte order mark says so; UTF-8 when the bytes are valid UTF-8; otherwise
// Windows code page 1252. The mark is not part of the text.
QString DecodeText(QByteArrayView bytes);

// The lines of `text`, each followed by CR LF. CR LF, LF and CR end a line; a last line without an
// end is a line, too.
QString LinesWithCrLf(const QString& text);

// The whole file as lines that end in CR LF; empty for an empty file.
// kNotFound, kIoError: it cannot be read. kUnsupported: it is larger than kLargestRulesFileBytes.
base::Result<QString> ReadRulesFile(const QString& path);

}  // namespace browser
