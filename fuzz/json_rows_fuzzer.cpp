// Any bytes as a file of JSON: the rows are cut out of it, inside of it and one behind the other.
#include "exchange/json_rows.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    exchange::JsonRows rows(bytes, 1);
    const char* end = bytes.data();
    std::int64_t line = 1;
    while (const auto row = rows.Next()) {
        const bool is_inside = row->text.data() >= end &&
                               row->text.data() + row->text.size() <= bytes.data() + bytes.size();
        if (!is_inside || row->line < line || row->text.size() < 2) std::abort();
        // The bracket that closes it may be of the wrong kind: that is the parser's business.
        const char last = row->text.back();
        if (row->text.front() != '{' || (last != '}' && last != ']')) std::abort();
        end = row->text.data() + row->text.size();
        line = row->line;
    }
    if (rows.Next()) std::abort();
    return 0;
}
