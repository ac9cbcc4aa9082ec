// PinSubs: the start-up of the program and the small routines that every command shares: quoting,
// path pieces, dates as text, and the process-wide values.
#pragma once

#include "base/status.h"
#include "jet/connection.h"
#include "platform/clock.h"
#include "platform/settings_store.h"

#include <QtCore/QDateTime>
#include <QtCore/QString>
#include <QtCore/QStringList>

#include <array>
#include <cstdint>
#include <memory>

namespace catalogue {

// Settings live under this application name and section.
inline constexpr QStringView kSettingsApplication = u"TAVOLO";
inline constexpr QStringView kSettingsSection = u"GENERAL";

// Every "'" doubled. For values that INSERT and UPDATE write. Adds no enclosing quotes.
QString QuoteSql(const QString& value);
// Every "'" becomes "' & chr(39) & '", then every "|" becomes "' & chr(124) & '". For values
// compared in WHERE.
QString QuoteSqlExpr(const QString& value);

// Path pieces (see base/path_pieces.h).
QString GetFileName(const QString& path);
QString GetFolder(const QString& path);
QString StripExtension(const QString& file_name);
// `folder` ending in a separator of its own kind.
QString WithTrailingSeparator(const QString& folder);

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
// What a user may type where a date or a number is wanted.
bool IsDate(const QString& text);
bool IsNumeric(const QString& text);

// The text of a field's value: empty for Null, dates as general dates, booleans as True and False.
QString FieldText(const jet::Value& value);
// The named field of the current row as text; empty when it is Null. An error when it cannot be
// read.
base::Result<QString> FieldText(jet::Recordset& rows, QStringView field);

// Colours of the play button, Windows 0x00BBGGRR; index 0 is not used.
using StatusColourTable = std::array<std::uint32_t, 4>;

// The values that every part of the program shares; filled by Main.
struct ProcessValues {
    QString ApplicationFolder;  // without a trailing separator
    QString VisualPinballExe;
    StatusColourTable StatusColours{};
    bool SoundOn = false;
    bool MinimiseOnPlay = false;
    QString LastPictureDir;
};

// What the commands work on. Borrowed pointers; all live from Main to the end of the program.
struct Catalogue {
    jet::Connection* CatalogueConnection = nullptr;
    ProcessValues* values = nullptr;
    platform::SettingsStore* settings = nullptr;
    platform::Clock* clock = nullptr;
};

// Fills the process-wide values, opens `ApplicationFolder`/pinball.mdb, adds missing columns,
// stamps undated rows with today's date. A failure up to the opening of the database is returned,
// its message the engine's own description; later ones are ignored. Requires:
// values->ApplicationFolder is set and CatalogueConnection is closed.
base::Status Main(Catalogue& catalogue);

}  // namespace catalogue
