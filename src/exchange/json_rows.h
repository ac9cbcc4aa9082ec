// JsonRows: cuts a file of JSON into its rows, each the text of one object with the line where it
// begins. Takes the three forms that there are: an object with an array "rows" (what is beside it
// is passed over, but "schema" must be a number known here), an array of objects, and objects one
// after the other. Whether a row's text is valid JSON is not looked at, only where it ends; depth
// costs no memory. Nothing here throws.
#pragma once

#include "base/status.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace exchange {

struct JsonRow {
    std::int64_t line = 0;  // counted from 1
    std::string_view text;  // of the object, braces included
};

class JsonRows {
public:
    // `bytes`: the whole file; borrowed. `schema`: the largest number that is known.
    JsonRows(std::string_view bytes, int schema);

    // nullopt: there is no further row, or a failure (see status()).
    std::optional<JsonRow> Next();
    // kInvalidArgument: not a file of this kind; the text names the line.
    const base::Status& status() const { return status_; }

private:
    enum class Form { kObjects, kArray, kDocument };

    void FindForm();
    bool FindRowsMember();
    struct Member {
        std::string_view name;   // with its quotes
        std::string_view value;  // empty: an array of rows, which begins here
    };
    std::optional<Member> ReadMember();
    bool CheckSchema(const Member& member);
    void SkipBlanks();
    bool Takes(char c);
    bool SkipText();
    bool SkipValue();
    std::optional<JsonRow> ReadObject();
    void Finish();
    bool Fail(std::string_view what);

    std::string_view bytes_;
    int known_schema_;
    std::size_t at_ = 0;
    std::size_t counted_ = 0;  // lines are counted up to here
    std::int64_t line_ = 1;
    Form form_ = Form::kObjects;
    bool is_first_ = true;
    bool is_done_ = false;
    base::Status status_;
};

}  // namespace exchange
