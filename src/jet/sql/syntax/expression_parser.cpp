#include "jet/sql/syntax/expression_parser.h"

#include "jet/errors.h"
#include "jet/sql/syntax/lexer.h"
#include "jet/sql/syntax/parser.h"
#include "jet/sql/syntax/statement_parser.h"
#include "jet/text/like.h"
#include "jet/values/calendar_names.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace jet::sql {
namespace {

using base::Result;
using base::Status;

enum Level : int {
    kImpLevel,
    kEqvLevel,
    kXorLevel,
    kOrLevel,
    kAndLevel,
    kNotLevel,
    kCompareLevel,
    kConcatLevel,
    kAddLevel,
    kModLevel,
    kIntDivideLevel,
    kMultiplyLevel,
    kSignLevel,
    kPowerLevel,
};

struct OperatorSpelling {
    std::u16string_view text;
    bool word;
    Operator op;
    int level;
};

constexpr OperatorSpelling kOperators[] = {
    {u"Imp", true, Operator::kImp, kImpLevel},
    {u"Eqv", true, Operator::kEqv, kEqvLevel},
    {u"Xor", true, Operator::kXor, kXorLevel},
    {u"Or", true, Operator::kOr, kOrLevel},
    {u"And", true, Operator::kAnd, kAndLevel},
    {u"=", false, Operator::kEqual, kCompareLevel},
    {u"<>", false, Operator::kNotEqual, kCompareLevel},
    {u"<", false, Operator::kLess, kCompareLevel},
    {u"<=", false, Operator::kLessEqual, kCompareLevel},
    {u"=<", false, Operator::kLessEqual, kCompareLevel},
    {u">", false, Operator::kGreater, kCompareLevel},
    {u">=", false, Operator::kGreaterEqual, kCompareLevel},
    {u"=>", false, Operator::kGreaterEqual, kCompareLevel},
    {u"&", false, Operator::kConcat, kConcatLevel},
    {u"+", false, Operator::kAdd, kAddLevel},
    {u"-", false, Operator::kSubtract, kAddLevel},
    {u"Mod", true, Operator::kMod, kModLevel},
    {u"\\", false, Operator::kIntDivide, kIntDivideLevel},
    {u"*", false, Operator::kMultiply, kMultiplyLevel},
    {u"/", false, Operator::kDivide, kMultiplyLevel},
    {u"^", false, Operator::kPower, kPowerLevel},
};

constexpr std::size_t kLongestOperator =
    std::ranges::max(kOperators, {}, [](const OperatorSpelling& o) {
        return o.text.size();
    }).text.size();

const OperatorSpelling* OperatorAt(const TokenReader& tokens) {
    const Token& token = tokens.Peek();
    if (token.kind != TokenKind::kWord && token.kind != TokenKind::kSymbol) return nullptr;
    if (token.text.size() > kLongestOperator) return nullptr;
    for (const OperatorSpelling& spelling : kOperators)
        if (spelling.word == (token.kind == TokenKind::kWord) &&
            SameWord(spelling.text, token.text))
            return &spelling;
    return nullptr;
}

struct NamedAggregate {
    std::u16string_view name;
    Aggregate aggregate;
};

constexpr NamedAggregate kAggregates[] = {
    {u"Count", Aggregate::kCount}, {u"Sum", Aggregate::kSum},     {u"Avg", Aggregate::kAvg},
    {u"Min", Aggregate::kMin},     {u"Max", Aggregate::kMax},     {u"First", Aggregate::kFirst},
    {u"Last", Aggregate::kLast},   {u"StDev", Aggregate::kStDev}, {u"StDevP", Aggregate::kStDevP},
    {u"Var", Aggregate::kVar},     {u"VarP", Aggregate::kVarP},
};

std::optional<Aggregate> FindAggregate(std::u16string_view name) {
    for (const NamedAggregate& named : kAggregates)
        if (SameWord(named.name, name)) return named.aggregate;
    return std::nullopt;
}

std::optional<Value> WordLiteral(std::u16string_view word) {
    if (SameWord(word, u"Null")) return Value::Null();
    for (const std::u16string_view name : {u"True", u"Yes", u"On"})
        if (SameWord(word, name)) return Value::Boolean(true);
    for (const std::u16string_view name : {u"False", u"No", u"Off"})
        if (SameWord(word, name)) return Value::Boolean(false);
    return std::nullopt;
}

}  // namespace

// A pattern with the wildcards of designs, in those of statements.
ExpressionPtr WithStars(ExpressionPtr pattern) {
    const auto* text =
        pattern->kind == NodeKind::kLiteral ? pattern->value.get_if<std::u16string>() : nullptr;
    if (text != nullptr) {
        pattern->value = Value::Text(PatternOfStars(*text));
        return pattern;
    }
    auto call = std::make_unique<Expression>();
    call->kind = NodeKind::kCall;
    call->name = kPatternOfStars;
    call->begin = pattern->begin;
    call->end = pattern->end;
    call->children.push_back(std::move(pattern));
    return call;
}

bool IsLogicChain(const Expression& e) {
    return e.kind == NodeKind::kChain && e.operators[0] <= Operator::kAnd;
}

bool IsTest(const Expression& e) {
    if (e.kind == NodeKind::kChain)
        return e.operators[0] >= Operator::kEqual && e.operators[0] <= Operator::kNotLike;
    return e.kind == NodeKind::kBetween || e.kind == NodeKind::kIn || e.kind == NodeKind::kIsNull;
}

bool NamesColumn(const Expression& e) {
    return e.kind == NodeKind::kName ||
           std::any_of(e.children.begin(), e.children.end(),
                       [](const ExpressionPtr& child) { return NamesColumn(*child); });
}

// Counts one level of nesting while it lives.
class ExpressionParser::Deeper {
public:
    explicit Deeper(int& depth) : depth_(depth) { ++depth_; }
    ~Deeper() { --depth_; }
    Deeper(const Deeper&) = delete;
    Deeper& operator=(const Deeper&) = delete;
    bool too_deep() const { return depth_ > kDeepestNesting; }

private:
    int& depth_;
};

ExpressionPtr ExpressionParser::NewNode(NodeKind kind, std::size_t begin) const {
    auto node = std::make_unique<Expression>();
    node->kind = kind;
    node->begin = begin;
    node->end = tokens_.last_end();
    return node;
}

Status ExpressionParser::MissingOperator() const {
    return SyntaxError(" (missing operator)", tokens_.TextFrom(begin_));
}

Result<ExpressionPtr> ExpressionParser::Parse() {
    begin_ = tokens_.Peek().begin;
    return ParseLevel(kImpLevel);
}

Result<ExpressionPtr> ExpressionParser::ParseRule() {
    ASSIGN_OR_RETURN(ExpressionPtr rule, Parse());
    return column_.empty() ? std::move(rule) : CompleteRule(std::move(rule));
}

bool ExpressionParser::StartsTest() const {
    const OperatorSpelling* spelling = OperatorAt(tokens_);
    if (spelling != nullptr) return spelling->level == kCompareLevel;
    for (const std::u16string_view word : {u"LIKE", u"ALIKE", u"IN", u"BETWEEN", u"IS"})
        if (tokens_.IsWord(word)) return true;
    return false;
}

ExpressionPtr ExpressionParser::NewColumn(std::size_t begin) const {
    ExpressionPtr column = NewNode(NodeKind::kName, begin);
    column->name = column_;
    return column;
}

// Values that stand where a condition is meant are what the column is to equal.
ExpressionPtr ExpressionParser::CompleteRule(ExpressionPtr rule) const {
    if (IsLogicChain(*rule) || rule->kind == NodeKind::kNot) {
        for (ExpressionPtr& child : rule->children)
            child = CompleteRule(std::move(child));
        return rule;
    }
    if (IsTest(*rule) || NamesColumn(*rule)) return rule;
    ExpressionPtr test = NewNode(NodeKind::kChain, rule->begin);
    test->operators.push_back(Operator::kEqual);
    test->children.push_back(NewColumn(rule->begin));
    test->children.push_back(std::move(rule));
    return test;
}

Result<ExpressionPtr> ExpressionParser::ParseLevel(int lowest) {
    ASSIGN_OR_RETURN(ExpressionPtr left, ParsePrefix(lowest));
    bool tested = false;
    for (;;) {
        if (lowest <= kCompareLevel) {
            ASSIGN_OR_RETURN(const bool test, ParseTest(left));
            if (test) {
                RETURN_IF_ERROR(CountTest(tested));
                continue;
            }
        }
        const OperatorSpelling* spelling = OperatorAt(tokens_);
        if (spelling == nullptr || spelling->level < lowest) return left;
        if (spelling->level == kCompareLevel) {
            RETURN_IF_ERROR(CountTest(tested));
            ASSIGN_OR_RETURN(const bool query, ParseComparedQuery(left, spelling->op));
            if (query) continue;
        }
        ASSIGN_OR_RETURN(left, ParseChain(std::move(left), spelling->level));
    }
}

// A test of what a test gave goes one level deeper, and its parentheses may hold others.
Status ExpressionParser::CountTest(bool& tested) {
    if (std::exchange(tested, true) && ++tokens_.tests_of_tests() > kDeepestNesting)
        return JetError(ErrorNumber::kQueryTooComplex);
    return Status::Ok();
}

Result<ExpressionPtr> ExpressionParser::ParseChain(ExpressionPtr first, int level) {
    ExpressionPtr chain = NewNode(NodeKind::kChain, first->begin);
    chain->children.push_back(std::move(first));
    for (const OperatorSpelling* next = OperatorAt(tokens_);
         next != nullptr && next->level == level; next = OperatorAt(tokens_)) {
        tokens_.Take();
        chain->operators.push_back(next->op);
        ASSIGN_OR_RETURN(ExpressionPtr operand, ParseLevel(level + 1));
        chain->children.push_back(std::move(operand));
    }
    chain->end = tokens_.last_end();
    return chain;
}

Result<bool> ExpressionParser::ParseTest(ExpressionPtr& value) {
    const std::size_t begin = value->begin;
    if (tokens_.TakeWord(u"IS")) {
        const bool negated = tokens_.TakeWord(u"NOT");
        if (!tokens_.TakeWord(u"NULL")) return MissingOperator();
        ExpressionPtr test = NewNode(NodeKind::kIsNull, begin);
        test->negated = negated;
        test->children.push_back(std::move(value));
        value = std::move(test);
        return true;
    }
    bool negated = false;
    const std::size_t ahead = tokens_.IsWord(u"NOT") ? 1 : 0;
    const bool stars = rule_ && tokens_.IsWord(u"LIKE", ahead);
    const bool like = tokens_.IsWord(u"LIKE", ahead) || tokens_.IsWord(u"ALIKE", ahead);
    const bool in = tokens_.IsWord(u"IN", ahead);
    if (!like && !in && !tokens_.IsWord(u"BETWEEN", ahead)) return false;
    if (ahead == 1) negated = tokens_.TakeWord(u"NOT");
    tokens_.Take();
    if (like) {
        ASSIGN_OR_RETURN(ExpressionPtr pattern, ParseLevel(kConcatLevel));
        ExpressionPtr test = NewNode(NodeKind::kChain, begin);
        test->operators.push_back(negated ? Operator::kNotLike : Operator::kLike);
        test->children.push_back(std::move(value));
        test->children.push_back(stars ? WithStars(std::move(pattern)) : std::move(pattern));
        value = std::move(test);
        return true;
    }
    ASSIGN_OR_RETURN(value, in ? ParseIn(std::move(value)) : ParseBetween(std::move(value)));
    value->negated = negated;
    return true;
}

Result<bool> ExpressionParser::ParseComparedQuery(ExpressionPtr& value, Operator op) {
    const bool all = tokens_.IsWord(u"ALL", 1);
    if (!all && !tokens_.IsWord(u"ANY", 1) && !tokens_.IsWord(u"SOME", 1)) return false;
    if (!tokens_.IsQuery(2)) return false;
    tokens_.Take();
    tokens_.Take();
    ASSIGN_OR_RETURN(ExpressionPtr test, ParseQuery(NodeKind::kComparedQuery, value->begin));
    test->operators.push_back(op);
    test->all = all;
    test->children.push_back(std::move(value));
    value = std::move(test);
    return true;
}

Result<ExpressionPtr> ExpressionParser::ParseQuery(NodeKind kind, std::size_t begin) {
    ASSIGN_OR_RETURN(SelectStatement select, StatementParser(tokens_).ParseSubquery());
    ExpressionPtr query = NewNode(kind, begin);
    query->select = std::make_shared<const SelectStatement>(std::move(select));
    return query;
}

Result<ExpressionPtr> ExpressionParser::ParseIn(ExpressionPtr value) {
    if (tokens_.IsQuery()) {
        ASSIGN_OR_RETURN(ExpressionPtr query, ParseQuery(NodeKind::kInQuery, value->begin));
        query->children.push_back(std::move(value));
        return query;
    }
    ExpressionPtr test = NewNode(NodeKind::kIn, value->begin);
    test->children.push_back(std::move(value));
    if (!tokens_.TakeSymbol(u"(")) return MissingOperator();
    RETURN_IF_ERROR(ParseArguments(*test));
    if (test->children.size() < 2) return MissingOperator();
    return test;
}

Result<ExpressionPtr> ExpressionParser::ParseBetween(ExpressionPtr value) {
    ExpressionPtr test = NewNode(NodeKind::kBetween, value->begin);
    test->children.push_back(std::move(value));
    ASSIGN_OR_RETURN(ExpressionPtr low, ParseLevel(kConcatLevel));
    test->children.push_back(std::move(low));
    if (!tokens_.TakeWord(u"AND")) return MissingOperator();
    ASSIGN_OR_RETURN(ExpressionPtr high, ParseLevel(kConcatLevel));
    test->children.push_back(std::move(high));
    test->end = tokens_.last_end();
    return test;
}

Result<ExpressionPtr> ExpressionParser::ParsePrefix(int lowest) {
    const std::size_t begin = tokens_.Peek().begin;
    if (!column_.empty() && lowest <= kCompareLevel && StartsTest()) return NewColumn(begin);
    const bool prefixed =
        tokens_.IsWord(u"NOT") || tokens_.IsSymbol(u"+") || tokens_.IsSymbol(u"-");
    if (!prefixed) return ParseOperand();
    const Deeper deeper(tokens_.nesting());
    if (deeper.too_deep()) return JetError(ErrorNumber::kQueryTooComplex);
    if (tokens_.TakeWord(u"NOT")) {
        ASSIGN_OR_RETURN(ExpressionPtr operand, ParseLevel(kCompareLevel));
        ExpressionPtr node = NewNode(NodeKind::kNot, begin);
        node->children.push_back(std::move(operand));
        return node;
    }
    if (tokens_.TakeSymbol(u"+")) return ParseLevel(kPowerLevel);
    tokens_.Take();  // a minus
    ASSIGN_OR_RETURN(ExpressionPtr operand, ParseLevel(kPowerLevel));
    ExpressionPtr node = NewNode(NodeKind::kNegate, begin);
    node->children.push_back(std::move(operand));
    return node;
}

Result<ExpressionPtr> ExpressionParser::ParseOperand() {
    const Token& token = tokens_.Peek();
    const std::size_t begin = token.begin;
    if (token.kind == TokenKind::kLiteral) {
        Value value = tokens_.Take().value;
        ExpressionPtr node = NewNode(NodeKind::kLiteral, begin);
        node->value = std::move(value);
        return node;
    }
    if (tokens_.IsQuery()) return ParseQuery(NodeKind::kScalarQuery, begin);
    if (tokens_.IsSymbol(u"(")) return ParseParentheses();
    if (tokens_.IsWord(u"EXISTS") && tokens_.IsQuery(1)) {
        tokens_.Take();
        return ParseQuery(NodeKind::kExists, begin);
    }
    if (token.kind == TokenKind::kParameter) return JetError(ErrorNumber::kParameterMissing);
    const bool qualifies = tokens_.IsSymbol(u".", 1) || tokens_.IsSymbol(u"!", 1);
    if (token.kind == TokenKind::kWord && !qualifies) {
        if (tokens_.IsSymbol(u"(", 1)) return ParseCall();
        if (auto literal = WordLiteral(token.text)) {
            tokens_.Take();
            ExpressionPtr node = NewNode(NodeKind::kLiteral, begin);
            node->value = std::move(*literal);
            return node;
        }
    }
    return ParseName();
}

Result<ExpressionPtr> ExpressionParser::ParseParentheses() {
    const Deeper deeper(tokens_.nesting());
    if (deeper.too_deep()) return JetError(ErrorNumber::kQueryTooComplex);
    tokens_.Take();
    ASSIGN_OR_RETURN(ExpressionPtr inner, ParseLevel(kImpLevel));
    if (!tokens_.TakeSymbol(u")")) return MissingOperator();
    return inner;
}

Result<ExpressionPtr> ExpressionParser::ParseName() {
    const std::size_t begin = tokens_.Peek().begin;
    if (!tokens_.IsName()) return MissingOperator();
    std::u16string name(tokens_.Take().text);
    std::u16string qualifier;
    if (tokens_.IsSymbol(u".") || tokens_.IsSymbol(u"!")) {
        tokens_.Take();
        qualifier = std::move(name);
        const Token& token = tokens_.Peek();  // after a dot no word is reserved
        if (token.kind != TokenKind::kQuoted && token.kind != TokenKind::kWord)
            return MissingOperator();
        name = tokens_.Take().text;
    }
    ExpressionPtr node = NewNode(NodeKind::kName, begin);
    node->qualifier = std::move(qualifier);
    node->name = std::move(name);
    return node;
}

Result<ExpressionPtr> ExpressionParser::ParseCall() {
    const std::size_t begin = tokens_.Peek().begin;
    std::u16string name(tokens_.Take().text);
    tokens_.Take();  // the parenthesis
    const auto aggregate = FindAggregate(name);
    ExpressionPtr node = NewNode(aggregate ? NodeKind::kAggregate : NodeKind::kCall, begin);
    node->name = std::move(name);
    if (aggregate) node->aggregate = *aggregate;
    if (aggregate == Aggregate::kCount && tokens_.TakeSymbol(u"*")) {
        if (!tokens_.TakeSymbol(u")")) return MissingOperator();
    } else {
        RETURN_IF_ERROR(ParseArguments(*node));
        if (aggregate && node->children.size() != 1) return MissingOperator();
    }
    node->end = tokens_.last_end();
    return node;
}

Status ExpressionParser::ParseArguments(Expression& call) {
    if (tokens_.TakeSymbol(u")")) return Status::Ok();
    const Deeper deeper(tokens_.nesting());
    if (deeper.too_deep()) return JetError(ErrorNumber::kQueryTooComplex);
    do {
        ASSIGN_OR_RETURN(ExpressionPtr argument, ParseLevel(kImpLevel));
        call.children.push_back(std::move(argument));
    } while (tokens_.TakeSymbol(u","));
    if (!tokens_.TakeSymbol(u")")) return MissingOperator();
    call.end = tokens_.last_end();
    return Status::Ok();
}

}  // namespace jet::sql
