#include "jet/sql/syntax/token_reader.h"

#include "jet/values/calendar_names.h"

#include <algorithm>
#include <array>
#include <cstdint>

namespace jet::sql {
namespace {

constexpr std::u16string_view kReserved[] = {
    u"ADD",     u"ALL",        u"ALTER",      u"AND",    u"ANY",     u"AS",     u"BETWEEN",
    u"BY",      u"COLUMN",     u"CONSTRAINT", u"CREATE", u"DEFAULT", u"DELETE", u"DISTINCT",
    u"DROP",    u"EXISTS",     u"FOREIGN",    u"FROM",   u"GROUP",   u"HAVING", u"IN",
    u"INDEX",   u"INNER",      u"INSERT",     u"INTO",   u"IS",      u"JOIN",   u"KEY",
    u"LEFT",    u"LIKE",       u"NOT",        u"NULL",   u"ON",      u"OR",     u"ORDER",
    u"PRIMARY", u"REFERENCES", u"RIGHT",      u"SELECT", u"SET",     u"TABLE",  u"TOP",
    u"UNION",   u"UNIQUE",     u"UPDATE",     u"VALUES", u"WHERE",
};

static_assert(std::ranges::is_sorted(kReserved));

// Where in kReserved the words begin that begin with each letter, and where those of Z end.
constexpr auto kFirstOfLetter = [] {
    std::array<std::uint8_t, 27> first{};
    for (std::size_t letter = 0; letter < first.size(); ++letter)
        for (const std::u16string_view word : kReserved)
            if (static_cast<std::size_t>(word[0] - u'A') < letter) ++first[letter];
    return first;
}();

}  // namespace

bool IsReservedWord(std::u16string_view word) {
    if (word.empty() || !IsAsciiLetter(word[0])) return false;
    const auto letter = static_cast<std::size_t>(AsciiLower(word[0]) - u'a');
    return std::any_of(kReserved + kFirstOfLetter[letter], kReserved + kFirstOfLetter[letter + 1],
                       [&](std::u16string_view reserved) { return SameWord(reserved, word); });
}

const Token& TokenReader::Take() {
    const Token& token = Peek();
    last_end_ = token.end;
    if (at_ + 1 < tokens_.size()) ++at_;
    return token;
}

bool TokenReader::TakeSymbol(std::u16string_view symbol) {
    if (!IsSymbol(symbol)) return false;
    Take();
    return true;
}

bool TokenReader::TakeWord(std::u16string_view word) {
    if (!IsWord(word)) return false;
    Take();
    return true;
}

bool TokenReader::TakeWords(std::initializer_list<std::u16string_view> words) {
    std::size_t ahead = 0;
    for (const std::u16string_view word : words)
        if (!IsWord(word, ahead++)) return false;
    for (std::size_t i = 0; i < words.size(); ++i)
        Take();
    return true;
}

bool TokenReader::IsName(std::size_t ahead) const {
    const Token& token = Peek(ahead);
    return token.kind == TokenKind::kQuoted ||
           (token.kind == TokenKind::kWord && !IsReservedWord(token.text));
}

base::Result<std::u16string> TokenReader::TakeName(const base::Status& failure) {
    if (!IsName()) return failure;
    return std::u16string(Take().text);
}

base::Result<std::u16string> TokenReader::TakeName(ErrorNumber failure) {
    if (!IsName()) return JetError(failure);
    return std::u16string(Take().text);
}

std::u16string_view TokenReader::TextSince(std::size_t begin) const {
    return sql_.substr(begin, last_end_ > begin ? last_end_ - begin : 0);
}

}  // namespace jet::sql
