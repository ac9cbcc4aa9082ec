#include "jet/sql/expressions/value_set.h"

#include "jet/sql/functions/sort_key.h"

namespace jet::sql {

Family FamilyOf(const Value& value) {
    if (value.is<std::u16string>()) return Family::kTexts;
    if (value.is<Date>()) return Family::kDates;
    const bool number = value.is<bool>() || value.is<std::uint8_t>() || value.is<std::int16_t>() ||
                        value.is<std::int32_t>() || value.is<float>() || value.is<double>();
    return number ? Family::kNumbers : Family::kMixed;
}

std::unique_ptr<const ValueSet> ValueSet::Make(std::span<const Value> values) {
    auto set = std::make_unique<ValueSet>();
    std::string key;
    for (const Value& value : values) {
        if (value.is_null()) {
            set->has_null_ = true;
            continue;
        }
        const Family family = FamilyOf(value);
        if (set->keys_.empty()) set->family_ = family;
        if (family != set->family_ || family == Family::kMixed) return nullptr;
        key.clear();
        AppendEqualKey(value, key);
        set->keys_.insert(key);
    }
    return set;
}

std::optional<Truth> ValueSet::Contains(const Value& value) const {
    // Amounts and decimals are compared with the numbers of this family as doubles.
    const bool number = value.is<Money>() || value.is<Numeric>();
    if (keys_.empty() || (number ? Family::kNumbers : FamilyOf(value)) != family_)
        return std::nullopt;
    std::string key;
    AppendEqualKey(value, key);
    if (keys_.contains(key)) return Truth::kTrue;
    return has_null_ ? Truth::kNull : Truth::kFalse;
}

}  // namespace jet::sql
