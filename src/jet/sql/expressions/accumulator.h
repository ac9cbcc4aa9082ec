// Accumulator: one aggregate over the rows of one group.
#pragma once

#include "base/status.h"
#include "jet/sql/expressions/evaluate.h"
#include "jet/sql/syntax/ast.h"

namespace jet::sql {

class Accumulator {
public:
    // `expression` is a bound aggregate and must outlive the accumulator.
    explicit Accumulator(const Expression& expression) : expression_(&expression) {}

    // Takes the row that `context` shows. Nulls do not count, except for Count(*), First and Last.
    base::Status Add(EvalContext& context);
    base::Result<Value> Result() const;

private:
    base::Status AddNumber(const Value& value);
    base::Status KeepSmaller(const Value& value, bool greater);
    base::Result<Value> Spread() const;

    const Expression* expression_;
    std::int64_t count_ = 0;
    double sum_ = 0;
    double mean_ = 0;  // running, with the sum of squared distances from it (Welford)
    double squares_ = 0;
    std::int64_t money_ = 0;
    bool all_money_ = true;
    Value kept_;
};

}  // namespace jet::sql
