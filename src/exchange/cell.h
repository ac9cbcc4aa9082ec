// A cell of a row as files of CSV and JSON have it, and how it becomes a value of a column of the
// database and comes of one. Both ways are without loss:
//   Null            CSV: nothing between the commas; JSON: null
//   empty text      CSV: ""
//   Yes/No          true, false (also read: yes, no, 1, 0, -1)
//   numbers         as many digits as bring the same number back
//   dates           2026-11-20 15:04:05, without the time at midnight; a date with a fraction of a
//                   second is the number of days since 1899-12-30 with all its digits. Read, too:
//                   whatever the database reads as a date.
//   bytes           Base64 (RFC 4648)
// Texts are US English, whatever the machine is set to.
#pragma once

#include "base/status.h"
#include "jet/values/schema.h"
#include "jet/values/value.h"

#include <string>

namespace exchange {

struct Cell {
    enum class Kind : unsigned char {
        kAbsent,  // the row does not speak of the column
        kNull,
        kText,
        kNumber,
        kTruth,
    };
    Kind kind = Kind::kAbsent;
    std::u16string text;  // kText
    double number = 0;    // kNumber
    bool truth = false;   // kTruth

    static Cell Null() { return {.kind = Kind::kNull, .text = {}}; }
    static Cell Text(std::u16string text) { return {.kind = Kind::kText, .text = std::move(text)}; }
    bool operator==(const Cell&) const = default;
};

// Appends the value as a CSV field. `escape_formulas`: a text that spreadsheets would run as a
// formula gets an apostrophe before it.
void AppendCsvCell(std::string& line, const jet::Value& value, bool escape_formulas);
// Takes that apostrophe away again.
void UnescapeFormula(std::u16string& text);

// Appends the value as JSON.
void AppendJsonCell(std::string& json, const jet::Value& value);
// Appends a JSON string, in quotes.
void AppendJsonText(std::string& json, std::u16string_view text);

// What the column stores for the cell. kInvalidArgument, or the engine's error: it cannot; the text
// says why. Requires: the cell is not absent.
base::Result<jet::Value> ValueOf(const Cell& cell, const jet::ColumnDesign& column);

}  // namespace exchange
