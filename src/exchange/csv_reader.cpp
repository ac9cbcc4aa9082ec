#include "exchange/csv_reader.h"

#include "exchange/wtf8.h"

#include <algorithm>

namespace exchange {
CsvReader::CsvReader(std::string_view bytes) : bytes_(bytes) {
    if (bytes_.starts_with(kByteOrderMark)) bytes_.remove_prefix(kByteOrderMark.size());
}

bool CsvReader::Next(CsvRecord& record) {
    record.fields.clear();
    if (!status_.ok() || at_ >= bytes_.size()) return false;
    record.line = line_;
    while (true) {
        if (!ReadField(record.fields.emplace_back())) return false;
        if (at_ < bytes_.size() && bytes_[at_] == ',') {
            ++at_;
            continue;
        }
        if (at_ >= bytes_.size() || SkipLineEnd()) return true;
        return Fail(line_, "there is text behind a quoted field");
    }
}

bool CsvReader::ReadField(CsvField& field) {
    if (at_ < bytes_.size() && bytes_[at_] == '"') return ReadQuoted(field);
    const std::size_t end = std::min(bytes_.find_first_of(",\r\n", at_), bytes_.size());
    field.text = bytes_.substr(at_, end - at_);
    at_ = end;
    if (field.text.find('"') != std::string::npos)
        return Fail(line_, "there is a quote inside a field that is not quoted");
    return true;
}

// Stands on the opening quote.
bool CsvReader::ReadQuoted(CsvField& field) {
    const std::int64_t first_line = line_;
    field.quoted = true;
    ++at_;
    while (at_ < bytes_.size()) {
        const char c = bytes_[at_];
        if (c == '"') {
            ++at_;
            if (at_ >= bytes_.size() || bytes_[at_] != '"') return true;
        } else if (c == '\r' || c == '\n') {
            const std::size_t start = at_;
            SkipLineEnd();
            field.text += bytes_.substr(start, at_ - start);
            continue;
        }
        field.text += c;
        ++at_;
    }
    return Fail(first_line, "a quoted field does not end");
}

bool CsvReader::SkipLineEnd() {
    if (bytes_[at_] != '\r' && bytes_[at_] != '\n') return false;
    at_ += std::size_t{bytes_.substr(at_).starts_with("\r\n") ? 2U : 1U};
    ++line_;
    return true;
}

bool CsvReader::Fail(std::int64_t line, std::string_view what) {
    status_ = {base::StatusCode::kInvalidArgument,
               "line " + std::to_string(line) + ": " + std::string(what)};
    return false;
}

}  // namespace exchange
