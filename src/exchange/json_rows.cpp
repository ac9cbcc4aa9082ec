#include "exchange/json_rows.h"

#include "exchange/wtf8.h"

#include <algorithm>
#include <charconv>
#include <string>
#include <utility>

namespace exchange {
namespace {

constexpr std::string_view kBlanks = " \t\r\n";

}  // namespace

JsonRows::JsonRows(std::string_view bytes, int schema) : bytes_(bytes), known_schema_(schema) {
    if (bytes_.starts_with(kByteOrderMark)) bytes_.remove_prefix(kByteOrderMark.size());
    FindForm();
}

void JsonRows::FindForm() {
    SkipBlanks();
    if (Takes('[')) {
        form_ = Form::kArray;
        return;
    }
    const std::size_t start = at_;
    if (FindRowsMember()) {
        form_ = Form::kDocument;
    } else if (status_.ok()) {
        at_ = start;
    }
}

// Stands behind the bracket of "rows" afterwards. False: the first object has no such member, or
// is none; or its schema is unknown, which is a failure.
bool JsonRows::FindRowsMember() {
    if (!Takes('{')) return false;
    bool is_first = true;
    for (SkipBlanks(); at_ < bytes_.size() && bytes_[at_] != '}'; SkipBlanks()) {
        if (!std::exchange(is_first, false) && !Takes(',')) return false;
        const auto member = ReadMember();
        if (!member) return false;
        if (member->value.empty()) return true;
        if (!CheckSchema(*member)) return false;
    }
    return false;
}

// nullopt: here is no member. The rows themselves are not passed over.
std::optional<JsonRows::Member> JsonRows::ReadMember() {
    SkipBlanks();
    const std::size_t name_at = at_;
    if (!SkipText()) return std::nullopt;
    Member member{bytes_.substr(name_at, at_ - name_at), {}};
    SkipBlanks();
    if (!Takes(':')) return std::nullopt;
    SkipBlanks();
    const std::size_t value_at = at_;
    if (form_ != Form::kDocument && member.name == "\"rows\"" && Takes('[')) return member;
    if (!SkipValue()) return std::nullopt;
    member.value = bytes_.substr(value_at, at_ - value_at);
    return member;
}

// Another number may mean that cells are to be read in another way.
bool JsonRows::CheckSchema(const Member& member) {
    if (member.name != "\"schema\"") return true;
    int schema = 0;
    const char* const last = member.value.data() + member.value.size();
    const auto [end, error] = std::from_chars(member.value.data(), last, schema);
    // A column of this name in the first of several objects is none of ours.
    if (error != std::errc() || end != last) return true;
    if (schema >= 1 && schema <= known_schema_) return true;
    return Fail("the schema " + std::string(member.value) + " is not known here");
}

std::optional<JsonRow> JsonRows::Next() {
    if (!status_.ok() || is_done_) return std::nullopt;
    SkipBlanks();
    if (form_ == Form::kObjects) {
        if (at_ >= bytes_.size()) return std::nullopt;
        return ReadObject();
    }
    if (Takes(']')) {
        Finish();
        return std::nullopt;
    }
    if (!std::exchange(is_first_, false)) {
        if (!Takes(',')) {
            Fail("a comma or the end of the rows is missing");
            return std::nullopt;
        }
        SkipBlanks();
    }
    return ReadObject();
}

// Behind the last row: the rest of the document, and nothing else.
void JsonRows::Finish() {
    is_done_ = true;
    SkipBlanks();
    if (form_ == Form::kDocument) {
        while (Takes(',')) {
            const auto member = ReadMember();
            if (!member) {
                Fail("the object around the rows does not end");
                return;
            }
            if (!CheckSchema(*member)) return;
            if (member->name == "\"rows\"") {
                Fail("\"rows\" is there twice");
                return;
            }
            SkipBlanks();
        }
        if (!Takes('}')) Fail("the object around the rows does not end");
    }
    SkipBlanks();
    if (status_.ok() && at_ < bytes_.size()) Fail("there is text behind the rows");
}

void JsonRows::SkipBlanks() {
    at_ = std::min(bytes_.find_first_not_of(kBlanks, at_), bytes_.size());
}

bool JsonRows::Takes(char c) {
    if (at_ >= bytes_.size() || bytes_[at_] != c) return false;
    ++at_;
    return true;
}

bool JsonRows::SkipText() {
    if (!Takes('"')) return false;
    while (at_ < bytes_.size()) {
        const char c = bytes_[at_++];
        if (c == '"') return true;
        if (c == '\\' && at_ < bytes_.size()) ++at_;
    }
    return false;
}

// Up to where the value ends: the bracket that closes it, or what stands behind a number or a word.
bool JsonRows::SkipValue() {
    std::size_t depth = 0;
    const std::size_t start = at_;
    while (at_ < bytes_.size()) {
        const char c = bytes_[at_];
        if (c == '"') {
            if (!SkipText()) return false;
            if (depth == 0) return true;
            continue;
        }
        const bool closes = c == '}' || c == ']';
        const bool ends = closes || c == ',' || kBlanks.find(c) != std::string_view::npos;
        if (depth == 0 && ends) return at_ > start;
        ++at_;
        if (c == '{' || c == '[') ++depth;
        if (closes && --depth == 0) return true;
    }
    return depth == 0 && at_ > start;
}

std::optional<JsonRow> JsonRows::ReadObject() {
    line_ += std::count(bytes_.begin() + static_cast<std::ptrdiff_t>(counted_),
                        bytes_.begin() + static_cast<std::ptrdiff_t>(at_), '\n');
    counted_ = at_;
    const std::size_t start = at_;
    if (at_ >= bytes_.size() || bytes_[at_] != '{') {
        Fail("here should be an object");
        return std::nullopt;
    }
    if (!SkipValue()) {
        Fail("the object does not end");
        return std::nullopt;
    }
    return JsonRow{line_, bytes_.substr(start, at_ - start)};
}

bool JsonRows::Fail(std::string_view what) {
    const auto end = static_cast<std::ptrdiff_t>(std::min(at_, bytes_.size()));
    const auto line = 1 + std::count(bytes_.begin(), bytes_.begin() + end, '\n');
    status_ = {base::StatusCode::kInvalidArgument,
               "line " + std::to_string(line) + ": " + std::string(what)};
    return false;
}

}  // namespace exchange
