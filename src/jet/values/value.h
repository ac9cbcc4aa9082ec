// Value: one field of a row, or one result of an expression. Null is a value of its own.
// Text is UTF-16, as in the file. Dates are days since 1899-12-30 with the time of day as fraction
// (local time, no zone); the fraction counts forward also for negative days. Money counts units of
// 1/10000.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace jet {

// Codes as stored in a table definition.
enum class ColumnType : std::uint8_t {
    kBoolean = 0x01,
    kByte = 0x02,
    kShort = 0x03,
    kLong = 0x04,
    kMoney = 0x05,
    kSingle = 0x06,
    kDouble = 0x07,
    kDate = 0x08,
    kBinary = 0x09,
    kText = 0x0A,
    kOle = 0x0B,
    kMemo = 0x0C,
    kGuid = 0x0F,
    kNumeric = 0x10,
    kFixedBinary = 0x11,
};

constexpr bool IsTextType(ColumnType type) {
    return type == ColumnType::kText || type == ColumnType::kMemo;
}

struct Money {
    std::int64_t units = 0;  // 1/10000
    auto operator<=>(const Money&) const = default;
};

struct Date {
    double days = 0;
    bool operator==(const Date&) const = default;
};

struct Guid {
    std::array<std::byte, 16> bytes{};  // in the file's (COM) order
    auto operator<=>(const Guid&) const = default;
};

// Sign and 128-bit magnitude; the value is magnitude / 10^scale.
struct Numeric {
    bool negative = false;
    std::uint8_t scale = 0;
    std::array<std::uint32_t, 4> magnitude{};  // most significant word first
    bool operator==(const Numeric&) const = default;
};

using Bytes = std::vector<std::byte>;

class Value {
public:
    using Content = std::variant<std::monostate, bool, std::uint8_t, std::int16_t, std::int32_t,
                                 Money, float, double, Date, std::u16string, Bytes, Guid, Numeric>;

    Value() = default;  // Null
    static Value Null() { return {}; }
    static Value Boolean(bool v) { return Value(Content(v)); }
    static Value Byte(std::uint8_t v) { return Value(Content(v)); }
    static Value Short(std::int16_t v) { return Value(Content(v)); }
    static Value Long(std::int32_t v) { return Value(Content(v)); }
    static Value Currency(Money v) { return Value(Content(v)); }
    static Value Single(float v) { return Value(Content(v)); }
    static Value Double(double v) { return Value(Content(v)); }
    static Value DateTime(double days) { return Value(Content(Date{days})); }
    static Value Text(std::u16string v) { return Value(Content(std::move(v))); }
    static Value Text(std::u16string_view v) { return Value(Content(std::u16string(v))); }
    static Value Text(const char16_t* v) { return Value(Content(std::u16string(v))); }
    static Value Binary(Bytes v) { return Value(Content(std::move(v))); }
    static Value OfGuid(Guid v) { return Value(Content(v)); }
    static Value Decimal(Numeric v) { return Value(Content(v)); }

    bool is_null() const { return std::holds_alternative<std::monostate>(content_); }
    template <typename T>
    bool is() const {
        return std::holds_alternative<T>(content_);
    }
    // Requires: is<T>().
    template <typename T>
    const T& as() const {
        return std::get<T>(content_);
    }
    // nullptr: another kind of value.
    template <typename T>
    const T* get_if() const {
        return std::get_if<T>(&content_);
    }
    const Content& content() const { return content_; }

    // Makes the value a text for the caller to fill, reusing the memory of the old text if there
    // was one. Its content is unspecified.
    std::u16string& MakeText() {
        if (auto* text = std::get_if<std::u16string>(&content_)) return *text;
        return content_.emplace<std::u16string>();
    }

    // Same kind and same bits; not the SQL comparison, which converts and follows the collation.
    bool operator==(const Value&) const = default;

private:
    explicit Value(Content content) : content_(std::move(content)) {}
    Content content_;
};

// What a program shows or concatenates: Null gives the empty text, True and False these words,
// dates the general date, numbers their shortest decimal text. US English always.
std::u16string ToText(const Value& value);
// The same; a text is moved out of the value.
std::u16string ToText(Value&& value);

// Nonzero numbers and True are true; everything else, Null and text included, is false.
bool ToBool(const Value& value);

// The whole number, rounded half to even; 0 for Null and for anything that is not a number or
// does not fit.
std::int64_t ToInteger(const Value& value);

}  // namespace jet
