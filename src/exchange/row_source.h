// RowSource: the rows of a file as row_writer.h writes them, one after the other.
#pragma once

#include "base/status.h"
#include "exchange/cell.h"
#include "exchange/row_writer.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace exchange {

struct SourceRow {
    std::int64_t line = 0;
    // By RowSource::columns(); a row may have fewer.
    std::vector<Cell> cells;
    std::string problem;  // why the row cannot be used; empty: it can
};

class RowSource {
public:
    virtual ~RowSource() = default;
    // The columns met so far: with CSV all of them, with JSON those of the rows up to now.
    virtual const std::vector<std::u16string>& columns() const = 0;
    // Whether columns() are those of every row, before any was read.
    virtual bool columns_are_known() const = 0;
    // False: there is no further row, or the file cannot be read on (see status()).
    virtual bool Next(SourceRow& row) = 0;
    // kInvalidArgument: not a file of its kind; the text names the line.
    virtual const base::Status& status() const = 0;
};

// `bytes`: the whole file; borrowed. `unescape_formulas`: takes the apostrophes away that
// WriteOptions::escape_formulas has put there.
std::unique_ptr<RowSource> MakeRowSource(std::string_view bytes, Format format,
                                         bool unescape_formulas = false);

}  // namespace exchange
