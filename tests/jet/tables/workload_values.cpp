#include "jet/tables/workload_values.h"

#include <algorithm>
#include <cctype>

namespace jet::test {

std::u16string WorkloadValues::Text(std::size_t longest) {
    static const std::u16string kLetters =
        u"abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ 0123456789-'.,éüßÅøñ";
    static const std::u16string kWide = u"αβγДЖЯ漢字";
    const std::size_t length = Pick(std::min<std::size_t>(longest, OneIn(4) ? longest : 12) + 1);
    const bool wide = jet4_ && OneIn(8);
    std::u16string text;
    for (std::size_t i = 0; i < length; ++i) {
        const std::u16string& letters = wide && OneIn(3) ? kWide : kLetters;
        text += letters[Pick(letters.size())];
    }
    return text;
}

std::u16string WorkloadValues::LongText() {
    std::u16string text;
    for (int i = 0; i < 10; ++i)
        text += static_cast<char16_t>(u'a' + Pick(26));
    return text + std::u16string(170 + Pick(60), jet4_ ? u'-' : u'\u00E9');
}

// Numbers that a rule keeps to small positive ones keep to it.
Value WorkloadValues::Number(const ColumnDesign& column) {
    auto number = static_cast<std::int32_t>(random_());
    const std::u16string rule = column.validation_rule.value_or(u"");
    if (!rule.empty()) number = 1 + number % 30000 * (number % 30000 < 0 ? -1 : 1);
    const double fraction = rule.starts_with(u"Between 0 And 1") ? 1.0 / 65536 : 1.0 / 16;
    switch (column.type) {
    case ColumnType::kByte:
        return Value::Byte(static_cast<std::uint8_t>(number));
    case ColumnType::kShort:
        return Value::Short(static_cast<std::int16_t>(number));
    case ColumnType::kLong:
        return Value::Long(OneIn(2) ? number : number % 1000 + (rule.empty() ? 0 : 1));
    case ColumnType::kMoney:
        return Value::Currency(Money{std::int64_t{number} * 7919});
    case ColumnType::kSingle:
        return Value::Single(static_cast<float>(number * fraction));
    case ColumnType::kDouble:
        return Value::Double(number * fraction);
    default: {
        Numeric numeric;
        numeric.negative = OneIn(2);
        numeric.scale = column.scale;
        numeric.magnitude[3] = static_cast<std::uint32_t>(Pick(1000));
        return Value::Decimal(numeric);
    }
    }
}

Value WorkloadValues::Binary(const ColumnDesign& column) {
    const std::size_t longest = column.type == ColumnType::kOle ? 6000 : column.size;
    Bytes bytes(OneIn(3) ? Pick(longest + 1) : Pick(std::min<std::size_t>(longest, 40) + 1));
    for (std::byte& byte : bytes)
        byte = static_cast<std::byte>(random_());
    return Value::Binary(std::move(bytes));
}

Value WorkloadValues::Of(const ColumnDesign& column) {
    if (!column.required && column.type != ColumnType::kBoolean && OneIn(6)) return {};
    switch (column.type) {
    case ColumnType::kBoolean:
        return Value::Boolean(OneIn(2));
    case ColumnType::kDate:
        return Value::DateTime(static_cast<double>(Pick(40000)) + 0.25);
    case ColumnType::kText:
    case ColumnType::kMemo: {
        if (long_texts_ && column.type == ColumnType::kText && column.size == 255)
            return Value::Text(LongText());
        std::size_t longest = column.size;
        // In the row, in a row of their own, in a chain.
        if (column.type == ColumnType::kMemo) longest = OneIn(20) ? 20000 : OneIn(4) ? 3000 : 60;
        std::u16string text = Text(longest);
        if (text.empty() && !column.allow_zero_length) text = u"x";
        return Value::Text(std::move(text));
    }
    case ColumnType::kGuid: {
        Guid guid;
        for (std::byte& byte : guid.bytes)
            byte = static_cast<std::byte>(random_());
        return Value::OfGuid(guid);
    }
    case ColumnType::kBinary:
    case ColumnType::kFixedBinary:
    case ColumnType::kOle:
        return Binary(column);
    default:
        return Number(column);
    }
}

Value WorkloadValues::Refused(const ColumnDesign& column) {
    switch (column.type) {
    case ColumnType::kBoolean:
        return Value::Boolean(false);
    case ColumnType::kText:
        if (OneIn(2)) return Value::Text(std::u16string(column.size + 1U, u'l'));
        return OneIn(2) ? Value::Text(u"") : Value::Null();
    case ColumnType::kMemo:
        return OneIn(2) ? Value::Text(u"") : Value::Null();
    case ColumnType::kShort:
        return OneIn(2) ? Value::Short(-5) : Value::Null();
    case ColumnType::kLong:
        return OneIn(2) ? Value::Long(-7) : Value::Null();
    case ColumnType::kSingle:
        return OneIn(2) ? Value::Single(1.5F) : Value::Null();
    case ColumnType::kMoney:
        return OneIn(2) ? Value::Currency(Money{-10000}) : Value::Null();
    default:
        return Value::Null();
    }
}

Value WorkloadValues::OtherSpelling(const Value& value, const ColumnDesign& column) {
    const auto* text = value.get_if<std::u16string>();
    if (text == nullptr) return value;
    std::u16string other = *text;
    for (char16_t& unit : other)
        if (unit < 0x80 && OneIn(2)) unit = static_cast<char16_t>(std::toupper(unit));
    if (column.type == ColumnType::kText && other.size() < column.size && OneIn(3)) other += u' ';
    return Value::Text(std::move(other));
}

}  // namespace jet::test
