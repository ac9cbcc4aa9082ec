// Binding: names become places in the sources' rows, calls find their functions.
#pragma once

#include "base/status.h"
#include "jet/sql/functions/session.h"
#include "jet/sql/syntax/ast.h"
#include "jet/tables/database.h"
#include "jet/text/names.h"

#include <string>
#include <string_view>
#include <vector>

namespace jet::sql {

struct Source {
    std::u16string name;  // its alias, or the table's name
    Table* table = nullptr;
    std::vector<std::size_t> columns;  // those in use: positions in the table's design
};

// A column of a statement around a subquery that is used inside of it.
struct OuterUse {
    std::size_t depth = 1;  // 1: the statement just around it
    std::size_t source = 0;
    std::size_t slot = 0;
    std::u16string name;
};

// The sources that names of one statement may mean.
class Scope {
public:
    Scope() = default;
    // `outer` is that of the statement around, whose columns are known, too; it is needed as long
    // as names are being bound. nullptr: there is none.
    explicit Scope(Scope* outer) : outer_(outer) {}

    // 3078: no such table.
    base::Status Add(const std::u16string& table, const std::u16string& alias, Session& session);
    std::vector<Source>& sources() { return sources_; }
    const std::vector<Source>& sources() const { return sources_; }

    struct Place {
        std::size_t source = 0;
        std::size_t column = 0;  // position in the table's design
    };
    // 3061: no source has it; 3079: more than one has it.
    base::Result<Place> Find(std::u16string_view qualifier, std::u16string_view name) const;
    Scope* outer() const { return outer_; }
    void NoteOuterUse(OuterUse use) { outer_uses_.push_back(std::move(use)); }
    const std::vector<OuterUse>& outer_uses() const { return outer_uses_; }
    // Puts the column in use; its slot in the source's row.
    std::size_t Use(const Place& place);

private:
    Scope* outer_ = nullptr;
    std::vector<Source> sources_;
    std::vector<OuterUse> outer_uses_;
};

// Puts the tables of a FROM clause into the scope, and binds its conditions.
base::Status AddSources(FromNode& from, Scope& scope, Session& session);
base::Status BindJoins(FromNode& from, Scope& scope, Session& session);

// Binds `expression` in place. Aggregates are collected in `aggregates` (their slot is their place
// there); nullptr: none is allowed here (3095). 3085: no such function.
base::Status Bind(Expression& expression, Scope& scope, Session& session,
                  std::vector<const Expression*>* aggregates = nullptr);

// A deep copy.
ExpressionPtr Clone(const Expression& expression);
SelectStatement Clone(const SelectStatement& select);

// Equal in all but their places in the text. Requires: both are bound, or neither is.
bool SameExpression(const Expression& a, const Expression& b);

// Whether a subquery is in it.
bool HasSubquery(const Expression& expression);

// A column whose values are all the expression is.
bool IsColumn(const Expression& expression);

// Position in the design of the column named `name`, in any letter case; columns.size(): none.
std::size_t FindColumn(const TableDesign& design, std::u16string_view name);

}  // namespace jet::sql
