// The tree that the parser makes of a statement. Plain data; the binder fills in where names lead.
#pragma once

#include "jet/values/schema.h"
#include "jet/values/value.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace jet::sql {

struct Function;

enum class Operator : std::uint8_t {
    kImp,
    kEqv,
    kXor,
    kOr,
    kAnd,
    kEqual,
    kNotEqual,
    kLess,
    kLessEqual,
    kGreater,
    kGreaterEqual,
    kLike,
    kNotLike,
    kConcat,
    kAdd,
    kSubtract,
    kMod,
    kIntDivide,
    kMultiply,
    kDivide,
    kPower,
};

enum class NodeKind : std::uint8_t {
    kLiteral,
    kName,    // not bound yet
    kColumn,  // a column of a source
    kNot,
    kNegate,
    kChain,    // children[0] operators[0] children[1] operators[1] ...: operators of one precedence
    kBetween,  // children: value, low, high
    kIn,       // children: value, choices
    kIsNull,
    kCall,       // a function of its arguments
    kAggregate,  // Count, Sum ... over the rows of a group
    kOuter,      // a column of a statement around this one
    // Subqueries. Behind the children that are named here come, once it is bound, the columns of
    // statements around it that it uses: kColumn of the expression's own statement, kOuter of
    // others.
    kScalarQuery,    // no children
    kExists,         // no children
    kInQuery,        // children: value
    kComparedQuery,  // children: value; operators[0]; with any or all of the query's values
};

enum class Aggregate : std::uint8_t {
    kCount,
    kSum,
    kAvg,
    kMin,
    kMax,
    kFirst,
    kLast,
    kStDev,
    kStDevP,
    kVar,
    kVarP,
};

struct Expression;
struct SelectStatement;
class Subquery;
class ValueSet;
using ExpressionPtr = std::unique_ptr<Expression>;

struct Expression {
    NodeKind kind = NodeKind::kLiteral;
    Value value;
    std::u16string qualifier;  // of a name: the source's name, or empty
    std::u16string name;
    std::vector<ExpressionPtr> children;
    std::vector<Operator> operators;
    bool negated = false;  // Not Between, Not In, Is Not Null
    bool all = false;      // of a compared query: All, not Any
    // Of a subquery, as it was parsed: never changed, and shared by all copies of the expression.
    std::shared_ptr<const SelectStatement> select;
    Aggregate aggregate = Aggregate::kCount;  // Count(*) has no children
    std::size_t begin = 0;                    // place in the SQL text
    std::size_t end = 0;
    // Set by the binder.
    std::size_t source = 0;
    std::size_t slot =
        0;  // of a column: its place among the source's columns in use; of an aggregate: its number
    std::size_t depth = 0;  // of an outer column: 1 for the statement just around this one
    const Function* function = nullptr;
    // A copy of the bound expression shares it: both belong to one statement.
    std::shared_ptr<Subquery> subquery;
    std::shared_ptr<const ValueSet> choices;  // of kIn: the constants, where they are hashed
};

struct OutputItem {
    ExpressionPtr expression;  // nullptr: every column (of the source `star_of`, or of all)
    std::u16string star_of;
    std::u16string alias;
};

struct OrderItem {
    ExpressionPtr expression;
    bool descending = false;
};

enum class JoinKind : std::uint8_t { kInner, kLeft, kRight };

// A table, or two sources joined.
struct FromNode {
    std::u16string table;
    std::u16string alias;
    JoinKind kind = JoinKind::kInner;
    std::unique_ptr<FromNode> left;  // set for a join, as is `right`
    std::unique_ptr<FromNode> right;
    ExpressionPtr on;        // nullptr: every combination
    std::size_t source = 0;  // of a table: its place among the sources; set by the binder
};

struct SelectStatement {
    std::u16string into;  // the new table that takes the rows; empty: none
    bool distinct = false;
    std::optional<std::int64_t> top;
    bool top_percent = false;
    std::vector<OutputItem> outputs;
    std::unique_ptr<FromNode> from;  // nullptr: none
    ExpressionPtr where;
    std::vector<ExpressionPtr> group_by;
    ExpressionPtr having;
    std::vector<OrderItem> order_by;  // with `unions`: of the whole
    struct Union {
        bool all = false;
        std::unique_ptr<SelectStatement> select;
    };
    std::vector<Union> unions;
};

struct InsertStatement {
    std::u16string table;
    std::vector<std::u16string> columns;  // empty: all, in their order
    std::vector<ExpressionPtr> values;
    std::unique_ptr<SelectStatement> select;  // instead of `values`
};

struct Assignment {
    ExpressionPtr target;  // a name
    ExpressionPtr value;
};

struct UpdateStatement {
    std::unique_ptr<FromNode> from;
    std::vector<Assignment> assignments;
    ExpressionPtr where;
};

struct DeleteStatement {
    std::u16string target;  // the source whose rows go; empty: the only one
    std::unique_ptr<FromNode> from;
    ExpressionPtr where;
};

struct IndexColumnName {
    std::u16string name;
    bool descending = false;
};

struct IndexDefinition {
    std::u16string name;
    std::vector<IndexColumnName> columns;
    bool primary = false;
    bool unique = false;
    bool required = false;
    bool ignore_nulls = false;
};

// What constraints ask for. The relations' own table is the one of the statement.
struct Constraints {
    std::vector<IndexDefinition> indexes;
    std::vector<RelationDesign> relations;
};

struct CreateTableStatement {
    std::u16string table;
    std::vector<ColumnDesign> columns;
    Constraints constraints;
};

struct CreateIndexStatement {
    std::u16string table;
    IndexDefinition index;
};

enum class AlterKind : std::uint8_t {
    kAddColumn,
    kAlterColumn,
    kSetDefault,
    kDropColumn,
    kAddConstraint,
    kDropConstraint
};

struct AlterTableStatement {
    std::u16string table;
    AlterKind kind = AlterKind::kAddColumn;
    std::vector<ColumnDesign> columns;  // kSetDefault: name and default only
    Constraints constraints;            // of new columns, or the new one
    std::vector<std::u16string> names;  // what is dropped
};

struct DropStatement {
    std::u16string table;
    std::u16string index;  // empty: the table goes
};

using Statement =
    std::variant<SelectStatement, InsertStatement, UpdateStatement, DeleteStatement,
                 CreateTableStatement, CreateIndexStatement, AlterTableStatement, DropStatement>;

}  // namespace jet::sql
