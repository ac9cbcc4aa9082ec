#include "browser/rules_file.h"

#include <QtCore/QFile>
#include <QtCore/QStringConverter>

#include <array>

namespace browser {
namespace {

// Code page 1252 from 0x80 to 0x9F; the five bytes without a character keep their value, as on
// Windows.
constexpr std::array<char16_t, 32> kCodePage1252 = {
    0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0x008D, 0x017D, 0x008F, 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

QString FromCodePage1252(QByteArrayView bytes) {
    QString text = QString::fromLatin1(bytes);
    for (QChar& c : text)
        if (c.unicode() >= 0x80 && c.unicode() <= 0x9F)
            c = QChar(kCodePage1252[c.unicode() - 0x80]);
    return text;
}

QString Decode(QByteArrayView bytes, QStringConverter::Encoding encoding) {
    QStringDecoder decoder(encoding);
    return decoder(bytes);
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
    return utf8.hasError() ? FromCodePage1252(bytes) : text;
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
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return Failure(base::StatusCode::kNotFound, path, file.errorString());
    if (file.size() > kLargestRulesFileBytes)
        return Failure(base::StatusCode::kUnsupported, path,
                       QStringLiteral("the file is too large for a rules text"));
    const QByteArray bytes = file.read(kLargestRulesFileBytes);
    if (file.error() != QFileDevice::NoError)
        return Failure(base::StatusCode::kIoError, path, file.errorString());
    return LinesWithCrLf(DecodeText(bytes));
}

}  // namespace browser
