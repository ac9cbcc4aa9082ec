// Rows of the catalogue as a file: CSV with a line of the columns' names, or JSON.
//   kJson       {"schema": 1, "columns": [names], "rows": [{name: value, ...}, ...]}, a row a line
//   kJsonLines  the objects alone, one a line
// Cells are those of cell.h.
#pragma once

#include "base/status.h"
#include "catalogue/progress_meter.h"
#include "jet/recordset.h"

#include <QtCore/QString>
#include <QtCore/QStringList>

#include <cstdint>
#include <functional>
#include <optional>
#include <string_view>

namespace exchange {

enum class Format : std::uint8_t { kCsv, kJson, kJsonLines };

// By the ending .csv, .json, .jsonl or .ndjson; nullopt: another one.
std::optional<Format> FormatOfFile(const QString& file_name);

// What "schema" says; it goes up when a reader of the old ones would misread the new ones.
inline constexpr int kSchemaVersion = 1;

// Takes the next bytes of the file.
using Sink = std::function<base::Status(std::string_view bytes)>;

struct WriteOptions {
    Format format = Format::kCsv;
    QStringList columns = {};      // by name, in any letter case; empty: all
    bool escape_formulas = false;  // kCsv only
};

// The positions of `columns` in `rows`; all for none. kInvalidArgument names the first that is not
// there.
base::Result<std::vector<std::size_t>> ColumnPlaces(const jet::Recordset& rows,
                                                    const QStringList& columns);

// Writes `rows` from the current one to the end; `total` is for `progress` (may be empty). The
// answer is how many there were. Errors of the database and of `sink` are handed on.
base::Result<std::int64_t> WriteRows(jet::Recordset& rows, const WriteOptions& options,
                                     const Sink& sink, const catalogue::Progress& progress = {},
                                     std::int64_t total = 0);

}  // namespace exchange
