// TableRecord: a row of the catalogue as the detail panel shows it; loading and saving it. Errors
// are the engine's.
#pragma once

#include "base/status.h"
#include "catalogue/detail_field.h"
#include "catalogue/local_paths.h"
#include "jet/connection.h"

#include <QtCore/QString>

#include <array>
#include <optional>

namespace browser {

using catalogue::DetailField;
using enum catalogue::DetailField;

// The values of a row. After a failure, those that were not read are empty, false or nullopt.
struct TableRecord {
    std::array<QString, kDetailFieldCount> fields;
    bool pin_mame = false;
    bool favorite = false;
    bool checks_read = false;             // all of the above was read
    std::optional<QString> times_played;  // empty for Null
    std::optional<QString> last_played;   // empty for Null
    bool operator==(const TableRecord&) const = default;
};

// Fills `record` from the first row with this FileName, field by field in a fixed order (the file
// date before the rules file). On failure `record` keeps what was read before. 3021: no such row.
// Requires: `record` is default-constructed.
base::Status LoadTableRecord(jet::Connection& connection, const QString& file_name,
                             TableRecord& record);

// The first of the fields image, flyer and rules file that is not blank and does not name an
// existing file; nullopt if there is none.
std::optional<DetailField> FirstMissingFile(const TableRecord& record,
                                            const catalogue::LocalPaths& paths);

// How many characters the columns of the fields take; 0: any number, or the column is missing.
using FieldLimits = std::array<int, kDetailFieldCount>;
FieldLimits LimitsOfFields(jet::Connection& connection);
// The first field whose text is too long for its column; nullopt: all fit.
std::optional<DetailField> FirstTooLong(const TableRecord& record, const FieldLimits& limits);

// Writes the check boxes and all fields except id, file date and rules text into the row with the
// record's id. On failure the row is unchanged. 3021: the row does not exist any more.
base::Status SaveTableRecord(jet::Connection& connection, const TableRecord& record);

// Writes only the rules text. 3021: the row does not exist any more.
base::Status SaveRulesText(jet::Connection& connection, const QString& id, const QString& text);

base::Status DeleteRecord(jet::Connection& connection, const QString& id);

}  // namespace browser
