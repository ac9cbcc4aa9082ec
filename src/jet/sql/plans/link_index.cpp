#include "jet/sql/plans/link_index.h"

#include "jet/sql/functions/sort_key.h"

#include <algorithm>

namespace jet::sql {
namespace {

char KindOf(const Value& value) {
    if (value.is<std::u16string>()) return 't';
    if (value.is<Date>()) return 'd';
    if (value.is<Guid>()) return 'g';
    if (value.is<Bytes>()) return 'b';
    return 'n';
}

}  // namespace

LinkKey LinkKeyOf(std::span<const Expression* const> expressions, EvalContext& context) {
    LinkKey key;
    for (const Expression* expression : expressions) {
        const auto value = Evaluate(*expression, context);
        key.failed = key.failed || !value.ok();
        if (!value.ok()) continue;
        key.null = key.null || value->is_null();
        key.kinds += KindOf(*value);
        AppendEqualKey(*value, key.values);
    }
    return key;
}

void LinkIndex::Add(std::uint32_t row, const LinkKey& key) {
    if (key.failed) {
        failed_.push_back(row);
        return;
    }
    if (key.null) return;
    Kind& kind = kinds_[key.kinds];
    kind.all.push_back(row);
    kind.by_values[key.values].push_back(row);
}

void LinkIndex::Find(const LinkKey& key, std::vector<std::uint32_t>& partners) const {
    partners.clear();
    if (key.null && !key.failed) return;
    for (const auto& [kinds, kind] : kinds_) {
        const bool comparable = !key.failed && kinds == key.kinds;
        const auto found = comparable ? kind.by_values.find(key.values) : kind.by_values.end();
        if (comparable && found == kind.by_values.end()) continue;
        const Rows& rows = comparable ? found->second : kind.all;
        partners.insert(partners.end(), rows.begin(), rows.end());
    }
    partners.insert(partners.end(), failed_.begin(), failed_.end());
    if (kinds_.size() > 1 || !failed_.empty()) std::ranges::sort(partners);
}

}  // namespace jet::sql
