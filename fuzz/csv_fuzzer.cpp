// Any bytes as a file of CSV: the reader ends, and what it takes is the same when it is written and
// read again.
#include "exchange/csv_reader.h"
#include "exchange/csv_writer.h"
#include "exchange/wtf8.h"

#include <cstdlib>

namespace {

using exchange::CsvField;
using Records = std::vector<std::vector<CsvField>>;

bool Read(std::string_view bytes, Records& records) {
    exchange::CsvReader reader(bytes);
    exchange::CsvRecord record;
    std::int64_t line = 0;
    while (reader.Next(record)) {
        if (record.line <= line || record.fields.empty()) std::abort();
        line = record.line;
        records.push_back(record.fields);
    }
    return reader.status().ok();
}

std::string Written(const Records& records) {
    std::string bytes;
    for (const auto& fields : records) {
        bool is_first = true;
        for (const CsvField& field : fields) {
            if (!is_first) bytes += ',';
            is_first = false;
            if (field.quoted || !field.text.empty()) exchange::AppendCsvText(bytes, field.text);
        }
        bytes += "\r\n";
    }
    return bytes;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    if (const auto text = exchange::FromWtf8(bytes)) {
        std::string again;
        exchange::AppendWtf8(again, *text);
        if (again != bytes) std::abort();
    }
    Records records;
    if (!Read(bytes, records)) return 0;
    Records again;
    if (!Read(Written(records), again) || again.size() != records.size()) std::abort();
    for (std::size_t i = 0; i < records.size(); ++i) {
        if (again[i].size() != records[i].size()) std::abort();
        for (std::size_t j = 0; j < records[i].size(); ++j)
            if (again[i][j].text != records[i][j].text) std::abort();
    }
    return 0;
}
