// Dates as the database counts and writes them.
#pragma once

#include <QtCore/QDateTime>
#include <QtCore/QString>

namespace catalogue {

// Days since 1899-12-30, as the database stores dates; the fraction of the second is dropped.
double ToOleDate(const QDateTime& time);
// "20-Nov-26": the named format "medium date".
QString MediumDate(const QDateTime& time);
// The day of `time` as a text for a date column: the medium date as long as the database reads it
// back as that day (two digits of a year are those of 1930 to 2029), later with all digits of the
// year, "1-Jan-2030".
QString StoredDate(const QDateTime& time);
// "11/20/2026 3:04:05 PM".
QString GeneralDate(const QDateTime& time);

}  // namespace catalogue
