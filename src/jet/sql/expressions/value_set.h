// ValueSet: the values of one kind that a list or a query gives, hashed.
#pragma once

#include "jet/sql/functions/operators.h"
#include "jet/values/value.h"

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <unordered_set>

namespace jet::sql {

// Values within one family are equal when their keys are (AppendEqualKey); what a comparison
// across families says depends on the values.
enum class Family : std::uint8_t { kMixed, kTexts, kNumbers, kDates };
Family FamilyOf(const Value& value);

class ValueSet {
public:
    // Null among them is noted. nullptr: they are not of one family.
    static std::unique_ptr<const ValueSet> Make(std::span<const Value> values);

    // Whether the value, which is not Null, equals one of them. nullopt: it is of another family.
    std::optional<Truth> Contains(const Value& value) const;

private:
    Family family_ = Family::kMixed;
    bool has_null_ = false;
    std::unordered_set<std::string> keys_;
};

}  // namespace jet::sql
