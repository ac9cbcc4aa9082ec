#include "jet/errors.h"
#include "jet/pages/definition_layout.h"
#include "jet/pages/page_allocator.h"
#include "jet/rows/table_definition.h"
#include "jet/text/names.h"

#include <algorithm>
#include <cstring>

namespace jet {
namespace {

void AppendPointer(Bytes& out, RowPointer pointer) {
    out.resize(out.size() + 4);
    StoreRowPointer(out.data() + out.size() - 4, pointer);
}

void AppendZeros(Bytes& out, std::size_t count) {
    out.resize(out.size() + count);
}

void AppendByte(Bytes& out, std::uint8_t value) {
    out.push_back(std::byte{value});
}

class Builder {
public:
    Builder(const TableDefinition& definition, const Format& format, const TextCodec& text)
        : definition_(definition), layout_(LayoutOf(format)), jet4_(format.jet4()), text_(text) {}

    // The definition string; the head of its first page still open.
    base::Result<Bytes> Build() {
        AppendFixedPart();
        for (const RealIndex& index : definition_.real_indexes) {
            base::AppendLittle(out_, index.entries_when_compacted);
            base::AppendLittle(out_, index.distinct_keys);
            if (jet4_) AppendZeros(out_, 4);
        }
        for (const ColumnDefinition& column : definition_.columns)
            AppendColumn(column);
        for (const ColumnDefinition& column : definition_.columns)
            RETURN_IF_ERROR(AppendName(column.name));
        for (const RealIndex& index : definition_.real_indexes)
            AppendRealIndex(index);
        for (const LogicalIndex& index : definition_.logical_indexes)
            AppendLogicalIndex(index);
        for (const LogicalIndex& index : definition_.logical_indexes)
            RETURN_IF_ERROR(AppendName(index.name));
        for (const LongValueMaps& maps : definition_.long_values) {
            base::AppendLittle(out_, maps.column);
            AppendPointer(out_, maps.owned);
            AppendPointer(out_, maps.free);
        }
        base::AppendLittle(out_, kEndOfDefinition);
        base::StoreLittle(out_.data() + kDefinitionLength, static_cast<std::uint32_t>(out_.size()));
        return std::move(out_);
    }

private:
    void AppendFixedPart() {
        out_.resize(layout_.index_counters);
        std::byte* at = out_.data();
        if (jet4_) {
            base::StoreLittle(at + kDefinitionMarkAt, kDefinitionMark);
            base::StoreLittle<std::uint32_t>(at + kAutonumberStep, 1);
        }
        const auto count16 = [](std::size_t n) { return static_cast<std::uint16_t>(n); };
        const auto count32 = [](std::size_t n) { return static_cast<std::uint32_t>(n); };
        base::StoreLittle(at + layout_.rows, definition_.rows);
        base::StoreLittle(at + layout_.autonumber, definition_.last_autonumber);
        at[layout_.kind] = std::byte{definition_.kind};
        base::StoreLittle(at + layout_.columns_ever, definition_.columns_ever);
        base::StoreLittle(at + layout_.variables_ever, definition_.variables_ever);
        base::StoreLittle(at + layout_.columns, count16(definition_.columns.size()));
        base::StoreLittle(at + layout_.logical_indexes,
                          count32(definition_.logical_indexes.size()));
        base::StoreLittle(at + layout_.real_indexes, count32(definition_.real_indexes.size()));
        StoreRowPointer(at + layout_.owned_map, definition_.owned);
        StoreRowPointer(at + layout_.free_map, definition_.free);
    }

    void AppendColumn(const ColumnDefinition& column) {
        AppendByte(out_, static_cast<std::uint8_t>(column.type));
        if (jet4_) base::AppendLittle(out_, kDefinitionMark);
        base::AppendLittle(out_, column.number);
        base::AppendLittle(out_, column.variable_index);
        base::AppendLittle(out_, column.ordinal);
        if (!jet4_) AppendZeros(out_, 2);
        if (column.type == ColumnType::kNumeric) {
            AppendByte(out_, column.precision);
            AppendByte(out_, column.scale);
            AppendZeros(out_, 2);
        } else if (jet4_) {
            base::AppendLittle(out_, column.sort_order);
            AppendByte(out_, 0);
            AppendByte(out_, column.sort_version);
        } else {
            base::AppendLittle(out_, column.sort_order);
            base::AppendLittle(out_, column.code_page);
        }
        AppendByte(out_, column.flags);
        if (jet4_) {
            AppendByte(out_, column.extended_flags);
            AppendZeros(out_, 4);
        }
        base::AppendLittle(out_, column.fixed_offset);
        base::AppendLittle(out_, column.length);
    }

    void AppendRealIndex(const RealIndex& index) {
        if (jet4_) base::AppendLittle(out_, kRealIndexMark);
        for (std::size_t i = 0; i < kMaxIndexColumns; ++i) {
            const bool used = i < index.columns.size();
            base::AppendLittle<std::uint16_t>(out_, used ? index.columns[i].column : kNoColumn);
            AppendByte(out_, used && index.columns[i].ascending ? 1 : 0);
        }
        AppendPointer(out_, index.map);
        base::AppendLittle(out_, index.root);
        if (jet4_) AppendZeros(out_, 4);
        AppendByte(out_, index.flags);
        if (jet4_) AppendZeros(out_, 5);
    }

    void AppendLogicalIndex(const LogicalIndex& index) {
        if (jet4_) base::AppendLittle(out_, kDefinitionMark);
        base::AppendLittle(out_, index.number);
        base::AppendLittle(out_, index.real);
        AppendByte(out_, static_cast<std::uint8_t>(index.side));
        base::AppendLittle(out_, index.partner);
        base::AppendLittle(out_, index.other_table);
        AppendByte(out_, index.cascade_updates);
        AppendByte(out_, index.cascade_deletes);
        AppendByte(out_, static_cast<std::uint8_t>(index.kind));
        if (jet4_) AppendZeros(out_, 4);
    }

    base::Status AppendName(const std::u16string& name) {
        const auto bytes = text_.EncodeName(name);
        if (!bytes || bytes->size() > (jet4_ ? 0xFFFFU : 0xFFU))
            return JetError(ErrorNumber::kNotAValidName, name);
        if (jet4_)
            base::AppendLittle(out_, static_cast<std::uint16_t>(bytes->size()));
        else
            AppendByte(out_, static_cast<std::uint8_t>(bytes->size()));
        out_.insert(out_.end(), bytes->begin(), bytes->end());
        return {};
    }

    const TableDefinition& definition_;
    const DefinitionLayout& layout_;
    bool jet4_;
    const TextCodec& text_;
    Bytes out_;
};

// The order that the engine itself keeps; readers do not depend on it.
void Sort(TableDefinition& definition, bool jet4) {
    if (jet4) {
        std::ranges::stable_sort(definition.columns, [](const auto& a, const auto& b) {
            return a.ordinal != b.ordinal ? a.ordinal < b.ordinal : NameBefore(a.name, b.name);
        });
    } else {
        std::ranges::stable_sort(definition.columns, {}, &ColumnDefinition::number);
    }
    std::ranges::stable_sort(definition.logical_indexes, [](const auto& a, const auto& b) {
        return NameBefore(a.name, b.name);
    });
    std::ranges::stable_sort(definition.long_values, [&](const auto& a, const auto& b) {
        const ColumnDefinition* of_a = definition.FindColumn(a.column);
        const ColumnDefinition* of_b = definition.FindColumn(b.column);
        if (of_a == nullptr || of_b == nullptr) return false;
        return jet4 ? of_a < of_b : NameBefore(of_a->name, of_b->name);
    });
}

std::size_t PagesFor(std::size_t bytes, const Format& format) {
    const std::size_t later = format.page_size - kDefinitionPageHead;
    return bytes <= format.page_size ? 1 : 1 + (bytes - format.page_size + later - 1) / later;
}

void WritePage(std::span<std::byte> page, std::span<const std::byte> content, PageNumber next,
               bool jet4, std::size_t content_at) {
    std::ranges::fill(page, std::byte{0});
    std::memcpy(page.data() + content_at, content.data(), content.size());
    StoreType(page, PageType::kDefinition);
    const std::size_t used = content_at + content.size() + kDefinitionPageHead;
    const std::size_t free = next != 0 || used > page.size() ? 0 : page.size() - used;
    base::StoreLittle<std::uint16_t>(page.data() + kDefinitionFreeBytes,
                                     jet4 ? static_cast<std::uint16_t>(free) : kJet3HeadText);
    base::StoreLittle(page.data() + kNextDefinitionPage, next);
}

}  // namespace

base::Status WriteTableDefinition(PageStore& store, const Format& format, const TextCodec& text,
                                  PageAllocator& allocator, TableDefinition& definition) {
    Sort(definition, format.jet4());
    ASSIGN_OR_RETURN(const Bytes bytes, Builder(definition, format, text).Build());
    if (definition.pages.empty()) definition.pages.push_back(definition.page);
    const std::size_t needed = PagesFor(bytes.size(), format);
    while (definition.pages.size() < needed) {
        ASSIGN_OR_RETURN(const PageNumber added, allocator.Allocate());
        definition.pages.push_back(added);
    }
    while (definition.pages.size() > needed) {
        RETURN_IF_ERROR(allocator.Free(definition.pages.back()));
        definition.pages.pop_back();
    }
    std::size_t at = 0;
    for (std::size_t i = 0; i < needed; ++i) {
        const std::size_t head = i == 0 ? 0 : kDefinitionPageHead;
        const std::size_t size = std::min(bytes.size() - at, format.page_size - head);
        const PageNumber next = i + 1 < needed ? definition.pages[i + 1] : 0;
        ASSIGN_OR_RETURN(const std::span<std::byte> page, store.Change(definition.pages[i]));
        WritePage(page, std::span(bytes).subspan(at, size), next, format.jet4(), head);
        at += size;
    }
    return {};
}

}  // namespace jet
