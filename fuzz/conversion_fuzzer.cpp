// Texts of dates, numbers and GUIDs, format patterns, and the conversion of values into columns.
// What was read must be written and read again as the same.
#include "base/unicode.h"
#include "jet/sql/functions/format_number.h"
#include "jet/text/like.h"
#include "jet/values/coerce.h"
#include "jet/values/conversions.h"
#include "jet/values/decimal.h"
#include "jet/values/guid_text.h"
#include "jet/values/number_text.h"

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <string_view>

namespace {

void Require(bool ok) {
    if (!ok) std::abort();
}

void Dates(std::u16string_view text) {
    const auto days = jet::ParseDate(text, 2026);
    Require(days.has_value() == jet::ParseDate(text, 2026).has_value());
    if (!days) return;
    const auto civil = jet::CivilFromDays(*days);
    Require(civil.has_value());
    Require(jet::DaysFromCivil(*civil) == *days);
    // A date of the years that are written with two digits less is read as another one.
    if (civil->year < 100) return;
    const auto again = jet::ParseDate(jet::FormatGeneralDate(*days), 2026);
    Require(again.has_value() && *again == *days);
}

void Numbers(std::u16string_view text) {
    const auto number = jet::ParseNumber(text);
    Require(number.has_value() == jet::IsNumeric(text));
    if (number && std::isfinite(*number)) {
        const auto again = jet::ParseNumber(jet::FormatNumber(*number));
        Require(again.has_value() && std::fabs(*again - *number) <= std::fabs(*number) * 1e-14);
    }
    if (const auto plain = jet::PlainNumber(text)) {
        const auto numeric = jet::NumericFromText(*plain, 28, 4);
        if (numeric) {
            const auto again = jet::NumericFromText(jet::NumericText(*numeric), 28, 4);
            Require(again.has_value() && *again == *numeric);
        }
    }
    if (const auto guid = jet::ParseGuid(text))
        Require(jet::ParseGuid(jet::GuidText(*guid)) == guid);
}

void Columns(std::u16string_view text, double number) {
    for (int type = 1; type <= 0x11; ++type) {
        jet::ColumnDesign column;
        column.type = static_cast<jet::ColumnType>(type);
        column.size = 20;
        column.scale = 3;
        for (const jet::Value& value :
             {jet::Value::Text(text), jet::Value::Double(number), jet::Value::DateTime(number),
              jet::Value::Single(static_cast<float>(number)), jet::Value::Boolean(true)}) {
            const auto stored = jet::Coerce(value, column);
            if (!stored.ok()) continue;
            const auto again = jet::Coerce(*stored, column);
            Require(again.ok());
            static_cast<void>(jet::ToText(*stored));
            static_cast<void>(jet::ToInteger(*stored));
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    if (size < sizeof(double) || size > 600) return 0;
    double number = 0;
    std::memcpy(&number, data, sizeof number);
    const std::u16string text = base::ToUtf16(std::string_view(
        reinterpret_cast<const char*>(data) + sizeof number, size - sizeof number));
    Dates(text);
    Numbers(text);
    Columns(text, number);
    const auto civil = jet::CivilFromDays(number);
    if (civil) Require(jet::CivilFromDays(jet::DaysFromCivil(*civil)) == civil);
    static_cast<void>(jet::FormatDate(number, text));
    static_cast<void>(jet::sql::FormatNumberAs(number, text));
    const std::size_t half = text.size() / 2;
    static_cast<void>(jet::Like(std::u16string_view(text).substr(0, half),
                                std::u16string_view(text).substr(half)));
    return 0;
}
