// Binding: names become places in the sources' rows, calls find their functions.
#pragma once

#include "base/status.h"
#include "jet/database.h"
#include "jet/sql/ast.h"
#include "jet/sql/session.h"

#include <string>
#include <string_view>
#include <vector>

namespace jet::sql {

struct Source {
    std::u16string name;  // its alias, or the table's name
    Table* table = nullptr;
    std::vector<std::size_t> columns;  // those in use: positions in the table's design
};

// The sources that names of one statement may mean.
class Scope {
public:
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
    // Puts the column in use; its slot in the source's row.
    std::size_t Use(const Place& place);

private:
    std::vector<Source> sources_;
};

// Binds `expression` in place. Aggregates are collected in `aggregates` (their slot is their place
// there); nullptr: none is allowed here (3095). 3085: no such function.
base::Status Bind(Expression& expression, Scope& scope, Session& session,
                  std::vector<const Expression*>* aggregates = nullptr);

// A deep copy.
ExpressionPtr Clone(const Expression& expression);

// Equal in all but their places in the text. Requires: both are bound, or neither is.
bool SameExpression(const Expression& a, const Expression& b);

// A column whose values are all the expression is.
bool IsColumn(const Expression& expression);

// Position in the design of the column named `name`, in any letter case; columns.size(): none.
std::size_t FindColumn(const TableDesign& design, std::u16string_view name);

// Names of tables and columns: letter case does not count.
bool SameName(std::u16string_view a, std::u16string_view b);

}  // namespace jet::sql
