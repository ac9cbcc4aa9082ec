#include "jet/tables/column_maker.h"

#include "jet/errors.h"
#include "jet/rows/field_codec.h"
#include "jet/tables/property_blob.h"
#include "jet/text/names.h"
#include "jet/values/column_limits.h"

#include <algorithm>

namespace jet {
namespace {

constexpr std::uint8_t kCompressedText = 0x01;

base::Status InvalidColumn(std::string_view why) {
    return ErrorBecause(ErrorNumber::kInvalidFieldType, why);
}

std::uint16_t LengthOf(const FileContext& file, const ColumnDesign& design) {
    switch (design.type) {
    case ColumnType::kBoolean:
        return 1;
    case ColumnType::kText:
        return static_cast<std::uint16_t>(file.format.jet4() ? 2 * design.size : design.size);
    case ColumnType::kBinary:
    case ColumnType::kFixedBinary:
        return design.size;
    default:
        return static_cast<std::uint16_t>(FixedSize(design.type));
    }
}

std::uint8_t FlagsOf(const ColumnDesign& design) {
    std::uint8_t flags = kColumnUpdatable;
    switch (design.type) {
    case ColumnType::kText:
        if (design.fixed_text) flags |= kColumnFixed;
        break;
    case ColumnType::kBinary:
    case ColumnType::kMemo:
    case ColumnType::kOle:
        break;
    default:
        flags |= kColumnFixed;
    }
    if (design.autonumber)
        flags |= design.type == ColumnType::kGuid ? kColumnGuidAutonumber : kColumnAutonumber;
    return flags;
}

}  // namespace

base::Status CheckColumn(const FileContext& file, const ColumnDesign& design) {
    if (!IsValidName(design.name)) return JetError(ErrorNumber::kNotAValidName, design.name);
    switch (design.type) {
    case ColumnType::kText:
        if (design.size < 1 || design.size > kMaxTextCharacters)
            return InvalidColumn("a text has 1 to 255 characters");
        break;
    case ColumnType::kBinary:
        if (design.size < 1 ||
            design.size > (file.format.jet4() ? kMaxBinaryBytesJet4 : kMaxBinaryBytesJet3))
            return InvalidColumn("the size of a binary field is out of range");
        break;
    case ColumnType::kNumeric:
        if (!file.format.jet4()) return InvalidColumn("this version of the file has no decimals");
        if (design.precision < 1 || design.precision > 28 || design.scale > design.precision)
            return InvalidColumn("precision or scale is out of range");
        break;
    case ColumnType::kBoolean:
    case ColumnType::kByte:
    case ColumnType::kShort:
    case ColumnType::kLong:
    case ColumnType::kMoney:
    case ColumnType::kSingle:
    case ColumnType::kDouble:
    case ColumnType::kDate:
    case ColumnType::kOle:
    case ColumnType::kMemo:
    case ColumnType::kGuid:
        break;
    default:
        return InvalidColumn("unknown type");
    }
    if (design.autonumber && design.type != ColumnType::kLong && design.type != ColumnType::kGuid)
        return InvalidColumn("an autonumber is a long integer or a GUID");
    return {};
}

base::Status AppendColumn(const FileContext& file, const ColumnDesign& design,
                          TableDefinition& definition) {
    if (definition.columns_ever >= kMaxColumns) return JetError(ErrorNumber::kTooManyFields);
    ColumnDefinition column;
    column.name = design.name;
    column.type = design.type;
    column.number = definition.columns_ever;
    column.flags = FlagsOf(design);
    column.length = LengthOf(file, design);
    column.code_page = file.header.code_page;
    if (design.type == ColumnType::kNumeric) {
        column.precision = design.precision;
        column.scale = design.scale;
    }
    if (design.compressed && column.is_text() && !column.is_fixed() && file.format.jet4())
        column.extended_flags = kCompressedText;
    for (const ColumnDefinition& other : definition.columns)
        column.ordinal =
            std::max<std::uint16_t>(column.ordinal, static_cast<std::uint16_t>(other.ordinal + 1));
    column.variable_index = definition.variables_ever;
    if (column.is_variable())
        ++definition.variables_ever;
    else if (column.is_fixed())
        column.fixed_offset = static_cast<std::uint16_t>(definition.fixed_bytes());
    if (file.format.row_head_bytes + column.fixed_offset + column.length >
            file.format.max_row_bytes &&
        column.is_fixed())
        return JetError(ErrorNumber::kRecordTooLarge);
    ++definition.columns_ever;
    definition.columns.push_back(std::move(column));
    return {};
}

void WriteColumnProperties(const ColumnDesign& design, PropertyBlob& properties) {
    if (design.default_value)
        properties.SetText(design.name, u"DefaultValue", ColumnType::kMemo, *design.default_value);
    else
        properties.Remove(design.name, u"DefaultValue");
    if (design.required)
        properties.SetBoolean(design.name, u"Required", true);
    else if (properties.Find(design.name, u"Required") != nullptr)
        properties.SetBoolean(design.name, u"Required", false);
    const bool is_text = design.type == ColumnType::kText || design.type == ColumnType::kMemo;
    if ((is_text && !design.allow_zero_length) ||
        properties.Find(design.name, u"AllowZeroLength") != nullptr)
        properties.SetBoolean(design.name, u"AllowZeroLength", design.allow_zero_length);
    WriteRule(design.name, design.validation_rule, design.validation_text, properties);
}

void WriteRule(std::u16string_view column, const std::optional<std::u16string>& rule,
               const std::optional<std::u16string>& text, PropertyBlob& properties) {
    if (rule) properties.SetText(column, u"ValidationRule", ColumnType::kMemo, *rule);
    if (text) properties.SetText(column, u"ValidationText", ColumnType::kText, *text);
}

std::uint8_t IndexFlagsOf(const FileContext& file, const IndexDesign& design) {
    std::uint8_t flags = 0;
    if (file.format.jet4()) flags |= kIndexJet4;
    if (design.unique || design.primary) flags |= kIndexUnique;
    if (design.required || design.primary) flags |= kIndexRequired;
    if (design.ignore_nulls) flags |= kIndexIgnoreNulls;
    return flags;
}

}  // namespace jet
