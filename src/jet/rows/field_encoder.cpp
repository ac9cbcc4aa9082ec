#include "jet/errors.h"
#include "jet/rows/field_codec.h"

#include <algorithm>
#include <cstring>

namespace jet {
namespace {

constexpr std::uint8_t kCompressedText = 0x01;
// Memos above this are never stored compressed.
constexpr std::size_t kMaxCompressedMemo = 1024;

base::Status WrongType() {
    return JetError(ErrorNumber::kConversionError);
}

base::Result<Bytes> EncodeText(const FileContext& file, const ColumnDefinition& column,
                               const std::u16string& text) {
    const std::size_t limit = file.format.jet4() ? column.length / 2 : column.length;
    if (text.size() > limit) return JetError(ErrorNumber::kFieldTooSmall);
    std::optional<Bytes> bytes;
    if (column.is_fixed()) {
        std::u16string padded = text;
        padded.resize(limit, u' ');
        bytes = file.text.EncodeName(padded);
    } else {
        bytes = file.text.EncodeValue(text, (column.extended_flags & kCompressedText) != 0);
    }
    if (!bytes) return WrongType();
    return std::move(*bytes);
}

Bytes EncodeNumeric(const Numeric& numeric) {
    Bytes bytes(kNumericBytes);
    if (numeric.negative) bytes[0] = kNumericMinus;
    for (std::size_t i = 0; i < 4; ++i)
        base::StoreLittle(bytes.data() + 1 + 4 * i, numeric.magnitude[i]);
    return bytes;
}

template <std::integral T>
Bytes EncodeInteger(T value) {
    Bytes bytes(sizeof(T));
    base::StoreLittle(bytes.data(), value);
    return bytes;
}

base::Result<Bytes> EncodeBinary(const FileContext& file, const ColumnDefinition& column,
                                 const Bytes& value) {
    if (value.size() > column.length) return JetError(ErrorNumber::kFieldTooSmall);
    Bytes bytes = value;
    if ((column.flags & kColumnScrambled) != 0) Scramble(file, bytes);
    return bytes;
}

}  // namespace

base::Result<Bytes> EncodeField(const FileContext& file, const ColumnDefinition& column,
                                const Value& value) {
    if (const auto* text = value.get_if<std::u16string>()) return EncodeText(file, column, *text);
    if (const auto* bytes = value.get_if<Bytes>()) return EncodeBinary(file, column, *bytes);
    if (const auto* byte = value.get_if<std::uint8_t>()) return Bytes{std::byte{*byte}};
    if (const auto* small = value.get_if<std::int16_t>()) return EncodeInteger(*small);
    if (const auto* number = value.get_if<std::int32_t>()) return EncodeInteger(*number);
    if (const auto* money = value.get_if<Money>()) return EncodeInteger(money->units);
    if (const auto* single = value.get_if<float>())
        return EncodeInteger(std::bit_cast<std::uint32_t>(*single));
    if (const auto* real = value.get_if<double>())
        return EncodeInteger(std::bit_cast<std::uint64_t>(*real));
    if (const auto* date = value.get_if<Date>())
        return EncodeInteger(std::bit_cast<std::uint64_t>(date->days));
    if (const auto* guid = value.get_if<Guid>())
        return Bytes(guid->bytes.begin(), guid->bytes.end());
    if (const auto* numeric = value.get_if<Numeric>()) return EncodeNumeric(*numeric);
    return WrongType();
}

base::Result<Bytes> EncodeLongValue(const FileContext& file, const ColumnDefinition& column,
                                    const Value& value) {
    if (const auto* bytes = value.get_if<Bytes>()) return *bytes;
    const auto* text = value.get_if<std::u16string>();
    if (text == nullptr) return WrongType();
    const bool compress =
        (column.extended_flags & kCompressedText) != 0 && text->size() <= kMaxCompressedMemo;
    auto bytes = file.text.EncodeValue(*text, compress);
    if (!bytes) return WrongType();
    return std::move(*bytes);
}

}  // namespace jet
