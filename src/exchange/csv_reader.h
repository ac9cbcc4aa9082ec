// CsvReader: the records of a file of comma-separated values (RFC 4180). Lines end with CR LF, LF
// or CR; a quoted field may hold line ends, and a quote in it is doubled. Whether a field was
// quoted is told, because an empty one means Null without quotes and the empty text with them.
// Bytes are handed on as they are. Nothing here throws.
#pragma once

#include "base/status.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace exchange {

struct CsvField {
    std::string text;
    bool quoted = false;
    bool operator==(const CsvField&) const = default;
};

struct CsvRecord {
    std::int64_t line = 0;  // of its first character, counted from 1
    std::vector<CsvField> fields;
};

class CsvReader {
public:
    // `bytes`: the whole file; borrowed. A byte order mark at its start is passed over.
    explicit CsvReader(std::string_view bytes);

    // False: there is no further record, or a failure (see status()).
    bool Next(CsvRecord& record);
    // kInvalidArgument: not a file of this kind; the text names the line.
    const base::Status& status() const { return status_; }

private:
    bool ReadField(CsvField& field);
    bool ReadQuoted(CsvField& field);
    bool SkipLineEnd();
    bool Fail(std::int64_t line, std::string_view what);

    std::string_view bytes_;
    std::size_t at_ = 0;
    std::int64_t line_ = 1;
    base::Status status_;
};

}  // namespace exchange
