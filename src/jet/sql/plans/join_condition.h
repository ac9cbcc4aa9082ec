// JoinCondition: one of the conditions, joined by And, that a join is made by, and which sources it
// takes to test it.
#pragma once

#include "jet/sql/syntax/ast.h"

#include <memory>
#include <optional>
#include <vector>

namespace jet::sql {

// Which of a statement's sources are meant, by number.
class SourceMarks {
public:
    explicit SourceMarks(std::size_t sources) : marks_(sources) {}

    void Add(std::size_t source) { marks_[source] = true; }
    void Add(const SourceMarks& other);
    bool Has(std::size_t source) const { return marks_[source]; }
    bool IsEmpty() const;
    // Every one of these is among the others.
    bool IsWithin(const SourceMarks& others) const;
    std::size_t size() const { return marks_.size(); }

private:
    std::vector<bool> marks_;
};

struct JoinCondition {
    const Expression* test = nullptr;
    SourceMarks sources;
    bool varies = false;   // it names a column of a statement around this one
    bool changes = false;  // it has another value at each call
    // It could not be tested on some row, so that it is to be tested again where everything else
    // holds.
    bool undecided = false;
};

using JoinConditions = std::vector<std::unique_ptr<JoinCondition>>;

// The conditions of which `e` (nullptr: none) is the conjunction; what has a subquery comes last.
void AddConditions(const Expression* e, std::size_t sources, JoinConditions& conditions);

// The sides of an equality: one is computed from the sources joined so far, the other from those to
// be joined.
struct Link {
    const Expression* here = nullptr;
    const Expression* there = nullptr;
};
// `here` may have no source at all where `bare` says so. nullopt: it is no such equality.
std::optional<Link> FindLink(const JoinCondition& condition, const SourceMarks& here,
                             const SourceMarks& there, bool bare = false);

// Whether an expression names columns of statements around its own.
bool NamesOuterColumns(const Expression& e);

}  // namespace jet::sql
