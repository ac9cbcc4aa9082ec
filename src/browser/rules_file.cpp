#include "browser/rules_file.h"

#include "base/ansi_text.h"
#include "browser/texts.h"
#include "platform/files.h"

#include <QtCore/QFile>
#include <QtCore/QStringConverter>

#include <span>

namespace browser {
namespace {

QString Decode(QByteArrayView bytes, QStringConverter::Encoding encoding) {
    QStringDecoder decoder(encoding);
    return decoder(bytes);
}

QString FromAnsi(QByteArrayView bytes) {
    const std::span units(bytes.data(), static_cast<std::size_t>(bytes.size()));
    return QString::fromStdU16String(base::FromAnsi(std::as_bytes(units)));
}

base::Status Failure(base::StatusCode code, const QString& path, const QString& reason) {
    return {code, (path + QStringLiteral(": ") + reason).toStdString()};
}

}  // namespace

QString DecodeText(QByteArrayView bytes) {
    if (bytes.startsWith("\xFF\xFE")) return Decode(bytes.sliced(2), QStringConverter::Utf16LE);
    if (bytes.startsWith("\xFE\xFF")) return Decode(bytes.sliced(2), QStringConverter::Utf16BE);
    if (bytes.startsWith("\xEF\xBB\xBF")) return Decode(bytes.sliced(3), QStringConverter::Utf8);
    QStringDecoder utf8(QStringConverter::Utf8, QStringConverter::Flag::Stateless);
    QString text = utf8(bytes);
    return utf8.hasError() ? FromAnsi(bytes) : text;
}

QString LinesWithCrLf(const QString& text) {
    QString lines;
    lines.reserve(text.size() + text.size() / 16 + 2);
    const QStringView whole(text);
    qsizetype start = 0;
    while (start < whole.size()) {
        qsizetype end = start;
        while (end < whole.size() && whole[end] != u'\r' && whole[end] != u'\n')
            ++end;
        lines += whole.sliced(start, end - start);
        lines += QStringLiteral("\r\n");
        const bool is_pair =
            end + 1 < whole.size() && whole[end] == u'\r' && whole[end + 1] == u'\n';
        start = end + (is_pair ? 2 : 1);
    }
    return lines;
}

base::Result<QString> ReadRulesFile(const QString& path) {
    QFile file;
    if (!platform::OpenFile(file, path, QIODevice::ReadOnly))
        return Failure(base::StatusCode::kNotFound, path, file.errorString());
    if (file.size() > kMaxRulesFileBytes)
        return Failure(base::StatusCode::kUnsupported, path,
                       BrowserTexts::tr("the file is too large for a rules text"));
    const QByteArray bytes = file.read(kMaxRulesFileBytes);
    if (file.error() != QFileDevice::NoError)
        return Failure(base::StatusCode::kIoError, path, file.errorString());
    return LinesWithCrLf(DecodeText(bytes));
}

}  // namespace browser
