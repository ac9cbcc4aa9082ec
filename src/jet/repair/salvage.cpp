#include "jet/repair/salvage.h"

#include "base/unicode.h"
#include "jet/errors.h"
#include "jet/pages/data_page.h"
#include "jet/rows/field_codec.h"
#include "jet/rows/long_value.h"
#include "jet/rows/row_fetch.h"
#include "jet/text/names.h"

#include <algorithm>

namespace jet {
namespace {

bool IsKnownType(ColumnType type) {
    switch (type) {
    case ColumnType::kBoolean:
    case ColumnType::kByte:
    case ColumnType::kShort:
    case ColumnType::kLong:
    case ColumnType::kMoney:
    case ColumnType::kSingle:
    case ColumnType::kDouble:
    case ColumnType::kDate:
    case ColumnType::kBinary:
    case ColumnType::kText:
    case ColumnType::kOle:
    case ColumnType::kMemo:
    case ColumnType::kGuid:
    case ColumnType::kNumeric:
    case ColumnType::kFixedBinary:
        return true;
    }
    return false;
}

bool IsUsable(const ColumnDefinition& column, const Format& format) {
    if (!IsKnownType(column.type) || column.name.empty() || column.name.size() > kMaxNameLength)
        return false;
    if (column.is_long_value()) return column.is_variable();
    if (!column.is_fixed()) return true;
    const std::size_t size = FixedSize(column.type);
    return (size == 0 || size == column.length) && column.length > 0 &&
           std::size_t{column.fixed_offset} + column.length <= format.max_row_bytes;
}

bool ColumnsAreUsable(const TableDefinition& table, const Format& format) {
    if (table.columns.empty() || table.columns_ever > 4 * kMaxColumns) return false;
    std::set<std::uint16_t> variables;
    std::vector<std::pair<unsigned, unsigned>> ranges;
    for (std::size_t i = 0; i < table.columns.size(); ++i) {
        const ColumnDefinition& column = table.columns[i];
        if (!IsUsable(column, format)) return false;
        if (column.is_variable() && !variables.insert(column.variable_index).second) return false;
        if (column.is_fixed())
            ranges.emplace_back(column.fixed_offset, column.fixed_offset + column.length);
        for (std::size_t other = 0; other < i; ++other)
            if (table.columns[other].number == column.number ||
                SameName(table.columns[other].name, column.name))
                return false;
    }
    std::ranges::sort(ranges);
    for (std::size_t i = 1; i < ranges.size(); ++i)
        if (ranges[i].first < ranges[i - 1].second) return false;
    return true;
}

bool IsUsable(const RealIndex& index, const TableDefinition& table) {
    if (index.columns.empty() || index.columns.size() > kMaxIndexColumns) return false;
    for (std::size_t i = 0; i < index.columns.size(); ++i) {
        if (table.FindColumn(index.columns[i].column) == nullptr) return false;
        for (std::size_t other = 0; other < i; ++other)
            if (index.columns[other].column == index.columns[i].column) return false;
    }
    return true;
}

// Keeps the names that contradict nothing and the indexes that have one.
void CleanIndexes(TableDefinition& table) {
    std::vector<LogicalIndex> names;
    for (const LogicalIndex& name : table.logical_indexes) {
        const bool repeated = std::ranges::any_of(names, [&](const LogicalIndex& other) {
            return other.number == name.number || SameName(other.name, name.name) ||
                   (other.kind == IndexKind::kPrimary && name.kind == IndexKind::kPrimary);
        });
        if (repeated || names.size() == kMaxIndexes || name.name.empty() ||
            name.name.size() > kMaxNameLength || name.real >= table.real_indexes.size() ||
            name.kind > IndexKind::kRelation || name.side > RelationSide::kForeign ||
            !IsUsable(table.real_indexes[name.real], table))
            continue;
        names.push_back(name);
    }
    std::vector<std::uint32_t> places(table.real_indexes.size());
    std::vector<RealIndex> kept;
    for (std::uint32_t real = 0; real < places.size(); ++real) {
        places[real] = static_cast<std::uint32_t>(kept.size());
        if (std::ranges::find(names, real, &LogicalIndex::real) != names.end())
            kept.push_back(table.real_indexes[real]);
    }
    for (LogicalIndex& name : names)
        name.real = places[name.real];
    table.logical_indexes = std::move(names);
    table.real_indexes = std::move(kept);
}

// Characters of a stored text; nullopt: not a text.
std::optional<std::size_t> CountCharacters(std::span<const std::byte> text, bool jet4) {
    if (!jet4) return text.size();
    const bool compressed =
        text.size() >= 2 && text[0] == std::byte{0xFF} && text[1] == std::byte{0xFE};
    if (!compressed) return text.size() % 2 == 0 ? std::optional(text.size() / 2) : std::nullopt;
    std::size_t characters = 0;
    bool wide = false;
    for (std::size_t at = 2; at < text.size(); ++at) {
        if (text[at] == std::byte{0}) {
            wide = !wide;
            continue;
        }
        ++characters;
        if (wide && ++at == text.size()) return std::nullopt;
    }
    return characters;
}

// Empty: the bytes are a value of the column.
std::string ProblemOf(const ColumnDefinition& column, std::span<const std::byte> bytes, bool jet4) {
    const std::size_t size = FixedSize(column.type);
    if (size != 0) return bytes.size() == size ? "" : "the value has another length than its type";
    if (column.is_text()) {
        const auto characters = CountCharacters(bytes, jet4);
        if (!characters) return "the text ends inside a character";
        const std::size_t most = jet4 ? column.length / 2U : column.length;
        return column.type == ColumnType::kMemo || *characters <= most
                   ? ""
                   : "the text is longer than the column";
    }
    const bool fits = column.is_long_value() || bytes.size() <= column.length;
    return fits ? "" : "the value is longer than the column";
}

// That a long value says it has; 0: it has none.
std::uint64_t LengthOf(const RowView& row, const ColumnDefinition& column) {
    const auto field = row.Bit(column.number) ? row.Field(column) : std::nullopt;
    if (!field || field->size() < kLongValueHead) return 0;
    return base::LoadLittle<std::uint32_t>(field->data()) & kLongValueLength;
}

}  // namespace

bool IsGivenBack(FileContext& file, PageNumber page) {
    const auto map = file.store.Read(kGlobalMapPage);
    if (!map.ok() || LoadOwner(map->bytes()) != kGlobalMapOwner) return false;
    const auto free = file.allocator.IsFree(page);
    return free.ok() && *free;
}

bool MakeUsable(TableDefinition& definition, const Format& format) {
    if (!ColumnsAreUsable(definition, format)) return false;
    CleanIndexes(definition);
    definition.kind = definition.page <= kRelationsPage ? kSystemTable : kUserTable;
    return true;
}

Survey SurveyPages(FileContext& file) {
    Survey survey;
    for (PageNumber number = kObjectsPage; number < file.store.page_count(); ++number) {
        const auto view = file.store.Read(number);
        if (!view.ok()) {
            survey.damaged_pages.push_back(number);
            continue;
        }
        const std::span<const std::byte> bytes = view->bytes();
        if (HasType(bytes, PageType::kDefinition)) {
            auto definition = ReadTableDefinition(file.store, file.format, file.text, number);
            if (!definition.ok() || !MakeUsable(*definition, file.format)) continue;
            for (std::size_t i = 1; i < definition->pages.size(); ++i)
                survey.continuations.insert(definition->pages[i]);
            survey.definitions.emplace(number, std::move(*definition));
        } else if (HasType(bytes, PageType::kData)) {
            if (const auto page = DataPage::Parse(bytes, file.format))
                survey.data_pages[page->owner()].push_back(number);
            else
                survey.damaged_pages.push_back(number);
        } else if (!HasType(bytes, PageType::kIndexNode) && !HasType(bytes, PageType::kIndexLeaf) &&
                   !HasType(bytes, PageType::kBitmap) && !IsGivenBack(file, number)) {
            survey.damaged_pages.push_back(number);
        }
    }
    return survey;
}

std::vector<PageNumber> UnexplainedPages(FileContext& file, const Survey& survey) {
    std::set<PageNumber> unexplained(survey.damaged_pages.begin(), survey.damaged_pages.end());
    const auto explain = [&](RowPointer map, const auto& is_right_kind) {
        const auto members = file.Map(map).Members();
        if (!members.ok()) return;
        const bool is_trusted = std::ranges::all_of(*members, [&](PageNumber page) {
            const auto view = file.store.Read(page);
            return std::ranges::binary_search(survey.damaged_pages, page) ||
                   (view.ok() && is_right_kind(view->bytes()));
        });
        for (const PageNumber page : *members)
            if (is_trusted) unexplained.erase(page);
    };
    for (const auto& entry : survey.definitions) {
        const TableDefinition& table = entry.second;
        explain(table.owned, [&](std::span<const std::byte> page) {
            return HasType(page, PageType::kData) && LoadOwner(page) == table.page;
        });
        for (const LongValueMaps& maps : table.long_values)
            explain(maps.owned, [](std::span<const std::byte> page) {
                return HasType(page, PageType::kData) && LoadOwner(page) == kLongValueOwner;
            });
        for (const RealIndex& index : table.real_indexes)
            explain(index.map, [](std::span<const std::byte> page) {
                return HasType(page, PageType::kIndexLeaf) || HasType(page, PageType::kIndexNode);
            });
    }
    return {unexplained.begin(), unexplained.end()};
}

bool RowSalvage::Spend(std::uint64_t bytes) {
    if (bytes > budget_) return false;
    budget_ -= bytes;
    return true;
}

base::Status RowSalvage::Run(const Visitor& visit) {
    const auto listed = file_.Map(table_.owned).Members();
    std::set<PageNumber> members;
    if (listed.ok()) members.insert(listed->begin(), listed->end());
    const bool is_trusted = ReportMissingPages(members) && !members.empty();
    const auto pages = survey_.data_pages.find(table_.page);
    if (pages == survey_.data_pages.end()) return {};
    for (const PageNumber page : pages->second) {
        // Two witnesses say that it is none of the table's any more.
        if (is_trusted && !members.contains(page) && IsGivenBack(file_, page)) continue;
        RETURN_IF_ERROR(ReadPage(page, visit));
    }
    return ReadLeftTargets(visit);
}

bool RowSalvage::ReportMissingPages(const std::set<PageNumber>& members) {
    const std::uint64_t before = report_.loss_count;
    for (const PageNumber page : members) {
        const auto view = file_.store.Read(page);
        const auto parsed = view.ok() ? DataPage::Parse(view->bytes(), file_.format) : std::nullopt;
        if (!parsed || parsed->owner() != table_.page)
            Lose(page, -1, "", "the page holds no rows of the table any more");
    }
    return report_.loss_count == before;
}

base::Status RowSalvage::ReadPage(PageNumber number, const Visitor& visit) {
    const auto view = file_.store.Read(number);
    const auto page = view.ok() ? DataPage::Parse(view->bytes(), file_.format) : std::nullopt;
    if (!page) {
        Lose(number, -1, "", "the page cannot be read again");
        return {};
    }
    for (std::size_t slot = 0; slot < page->slot_count(); ++slot) {
        const RowId at{number, static_cast<std::uint8_t>(slot)};
        const std::uint16_t flags = page->Flags(slot);
        if (flags == kSlotDeleted) continue;
        const auto bytes = page->Bytes(slot);
        if (!bytes) {
            Lose(number, at.slot, "", "the row lies outside of its page");
        } else if (flags == kSlotTarget) {
            targets_.insert(at);
        } else if (flags == kSlotMoved) {
            const auto moved = FollowMovedRow(file_, table_.page, *bytes);
            if (!moved.ok() || !reached_.insert(moved->at).second)
                Lose(number, at.slot, "", "the place that the row went to is not there");
            else
                RETURN_IF_ERROR(ReadRow(at, moved->bytes, visit));
        } else {
            RETURN_IF_ERROR(ReadRow(at, *bytes, visit));
        }
    }
    return {};
}

// Rows that were moved, and whose own places are lost. In a file without such damage they are left
// from rows deleted long ago.
base::Status RowSalvage::ReadLeftTargets(const Visitor& visit) {
    if (survey_.damaged_pages.empty()) return {};
    for (const RowId at : targets_) {
        if (reached_.contains(at)) continue;
        const auto view = file_.store.Read(at.page);
        const auto page = view.ok() ? DataPage::Parse(view->bytes(), file_.format) : std::nullopt;
        const auto bytes = page ? page->Bytes(at.slot) : std::nullopt;
        if (bytes) RETURN_IF_ERROR(ReadRow(at, *bytes, visit));
    }
    return {};
}

base::Status RowSalvage::ReadRow(RowId at, std::span<const std::byte> bytes, const Visitor& visit) {
    const auto row = RowView::Parse(bytes, file_.format);
    if (!row || row->column_count() > table_.columns_ever) {
        Lose(at.page, at.slot, "", "the bytes are no row of the table");
        return {};
    }
    if (!Spend(std::max(bytes.size(), table_.fixed_bytes()))) {
        Lose(at.page, at.slot, "", "there are more rows than the file has room for");
        return {};
    }
    CopiedRow copy(table_.columns.size());
    for (std::size_t i = 0; i < copy.size(); ++i)
        ReadField(at, *row, i, copy[i]);
    return visit(at, std::move(copy));
}

void RowSalvage::ReadField(RowId at, const RowView& row, std::size_t index, CopiedField& field) {
    const ColumnDefinition& column = table_.columns[index];
    if (column.is_long_value() && LengthOf(row, column) > budget_)
        return Lose(at.page, at.slot, base::ToUtf8(column.name),
                    "there are more long values than the file has room for");
    const base::Status read = CopyField(file_, column, row, field);
    if (read.ok() && (!field.set || column.type == ColumnType::kBoolean)) return;
    std::string problem = read.ok() ? ProblemOf(column, field.bytes, file_.format.jet4())
                                    : std::string(read.message());
    if (problem.empty()) {
        if (column.is_long_value()) Spend(field.bytes.size());
        return;
    }
    field = {};
    Lose(at.page, at.slot, base::ToUtf8(column.name), problem);
}

}  // namespace jet
