#include "jet/sql/syntax/lexer.h"

#include "base/unicode.h"
#include "jet/errors.h"
#include "jet/sql/syntax/token_reader.h"
#include "jet/values/calendar_names.h"
#include "jet/values/conversions.h"

#include <cmath>
#include <limits>

namespace jet::sql {
namespace {

using base::Result;
using base::Status;

// Texts in messages are cut, so that a message stays readable.
constexpr std::size_t kMaxQuotationLength = 200;

bool IsNameStart(char16_t c) {
    return IsAsciiLetter(c) || c == u'_' || c == u'@' || (c >= 0x80 && !IsBlank(c));
}

bool IsNameUnit(char16_t c) {
    return IsNameStart(c) || IsAsciiDigit(c);
}

bool IsHexDigit(char16_t c) {
    return IsAsciiDigit(c) || (AsciiLower(c) >= u'a' && AsciiLower(c) <= u'f');
}

bool IsWordOperator(std::u16string_view word) {
    for (const std::u16string_view op : {u"Mod", u"Xor", u"Eqv", u"Imp", u"Alike"})
        if (SameWord(op, word)) return true;
    return false;
}

Value NumberValue(double number, bool whole) {
    if (whole && std::fabs(number) <= std::numeric_limits<std::int32_t>::max())
        return Value::Long(static_cast<std::int32_t>(number));
    return Value::Double(number);
}

class Lexer {
public:
    Lexer(std::u16string_view sql, int current_year) : sql_(sql), current_year_(current_year) {}

    Result<std::vector<Token>> Run() {
        constexpr std::size_t kUsualUnitsPerToken = 5;
        tokens_.reserve(sql_.size() / kUsualUnitsPerToken + 2);
        for (SkipBlanks(); at_ < sql_.size(); SkipBlanks())
            RETURN_IF_ERROR(TakeToken());
        Add(TokenKind::kEnd, at_, {});
        return std::move(tokens_);
    }

private:
    char16_t Peek(std::size_t ahead = 0) const {
        return at_ + ahead < sql_.size() ? sql_[at_ + ahead] : u'\0';
    }

    void SkipBlanks() {
        while (at_ < sql_.size() && IsBlank(sql_[at_]))
            ++at_;
    }

    Token& Add(TokenKind kind, std::size_t begin, std::u16string_view text) {
        static_assert(kMaxSqlLength <= std::numeric_limits<std::uint32_t>::max());
        Token& token = tokens_.emplace_back();
        token.kind = kind;
        token.text = text;
        token.begin = static_cast<std::uint32_t>(begin);
        token.end = static_cast<std::uint32_t>(at_);
        return token;
    }

    void AddLiteral(std::size_t begin, Value value) {
        Add(TokenKind::kLiteral, begin, {}).value = std::move(value);
    }

    Status TakeToken() {
        const char16_t c = Peek();
        if (c == u'\'' || c == u'"') return TakeText(c);
        if (c == u'[') return TakeQuotedName(u']');
        if (c == u'`') return TakeQuotedName(u'`');
        if (c == u'#') return TakeDate();
        if (IsAsciiDigit(c) || (c == u'.' && IsAsciiDigit(Peek(1)) && !AfterOperand()))
            return TakeNumber();
        if (c == u'&' && IsRadixNumber()) return TakeRadixNumber();
        if (IsNameStart(c)) return TakeWord();
        return TakeSymbol();
    }

    // True when the last token ends an operand: what follows is an operator then.
    bool AfterOperand() const {
        if (tokens_.empty()) return false;
        const Token& last = tokens_.back();
        if (last.kind == TokenKind::kWord)
            return SameWord(last.text, u"Null") ||
                   !(IsReservedWord(last.text) || IsWordOperator(last.text));
        return last.kind == TokenKind::kQuoted || last.kind == TokenKind::kLiteral ||
               last.text == u")";
    }

    Status TakeText(char16_t quote) {
        const std::size_t begin = at_++;
        std::u16string text;
        for (;;) {
            const std::size_t end = sql_.find(quote, at_);
            if (end == std::u16string_view::npos)
                return SyntaxError(" in string", sql_.substr(begin));
            text += sql_.substr(at_, end - at_);
            at_ = end + 1;
            if (Peek() != quote) break;
            text += quote;
            ++at_;
        }
        AddLiteral(begin, Value::Text(std::move(text)));
        return Status::Ok();
    }

    Status TakeQuotedName(char16_t close) {
        const std::size_t begin = at_;
        const std::size_t end = sql_.find(close, begin + 1);
        if (end == std::u16string_view::npos || end == begin + 1)
            return SyntaxError("", sql_.substr(begin));
        at_ = end + 1;
        Add(TokenKind::kQuoted, begin, sql_.substr(begin + 1, end - begin - 1));
        return Status::Ok();
    }

    Status TakeDate() {
        const std::size_t begin = at_;
        const std::size_t end = sql_.find(u'#', begin + 1);
        if (end == std::u16string_view::npos) return SyntaxError(" in date", sql_.substr(begin));
        const auto days = ParseDate(sql_.substr(begin + 1, end - begin - 1), current_year_);
        if (!days) return SyntaxError(" in date", sql_.substr(begin, end + 1 - begin));
        at_ = end + 1;
        AddLiteral(begin, Value::DateTime(*days));
        return Status::Ok();
    }

    void SkipDigits() {
        while (IsAsciiDigit(Peek()))
            ++at_;
    }

    bool ExponentFollows() const {
        if (AsciiLower(Peek()) != u'e') return false;
        const bool sign = Peek(1) == u'+' || Peek(1) == u'-';
        return IsAsciiDigit(Peek(sign ? 2 : 1));
    }

    Status TakeNumber() {
        const std::size_t begin = at_;
        bool whole = true;
        SkipDigits();
        if (Peek() == u'.') {
            whole = false;
            ++at_;
            SkipDigits();
        }
        if (ExponentFollows()) {
            whole = false;
            at_ += 2;
            SkipDigits();
        }
        if (IsNameStart(Peek())) return SyntaxError(" (missing operator)", sql_.substr(begin));
        const auto number = ParseNumber(sql_.substr(begin, at_ - begin));
        if (!number) return JetError(ErrorNumber::kOverflow);
        AddLiteral(begin, NumberValue(*number, whole));
        return Status::Ok();
    }

    // "&" before Hex(1) is an operator; &HE is a number.
    bool IsRadixNumber() const {
        const char16_t mark = AsciiLower(Peek(1));
        if ((mark != u'h' && mark != u'o') || AfterOperand()) return false;
        return IsHexDigit(Peek(2));
    }

    Status TakeRadixNumber() {
        const std::size_t begin = at_;
        at_ += 2;
        while (IsNameUnit(Peek()))
            ++at_;
        const auto number = ParseNumber(sql_.substr(begin, at_ - begin));
        if (!number) return SyntaxError("", sql_.substr(begin));
        AddLiteral(begin, NumberValue(*number, true));
        return Status::Ok();
    }

    Status TakeWord() {
        const std::size_t begin = at_;
        while (IsNameUnit(Peek()))
            ++at_;
        const std::u16string_view text = sql_.substr(begin, at_ - begin);
        if (Peek() == u'$') ++at_;  // Left$ is Left
        Add(TokenKind::kWord, begin, text);
        return Status::Ok();
    }

    Status TakeSymbol() {
        static constexpr std::u16string_view kPairs[] = {u"<>", u"<=", u">=", u"=<", u"=>"};
        static constexpr std::u16string_view kSingles = u"()+-*/\\^&=<>,.!;";
        const std::size_t begin = at_;
        for (const std::u16string_view pair : kPairs) {
            if (sql_.substr(at_, 2) != pair) continue;
            at_ += 2;
            Add(TokenKind::kSymbol, begin, pair);
            return Status::Ok();
        }
        const char16_t c = Peek();
        ++at_;
        if (c == u'?') {
            Add(TokenKind::kParameter, begin, {});
            return Status::Ok();
        }
        if (kSingles.find(c) == std::u16string_view::npos)
            return SyntaxError("", sql_.substr(begin));
        Add(TokenKind::kSymbol, begin, sql_.substr(begin, 1));
        return Status::Ok();
    }

    std::u16string_view sql_;  // the caller's, for the time of Run
    int current_year_;
    std::size_t at_ = 0;
    std::vector<Token> tokens_;
};

}  // namespace

base::Result<std::vector<Token>> Tokenize(std::u16string_view sql, int current_year) {
    if (sql.size() > kMaxSqlLength) return JetError(ErrorNumber::kQueryTooComplex);
    return Lexer(sql, current_year).Run();
}

base::Status SyntaxError(std::string_view what, std::u16string_view where) {
    where = TrimBlanks(where).substr(0, kMaxQuotationLength);
    return JetError(ErrorNumber::kInQueryExpression, "Syntax error" + std::string(what),
                    base::ToUtf8(where));
}

}  // namespace jet::sql
