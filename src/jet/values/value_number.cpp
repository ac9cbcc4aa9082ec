#include "jet/values/value_number.h"

#include "jet/values/calendar_names.h"
#include "jet/values/conversions.h"
#include "jet/values/decimal.h"

namespace jet {

std::optional<bool> TruthWord(std::u16string_view text) {
    text = TrimBlanks(text);
    for (const std::u16string_view word : {u"True", u"Yes", u"On"})
        if (SameWord(text, word)) return true;
    for (const std::u16string_view word : {u"False", u"No", u"Off"})
        if (SameWord(text, word)) return false;
    return std::nullopt;
}

std::optional<double> NumberOf(const Value& value) {
    if (const auto* v = value.get_if<bool>()) return *v ? -1.0 : 0.0;
    if (const auto* v = value.get_if<std::uint8_t>()) return *v;
    if (const auto* v = value.get_if<std::int16_t>()) return *v;
    if (const auto* v = value.get_if<std::int32_t>()) return *v;
    if (const auto* v = value.get_if<Money>()) return static_cast<double>(v->units) / 10000.0;
    if (const auto* v = value.get_if<float>()) return static_cast<double>(*v);
    if (const auto* v = value.get_if<double>()) return *v;
    if (const auto* v = value.get_if<Date>()) return v->days;
    if (const auto* v = value.get_if<Numeric>()) return NumericToDouble(*v);
    if (const auto* v = value.get_if<std::u16string>()) return ParseNumber(*v);
    return std::nullopt;
}

}  // namespace jet
