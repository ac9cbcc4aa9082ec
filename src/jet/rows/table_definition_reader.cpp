#include "jet/errors.h"
#include "jet/pages/byte_cursor.h"
#include "jet/pages/definition_layout.h"
#include "jet/rows/table_definition.h"

#include <algorithm>

namespace jet {
namespace {

// Far above what 255 columns and their indexes need.
constexpr std::size_t kMaxDefinitionBytes = 1U << 20;
constexpr std::size_t kMaxIndexesRead = 4096;
// No definition that has a column is shorter.
constexpr std::size_t kMinDefinitionBytes = 64;

struct DefinitionBytes {
    std::vector<std::byte> bytes;
    std::vector<PageNumber> pages;
};

base::Result<DefinitionBytes> Gather(PageStore& store, PageNumber page) {
    DefinitionBytes gathered;
    std::uint32_t length = 0;
    for (PageNumber next = page; next != 0;) {
        ASSIGN_OR_RETURN(const PageView view, store.Read(next));
        const std::span<const std::byte> bytes = view.bytes();
        if (!HasType(bytes, PageType::kDefinition))
            return DamagedPage(next, "not a table definition");
        const bool first = gathered.pages.empty();
        const auto piece = first ? bytes : bytes.subspan(kDefinitionPageHead);
        gathered.bytes.insert(gathered.bytes.end(), piece.begin(), piece.end());
        gathered.pages.push_back(next);
        if (first) length = base::LoadLittle<std::uint32_t>(bytes.data() + kDefinitionLength);
        if (gathered.bytes.size() > kMaxDefinitionBytes)
            return DamagedPage(page, "the table definition does not end");
        next = base::LoadLittle<std::uint32_t>(bytes.data() + kNextDefinitionPage);
    }
    if (length > gathered.bytes.size() || length < kMinDefinitionBytes)
        return DamagedPage(page, "the table definition is cut short");
    gathered.bytes.resize(length);
    return gathered;
}

// Fields of one descriptor, by the offsets of its layout.
class Fields {
public:
    explicit Fields(std::span<const std::byte> bytes) : bytes_(bytes) {}
    template <std::integral T>
    T At(std::size_t offset) const {
        return base::LoadLittle<T>(bytes_.data() + offset);
    }
    std::uint8_t ByteAt(std::size_t offset) const { return At<std::uint8_t>(offset); }
    RowPointer PointerAt(std::size_t offset) const {
        return LoadRowPointer(bytes_.data() + offset);
    }

private:
    std::span<const std::byte> bytes_;
};

ColumnDefinition ParseColumn(Fields fields, bool jet4) {
    const ColumnLayout& layout = jet4 ? kColumnJet4 : kColumnJet3;
    ColumnDefinition column;
    column.type = static_cast<ColumnType>(fields.ByteAt(layout.type));
    column.number = fields.At<std::uint16_t>(layout.number);
    column.variable_index = fields.At<std::uint16_t>(layout.variable_index);
    column.ordinal = fields.At<std::uint16_t>(layout.ordinal);
    if (jet4 && column.type == ColumnType::kNumeric) {
        column.precision = fields.ByteAt(layout.precision);
        column.scale = fields.ByteAt(layout.scale);
    } else {
        column.sort_order = fields.At<std::uint16_t>(layout.sort_order);
        if (jet4)
            column.sort_version = fields.ByteAt(layout.sort_version);
        else
            column.code_page = fields.At<std::uint16_t>(layout.code_page);
    }
    column.flags = fields.ByteAt(layout.flags);
    if (jet4) column.extended_flags = fields.ByteAt(layout.extended_flags);
    column.fixed_offset = fields.At<std::uint16_t>(layout.fixed_offset);
    column.length = fields.At<std::uint16_t>(layout.length);
    return column;
}

RealIndex ParseRealIndex(Fields fields, bool jet4) {
    const RealIndexLayout& layout = jet4 ? kRealIndexJet4 : kRealIndexJet3;
    RealIndex index;
    for (std::size_t i = 0; i < kMaxIndexColumns; ++i) {
        const std::size_t at = layout.columns + kIndexColumnBytes * i;
        const auto column = fields.At<std::uint16_t>(at);
        if (column != kNoColumn)
            index.columns.push_back({column, fields.ByteAt(at + kIndexColumnOrder) != 0});
    }
    index.map = fields.PointerAt(layout.map);
    index.root = fields.At<std::uint32_t>(layout.root);
    index.flags = fields.ByteAt(layout.flags);
    return index;
}

LogicalIndex ParseLogicalIndex(Fields fields, bool jet4) {
    const LogicalIndexLayout& layout = jet4 ? kLogicalIndexJet4 : kLogicalIndexJet3;
    LogicalIndex index;
    index.number = fields.At<std::uint32_t>(layout.number);
    index.real = fields.At<std::uint32_t>(layout.real);
    index.side = static_cast<RelationSide>(fields.ByteAt(layout.side));
    index.partner = fields.At<std::int32_t>(layout.partner);
    index.other_table = fields.At<std::uint32_t>(layout.other_table);
    index.cascade_updates = fields.ByteAt(layout.cascade_updates);
    index.cascade_deletes = fields.ByteAt(layout.cascade_deletes);
    index.kind = static_cast<IndexKind>(fields.ByteAt(layout.kind));
    return index;
}

std::u16string TakeName(ByteCursor& cursor, const TextCodec& text) {
    const std::size_t length = text.jet4() ? cursor.Take<std::uint16_t>() : cursor.TakeByte();
    return text.DecodeName(cursor.TakeBytes(length));
}

class Parser {
public:
    Parser(std::span<const std::byte> bytes, const Format& format, const TextCodec& text,
           TableDefinition& definition)
        : bytes_(bytes), layout_(LayoutOf(format)), jet4_(format.jet4()), text_(text),
          definition_(definition) {}

    // False: the definition contradicts itself.
    bool Parse() {
        if (!ParseFixedPart()) return false;
        ByteCursor cursor(bytes_, layout_.index_counters);
        for (RealIndex& index : definition_.real_indexes) {
            index.entries_when_compacted = cursor.Take<std::uint32_t>();
            index.distinct_keys = cursor.Take<std::uint32_t>();
            if (jet4_) cursor.Take<std::uint32_t>();
        }
        ParseColumns(cursor);
        ParseIndexes(cursor);
        ParseLongValues(cursor);
        return !cursor.failed() && IsConsistent();
    }

private:
    bool ParseFixedPart() {
        const std::byte* at = bytes_.data();
        definition_.rows = base::LoadLittle<std::uint32_t>(at + layout_.rows);
        definition_.last_autonumber = base::LoadLittle<std::uint32_t>(at + layout_.autonumber);
        definition_.kind = std::to_integer<std::uint8_t>(at[layout_.kind]);
        definition_.columns_ever = base::LoadLittle<std::uint16_t>(at + layout_.columns_ever);
        definition_.variables_ever = base::LoadLittle<std::uint16_t>(at + layout_.variables_ever);
        definition_.owned = LoadRowPointer(at + layout_.owned_map);
        definition_.free = LoadRowPointer(at + layout_.free_map);
        const std::size_t columns = base::LoadLittle<std::uint16_t>(at + layout_.columns);
        const std::size_t logical = base::LoadLittle<std::uint32_t>(at + layout_.logical_indexes);
        const std::size_t real = base::LoadLittle<std::uint32_t>(at + layout_.real_indexes);
        if (columns > kMaxColumns || logical > kMaxIndexesRead || real > kMaxIndexesRead)
            return false;
        definition_.columns.resize(columns);
        definition_.real_indexes.resize(real);
        definition_.logical_indexes.resize(logical);
        return true;
    }

    void ParseColumns(ByteCursor& cursor) {
        for (ColumnDefinition& column : definition_.columns) {
            const auto piece = cursor.TakeBytes(layout_.column_bytes);
            if (cursor.failed()) return;
            column = ParseColumn(Fields(piece), jet4_);
        }
        for (ColumnDefinition& column : definition_.columns)
            column.name = TakeName(cursor, text_);
    }

    void ParseIndexes(ByteCursor& cursor) {
        for (RealIndex& index : definition_.real_indexes) {
            const auto piece = cursor.TakeBytes(layout_.real_index_bytes);
            if (cursor.failed()) return;
            const RealIndex counters = index;
            index = ParseRealIndex(Fields(piece), jet4_);
            index.entries_when_compacted = counters.entries_when_compacted;
            index.distinct_keys = counters.distinct_keys;
        }
        for (LogicalIndex& index : definition_.logical_indexes) {
            const auto piece = cursor.TakeBytes(layout_.logical_index_bytes);
            if (cursor.failed()) return;
            index = ParseLogicalIndex(Fields(piece), jet4_);
        }
        for (LogicalIndex& index : definition_.logical_indexes)
            index.name = TakeName(cursor, text_);
    }

    void ParseLongValues(ByteCursor& cursor) {
        while (!cursor.failed()) {
            const auto column = cursor.Take<std::uint16_t>();
            if (column == kEndOfDefinition) return;
            const auto owned = cursor.TakeBytes(4);
            const auto free = cursor.TakeBytes(4);
            if (cursor.failed()) return;
            definition_.long_values.push_back(
                {column, LoadRowPointer(owned.data()), LoadRowPointer(free.data())});
        }
    }

    bool IsConsistent() const {
        std::vector<bool> seen(definition_.columns_ever);
        for (const ColumnDefinition& column : definition_.columns) {
            if (column.number >= definition_.columns_ever || seen[column.number]) return false;
            seen[column.number] = true;
            if (column.is_variable() && column.variable_index >= definition_.variables_ever)
                return false;
        }
        for (const RealIndex& index : definition_.real_indexes)
            if (index.columns.empty() ||
                !std::ranges::all_of(index.columns, [this](const RealIndexColumn& column) {
                    return definition_.FindColumn(column.column) != nullptr;
                }))
                return false;
        return std::ranges::all_of(definition_.logical_indexes, [this](const LogicalIndex& index) {
            return index.real < definition_.real_indexes.size();
        });
    }

    std::span<const std::byte> bytes_;
    const DefinitionLayout& layout_;
    bool jet4_;
    const TextCodec& text_;
    TableDefinition& definition_;
};

}  // namespace

const ColumnDefinition* TableDefinition::FindColumn(std::uint16_t number) const {
    const auto found = std::ranges::find(columns, number, &ColumnDefinition::number);
    return found == columns.end() ? nullptr : &*found;
}

const LogicalIndex* TableDefinition::FindIndex(std::int32_t number) const {
    const auto found = std::ranges::find_if(logical_indexes, [&](const LogicalIndex& index) {
        return static_cast<std::int32_t>(index.number) == number;
    });
    return found == logical_indexes.end() ? nullptr : &*found;
}

std::uint32_t NextIndexNumber(const TableDefinition& definition) {
    std::uint32_t next = 0;
    for (const LogicalIndex& known : definition.logical_indexes)
        next = std::max(next, known.number + 1);
    return next;
}

std::size_t TableDefinition::fixed_bytes() const {
    std::size_t bytes = 0;
    for (const ColumnDefinition& column : columns)
        if (column.is_fixed())
            bytes = std::max<std::size_t>(bytes, column.fixed_offset + column.length);
    return bytes;
}

base::Result<TableDefinition> ReadTableDefinition(PageStore& store, const Format& format,
                                                  const TextCodec& text, PageNumber page) {
    ASSIGN_OR_RETURN(DefinitionBytes gathered, Gather(store, page));
    TableDefinition definition;
    definition.page = page;
    definition.pages = std::move(gathered.pages);
    if (!Parser(gathered.bytes, format, text, definition).Parse())
        return DamagedPage(page, "the table definition contradicts itself");
    return definition;
}

DefinitionCounters ReadDefinitionCounters(std::span<const std::byte> first_page,
                                          const Format& format) {
    const DefinitionLayout& layout = LayoutOf(format);
    return {base::LoadLittle<std::uint32_t>(first_page.data() + layout.rows),
            base::LoadLittle<std::uint32_t>(first_page.data() + layout.autonumber)};
}

void WriteDefinitionCounters(std::span<std::byte> first_page, const Format& format,
                             DefinitionCounters counters) {
    const DefinitionLayout& layout = LayoutOf(format);
    base::StoreLittle(first_page.data() + layout.rows, counters.rows);
    base::StoreLittle(first_page.data() + layout.autonumber, counters.last_autonumber);
}

namespace {

std::size_t DistinctKeysOffset(const Format& format, std::size_t real_index) {
    const DefinitionLayout& layout = LayoutOf(format);
    return layout.index_counters + layout.index_counter_bytes * real_index + 4;
}

}  // namespace

std::uint32_t ReadDistinctKeys(std::span<const std::byte> first_page, const Format& format,
                               std::size_t real_index) {
    const auto keys =
        base::LittleAt<std::uint32_t>(first_page, DistinctKeysOffset(format, real_index));
    return keys.value_or(0);
}

void WriteDistinctKeys(std::span<std::byte> first_page, const Format& format,
                       std::size_t real_index, std::uint32_t keys) {
    const std::size_t at = DistinctKeysOffset(format, real_index);
    if (at + 4 <= first_page.size()) base::StoreLittle(first_page.data() + at, keys);
}

}  // namespace jet
