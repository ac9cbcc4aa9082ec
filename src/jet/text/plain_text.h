// Plain texts: printable ASCII whose characters have one weight each in the collation, which most
// texts are. Their order and keys come straight from a table; all others go through the
// collation.
#pragma once

#include <compare>
#include <optional>
#include <string>
#include <string_view>

namespace jet {

// The order that CompareText gives; nullopt: not both texts are plain and as short as a key.
std::optional<std::weak_ordering> ComparePlain(std::u16string_view a, std::u16string_view b);

// Appends what AppendTextKey (jet/collation.h) would; false: the text is not plain, and `key` is as
// before.
bool AppendPlainKey(std::u16string_view text, std::string& key);
// The same for a text of one byte a character.
bool AppendPlainKey(std::string_view narrow, std::string& key);

// A plain text no longer than a key, for comparing it with many others.
class PlainText {
public:
    // nullopt: the text is not plain.
    static std::optional<PlainText> Of(std::u16string_view text);

    // The order of `text` to this one; nullopt: it is not plain, or longer than a key.
    std::optional<std::weak_ordering> Order(std::u16string_view text) const;
    std::optional<std::weak_ordering> Order(std::string_view narrow) const;

private:
    std::string weights_;
};

}  // namespace jet
