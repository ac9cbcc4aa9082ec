#include "jet/check/check_definition.h"

#include "base/unicode.h"
#include "jet/pages/definition_layout.h"

#include <algorithm>
#include <set>

namespace jet::check {
namespace {

// The most indexes that are read; far above what the format allows.
constexpr std::uint32_t kMaxIndexesRead = 1000;

// Reads one definition string from front to end; every step says what it missed by `failed`.
class DefinitionReader {
public:
    DefinitionReader(CheckRun& run, PageNumber page, std::vector<std::byte> bytes)
        : run_(run), jet4_(run.format().jet4()), layout_(LayoutOf(run.format())),
          column_layout_(jet4_ ? kColumnJet4 : kColumnJet3), bytes_(std::move(bytes)) {
        definition_.page = page;
    }

    std::optional<Definition> Read() {
        ReadFixedPart();
        ReadColumns();
        ReadRealIndexes();
        ReadLogicalIndexes();
        ReadLongValueMaps();
        if (failed_) {
            Fault("the definition ends too early");
            return std::nullopt;
        }
        if (at_ != bytes_.size()) Warn("the definition is longer than its content");
        CheckColumns();
        CheckLongValues();
        CheckIndexes();
        return std::move(definition_);
    }

private:
    void Fault(const std::string& text) { run_.Fault(definition_.page, -1, text); }
    void Warn(const std::string& text) { run_.Warn(definition_.page, -1, text); }

    template <typename T>
    T Take() {
        const auto value = base::LittleAt<T>(bytes_, at_);
        if (!value) failed_ = true;
        at_ += sizeof(T);
        return failed_ ? T{} : *value;
    }
    void Skip(std::size_t size) { at_ += size; }
    RowPointer TakePointer() {
        const auto word = Take<std::uint32_t>();
        return {word >> 8, static_cast<std::uint8_t>(word & 0xFF)};
    }
    std::u16string TakeName() {
        const std::size_t size = jet4_ ? Take<std::uint16_t>() : Take<std::uint8_t>();
        const auto name = base::BytesAt(bytes_, at_, size);
        if (!name) failed_ = true;
        at_ += size;
        return failed_ ? std::u16string() : run_.text().DecodeName(*name);
    }
    void Expect(std::uint32_t wanted, const char* what) {
        const auto value = Take<std::uint32_t>();
        if (!failed_ && value != wanted)
            Fault(std::string(what) + " is " + std::to_string(value) + ", not " +
                  std::to_string(wanted));
    }

    void ReadFixedPart() {
        at_ = kDefinitionLength;
        const auto length = Take<std::uint32_t>();
        if (length != bytes_.size()) Fault("the length of the definition is wrong");
        if (jet4_) Expect(kDefinitionMark, "the constant of the definition");
        definition_.rows = Take<std::uint32_t>();
        definition_.autonumber = Take<std::uint32_t>();
        at_ = layout_.kind;
        const auto kind = Take<std::uint8_t>();
        if (kind != kUserTable && kind != kSystemTable) Fault("the kind of the table is unknown");
        definition_.columns_ever = Take<std::uint16_t>();
        definition_.variable_ever = Take<std::uint16_t>();
        column_count_ = Take<std::uint16_t>();
        logical_count_ = Take<std::uint32_t>();
        real_count_ = Take<std::uint32_t>();
        definition_.owned = TakePointer();
        definition_.free = TakePointer();
        if (column_count_ > kMaxColumns || logical_count_ > kMaxIndexesRead ||
            real_count_ > kMaxIndexesRead)
            failed_ = true;
        if (!failed_) Skip(real_count_ * layout_.index_counter_bytes);
    }

    void ReadColumns() {
        for (unsigned i = 0; i < column_count_ && !failed_; ++i)
            ReadColumn();
        for (Column& column : definition_.columns)
            column.name = TakeName();
    }

    void ReadColumn() {
        Column column;
        const std::size_t start = at_;
        column.type = static_cast<ColumnType>(Take<std::uint8_t>());
        if (jet4_) Expect(kDefinitionMark, "the constant of a column");
        column.number = Take<std::uint16_t>();
        column.variable_index = Take<std::uint16_t>();
        at_ = start + column_layout_.sort_order;
        column.sort_order = Take<std::uint16_t>();
        if (jet4_) {
            at_ = start + column_layout_.sort_version;
            column.sort_version = Take<std::uint8_t>();
        }
        at_ = start + column_layout_.flags;
        column.flags = Take<std::uint8_t>();
        at_ = start + column_layout_.fixed_offset;
        column.fixed_offset = Take<std::uint16_t>();
        column.length = Take<std::uint16_t>();
        if (at_ != start + layout_.column_bytes) failed_ = true;
        if (!failed_) definition_.columns.push_back(std::move(column));
    }

    void ReadRealIndexes() {
        for (unsigned i = 0; i < real_count_ && !failed_; ++i) {
            RealIndex index;
            const std::size_t start = at_;
            if (jet4_) Expect(kRealIndexMark, "the constant of an index");
            for (unsigned part = 0; part < kMaxIndexColumns; ++part)
                ReadIndexPart(index);
            index.map = TakePointer();
            index.root = Take<std::uint32_t>();
            at_ = start + (jet4_ ? kRealIndexJet4 : kRealIndexJet3).flags;
            index.flags = Take<std::uint8_t>();
            at_ = start + layout_.real_index_bytes;
            definition_.indexes.push_back(std::move(index));
        }
    }

    void ReadIndexPart(RealIndex& index) {
        const auto number = Take<std::uint16_t>();
        const auto order = Take<std::uint8_t>();
        if (failed_ || number == kNoColumn) return;
        const auto found = std::ranges::find(definition_.columns, number,
                                             [](const Column& c) { return c.number; });
        if (found == definition_.columns.end()) {
            Fault("an index names column " + std::to_string(number) + ", which is not there");
            return;
        }
        if (order > 1) Fault("an index has an unknown order");
        index.parts.push_back(
            {static_cast<std::size_t>(found - definition_.columns.begin()), order == 1});
    }

    void ReadLogicalIndexes() {
        for (unsigned i = 0; i < logical_count_ && !failed_; ++i) {
            LogicalIndex index;
            const std::size_t start = at_;
            if (jet4_) Expect(kDefinitionMark, "the constant of an index name");
            index.number = Take<std::uint32_t>();
            index.real = Take<std::uint32_t>();
            index.side = Take<std::uint8_t>();
            index.partner = Take<std::int32_t>();
            index.partner_table = Take<std::uint32_t>();
            at_ = start + (jet4_ ? kLogicalIndexJet4 : kLogicalIndexJet3).kind;
            index.kind = Take<std::uint8_t>();
            at_ = start + layout_.logical_index_bytes;
            definition_.logical.push_back(std::move(index));
        }
        for (LogicalIndex& index : definition_.logical)
            index.name = TakeName();
    }

    void ReadLongValueMaps() {
        while (!failed_) {
            const auto number = Take<std::uint16_t>();
            if (number == kEndOfDefinition || failed_) return;
            LongValueMaps maps;
            maps.owned = TakePointer();
            maps.free = TakePointer();
            if (!definition_.long_values.emplace(number, maps).second)
                Fault("column " + std::to_string(number) + " has two pairs of maps");
        }
    }

    // ------------------------------------------------------------------------------- checks

    std::string NameOf(const Column& column) { return "column " + base::ToUtf8(column.name); }

    void CheckColumns() {
        NameSet names;
        std::set<std::uint16_t> numbers;
        std::set<std::uint16_t> variable_indexes;
        for (const Column& column : definition_.columns) {
            if (!numbers.insert(column.number).second || column.number >= definition_.columns_ever)
                Fault(NameOf(column) + ": its number is wrong");
            if (!names.insert(column.name).second || column.name.empty())
                Fault(NameOf(column) + ": its name is there twice");
            if (column.fixed()) continue;
            if (!variable_indexes.insert(column.variable_index).second ||
                column.variable_index >= definition_.variable_ever)
                Fault(NameOf(column) + ": its place among the variable columns is wrong");
        }
        CheckFixedRanges();
    }

    void CheckFixedRanges() {
        std::vector<std::pair<unsigned, unsigned>> ranges;
        for (const Column& column : definition_.columns)
            if (column.fixed() && column.type != ColumnType::kBoolean)
                ranges.emplace_back(column.fixed_offset, column.fixed_offset + column.length);
        std::ranges::sort(ranges);
        for (std::size_t i = 1; i < ranges.size(); ++i)
            if (ranges[i].first < ranges[i - 1].second) Fault("fixed columns overlap");
    }

    void CheckLongValues() {
        std::size_t count = 0;
        for (const Column& column : definition_.columns) {
            if (!column.is_long_value()) continue;
            ++count;
            if (!definition_.long_values.contains(column.number))
                Fault(NameOf(column) + ": it has no maps for long values");
        }
        if (count < definition_.long_values.size())
            Warn("there are maps for long values of columns that have none");
    }

    void CheckIndexes() {
        std::set<std::uint32_t> used;
        std::set<std::uint32_t> numbers;
        for (const LogicalIndex& logical : definition_.logical) {
            if (!numbers.insert(logical.number).second)
                Fault("two indexes have the number " + std::to_string(logical.number));
            if (logical.real >= definition_.indexes.size()) {
                Fault("index " + base::ToUtf8(logical.name) + " has no tree");
                continue;
            }
            RealIndex& real = definition_.indexes[logical.real];
            if (used.insert(logical.real).second) real.name = logical.name;
            if (logical.kind == 1) real.primary = true;
        }
        if (used.size() != definition_.indexes.size()) Fault("an index has no name");
        for (const RealIndex& index : definition_.indexes)
            if (index.parts.empty()) Fault("an index has no columns");
    }

    CheckRun& run_;
    bool jet4_;
    const DefinitionLayout& layout_;
    const ColumnLayout& column_layout_;
    std::vector<std::byte> bytes_;
    std::size_t at_ = 0;
    bool failed_ = false;
    unsigned column_count_ = 0;
    std::uint32_t logical_count_ = 0;
    std::uint32_t real_count_ = 0;
    Definition definition_;
};

// The definition string: the first page, then the content of the others, cut to its length.
std::optional<std::vector<std::byte>> Assemble(CheckRun& run, PageNumber first,
                                               const std::string& name) {
    std::vector<std::byte> bytes;
    std::uint32_t length = 0;
    PageNumber last = first;
    std::size_t used_on_last = 0;
    for (PageNumber page = first; page != 0;) {
        const auto view = run.Page(page, last);
        if (!view || !run.Claim(page, "the definition of " + name)) return std::nullopt;
        const auto content = view->bytes();
        if (!HasType(content, PageType::kDefinition) || content[kSecondByteAt] != kSecondByte) {
            run.Fault(page, -1, "is not a definition page");
            return std::nullopt;
        }
        const std::size_t skipped = page == first ? 0 : kDefinitionPageHead;
        if (page == first)
            length = base::LoadLittle<std::uint32_t>(content.data() + kDefinitionLength);
        if (length < LayoutOf(run.format()).index_counters) {
            run.Fault(page, -1, "the length of the definition is wrong");
            return std::nullopt;
        }
        const std::size_t wanted = length > bytes.size() ? length - bytes.size() : 0;
        const std::size_t taken = std::min(wanted, content.size() - skipped);
        const auto part = content.subspan(skipped, taken);
        bytes.insert(bytes.end(), part.begin(), part.end());
        used_on_last = skipped + taken;
        last = page;
        page = base::LoadLittle<std::uint32_t>(content.data() + kNextDefinitionPage);
        const auto free = base::LoadLittle<std::uint16_t>(content.data() + kDefinitionFreeBytes);
        if (!run.format().jet4()) continue;
        const std::size_t room = content.size() - used_on_last;
        const std::size_t expected =
            page != 0 || room < kDefinitionPageHead ? 0 : room - kDefinitionPageHead;
        run.CheckFreeBytes(last, free, expected);
    }
    if (bytes.size() < length) {
        run.Fault(last, -1, "the definition ends too early");
        return std::nullopt;
    }
    return bytes;
}

}  // namespace

std::optional<Definition> ReadDefinition(CheckRun& run, PageNumber page, const std::string& name) {
    auto bytes = Assemble(run, page, name);
    if (!bytes) return std::nullopt;
    return DefinitionReader(run, page, std::move(*bytes)).Read();
}

}  // namespace jet::check
