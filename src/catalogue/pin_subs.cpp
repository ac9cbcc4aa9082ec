#include "catalogue/pin_subs.h"

#include "base/path_pieces.h"
#include "jet/values/conversions.h"
#include "platform/files.h"

#include <cmath>

namespace catalogue {
namespace {

std::u16string_view View(const QString& text) {
    return std::u16string_view(reinterpret_cast<const char16_t*>(text.utf16()),
                               static_cast<std::size_t>(text.size()));
}

QString ToQString(std::u16string_view text) {
    // Unit by unit: QString's conversions take U+FEFF at the start for a byte order mark.
    return QString(reinterpret_cast<const QChar*>(text.data()),
                   static_cast<qsizetype>(text.size()));
}

}  // namespace

QString QuoteSql(const QString& value) {
    return QString(value).replace(QLatin1Char('\''), QLatin1String("''"));
}

QString QuoteSqlExpr(const QString& value) {
    QString quoted = value;
    quoted.replace(QLatin1Char('\''), QLatin1String("' & chr(39) & '"));
    quoted.replace(QLatin1Char('|'), QLatin1String("' & chr(124) & '"));
    return quoted;
}

QString GetFileName(const QString& path) {
    return ToQString(base::GetFileName(View(path)));
}

QString GetFolder(const QString& path) {
    return ToQString(base::GetFolder(View(path)));
}

QString StripExtension(const QString& file_name) {
    return ToQString(base::StripExtension(View(file_name)));
}

QString WithTrailingSeparator(const QString& folder) {
    return ToQString(
        base::WithTrailingSeparator(View(folder), platform::NativeSeparator().unicode()));
}

double ToOleDate(const QDateTime& time) {
    const QDate date = time.date();
    const QTime clock = time.time();
    return jet::DaysFromCivil(
        {date.year(), date.month(), date.day(), clock.hour(), clock.minute(), clock.second()});
}

QString MediumDate(const QDateTime& time) {
    return ToQString(jet::FormatDate(ToOleDate(time), u"medium date"));
}

QString StoredDate(const QDateTime& time) {
    QString text = MediumDate(time);
    const auto read_back = jet::ParseDate(View(text), time.date().year());
    if (read_back && *read_back == std::floor(ToOleDate(time))) return text;
    return ToQString(jet::FormatDate(ToOleDate(time), u"dd-mmm-yyyy"));
}

QString GeneralDate(const QDateTime& time) {
    return ToQString(jet::FormatGeneralDate(ToOleDate(time)));
}

bool IsDate(const QString& text) {
    return jet::IsDate(View(text));
}

bool IsNumeric(const QString& text) {
    return jet::IsNumeric(View(text));
}

QString FieldText(const jet::Value& value) {
    return ToQString(jet::ToText(value));
}

base::Result<QString> FieldText(jet::Recordset& rows, QStringView field) {
    ASSIGN_OR_RETURN(
        const jet::Value value,
        rows.Fields(std::u16string_view(field.utf16(), static_cast<std::size_t>(field.size()))));
    return FieldText(value);
}

}  // namespace catalogue
