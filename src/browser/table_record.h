// TableRecord: one row of the catalogue as the detail panel shows it, its way out of the database
// and back. Errors are the engine's, with its number and text.
#pragma once

#include "base/status.h"
#include "jet/connection.h"

#include <QtCore/QString>

#include <array>
#include <optional>

namespace browser {

// Positions in the control array txtDet.
enum DetailField : int {
    kId = 0,
    kYear,
    kDisplayName,
    kFileName,
    kAuthor,
    kVersion,
    kCompany,
    kImageFile,
    kFlyerFile,
    kNotes,
    kRulesFile,
    kFileDate,
    kRulesText,
    kDetailFieldCount
};

// What a row gave, as far as it could be read: the rest is empty, unchecked or nullopt.
struct TableRecord {
    std::array<QString, kDetailFieldCount> fields;
    bool pin_mame = false;
    bool favorite = false;
    bool checks_read = false;             // everything above was read
    std::optional<QString> times_played;  // empty text: Null
    std::optional<QString> last_played;   // empty text: Null
    bool operator==(const TableRecord&) const = default;
};

// Fills `record` from the first row with this FileName, field by field in a fixed order (the file
// date before the rules file). On failure what was read so far stays in `record`. 3021: there is no
// such row. Requires: `record` is new.
base::Status LoadTableRecord(jet::Connection& connection, const QString& file_name,
                             TableRecord& record);

// The first of the fields image, flyer and rules file that is not blank and names no file; nullopt:
// all are right.
std::optional<DetailField> FirstMissingFile(const TableRecord& record);

// Writes the fields that a user may edit, and both check boxes, into the row with the id in
// `record`; rules text, id and file date are left alone. All or nothing. 3021: the row is gone.
base::Status SaveTableRecord(jet::Connection& connection, const TableRecord& record);

// Writes the rules text alone. 3021: the row is gone.
base::Status SaveRulesText(jet::Connection& connection, const QString& id, const QString& text);

base::Status DeleteRecord(jet::Connection& connection, const QString& id);

// True when a picture box shows this file: a text with a "." that names a file.
bool IsUsablePictureFile(const QString& path);

}  // namespace browser
