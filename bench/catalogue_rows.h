// The rows of the generated catalogue, and what a question answered: the same for the engine and
// its peers.
#pragma once

#include "base/unicode.h"
#include "jet/values/value.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace bench {

inline std::u16string Number(long long n) {
    return base::ToUtf16(std::to_string(n));
}

// The columns of the catalogue in their order; the ID is Null, as the tables give it out.
inline std::vector<jet::Value> CatalogueRow(int i, int rows) {
    using jet::Value;
    std::vector<Value> row(19);
    row[1] = Value::Text(u"Table number " + Number(i * 7919LL % rows));
    row[2] = Value::Text(u"C:\\Visual Pinball\\Tables\\Table " + Number(i) + u".vpt");
    row[3] = Value::Text(u"Author " + Number(i * 31LL % 500));
    row[4] = Value::Text(u"Company " + Number(i * 17LL % 40));
    row[5] = Value::Text(Number(1950 + i % 60));
    row[9] = Value::Text(u"Notes of table " + Number(i) + u", a line of them");
    row[10] = Value::Boolean(i % 3 == 0);
    row[11] = Value::Boolean(false);
    row[13] = Value::DateTime(38000 + i % 9000 + 0.5);
    row[15] = Value::Long(i % 50);
    row[17] = Value::DateTime(46000 + i % 300);
    row[18] = Value::Text(u"89ABCDEF");
    return row;
}

// How much of a result was brought to the caller.
struct Answer {
    std::size_t rows = 0;
    std::size_t cells = 0;  // that are not Null
    std::size_t units = 0;  // of UTF-16, over all cells
};

// What a result says, whatever the order of its rows: texts by their units, everything else as
// the number it is.
class Content {
public:
    void AddText(std::u16string_view text) { Mix(std::hash<std::u16string_view>()(text)); }
    void AddNumber(double number) { Mix(std::hash<double>()(number)); }
    void AddNull() { Mix(1); }
    void EndRow() {
        sum_ += row_;
        row_ = 0;
        ++rows_;
    }
    std::size_t rows() const { return rows_; }
    bool operator==(const Content&) const = default;

private:
    void Mix(std::uint64_t hash) { row_ = (row_ ^ hash) * 0x9E3779B97F4A7C15U + 1; }

    std::uint64_t row_ = 0;
    std::uint64_t sum_ = 0;
    std::size_t rows_ = 0;
};

}  // namespace bench
