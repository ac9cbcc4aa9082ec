#include "jet/check/check_table.h"

#include "base/unicode.h"
#include "jet/check/check_index.h"
#include "jet/check/check_keys.h"
#include "jet/check/check_long_values.h"
#include "jet/pages/data_page.h"

#include <algorithm>

namespace jet::check {
namespace {

// Bytes of a value of this type; 0: any number.
std::size_t SizeOf(ColumnType type) {
    switch (type) {
    case ColumnType::kByte:
        return 1;
    case ColumnType::kShort:
        return 2;
    case ColumnType::kLong:
    case ColumnType::kSingle:
        return 4;
    case ColumnType::kMoney:
    case ColumnType::kDouble:
    case ColumnType::kDate:
        return 8;
    case ColumnType::kGuid:
        return 16;
    case ColumnType::kNumeric:
        return 17;
    default:
        return 0;
    }
}

// Characters of a stored Jet 4 text; nullopt: not a text.
std::optional<std::size_t> CountCharacters(std::span<const std::byte> text) {
    const bool is_compressed =
        text.size() >= 2 && text[0] == std::byte{0xFF} && text[1] == std::byte{0xFE};
    if (!is_compressed) return text.size() % 2 == 0 ? std::optional(text.size() / 2) : std::nullopt;
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

// Scans the rows of one table.
class TableCheck {
public:
    TableCheck(CheckRun& run, const Definition& definition, const RowVisitor& visit_row,
               const LongValueVisitor& visit_long_value)
        : run_(run), definition_(definition), visit_row_(visit_row),
          visit_long_value_(visit_long_value), expected_(definition.indexes.size()) {}

    void Run() {
        ReadPages();
        for (const auto& [number, maps] : definition_.long_values) {
            const auto column = std::ranges::find(definition_.columns, number,
                                                  [](const Column& c) { return c.number; });
            const std::string name = column == definition_.columns.end()
                                         ? "column " + std::to_string(number)
                                         : "column " + base::ToUtf8(column->name);
            long_values_.try_emplace(number, run_, maps, name, definition_.page);
        }
        for (const auto& [page, data] : pages_)
            CheckRows(page, data);
        CheckTargets();
        for (auto& [number, values] : long_values_)
            values.ReportUnused();
        CheckCounters();
        CheckIndexes();
    }

private:
    void ReadPages() {
        const auto owned = run_.ReadMap(definition_.owned, "the table's pages");
        const auto free = run_.ReadMap(definition_.free, "the table's free space");
        if (!owned) return;
        for (const PageNumber page : free.value_or(PageSet()))
            if (!owned->contains(page))
                run_.Fault(page, -1, "is in the map of the table's free space, but not its own");
        for (const PageNumber page : *owned) {
            if (!run_.Claim(page, "table " + std::to_string(definition_.page))) continue;
            auto data = run_.ReadDataPage(page, definition_.page);
            if (!data) continue;
            if (data->owner != definition_.page)
                run_.Fault(page, -1,
                           "is in the table's map, but says that it belongs to " +
                               std::to_string(data->owner));
            pages_.emplace(page, std::move(*data));
        }
    }

    void CheckRows(PageNumber page, const DataPage& data) {
        const auto view = run_.Page(page, definition_.page);
        if (!view) return;
        for (std::size_t i = 0; i < data.slots.size(); ++i) {
            const auto slot = static_cast<std::uint8_t>(i);
            const std::uint16_t flags = data.slots[i].flags;
            if (flags == Slot::kDeleted) continue;
            if (flags == Slot::kTarget) {
                targets_.insert({page, slot});
                continue;
            }
            ++live_rows_;
            if (flags == Slot::kMoved)
                FollowMove(page, slot, RowIn(*view, data, i));
            else
                CheckRow(page, slot, RowIn(*view, data, i));
        }
    }

    void FollowMove(PageNumber page, std::uint8_t slot, std::span<const std::byte> bytes) {
        if (bytes.size() < 4)
            return run_.Fault(page, slot, "is too short to say where the row went");
        const RowPointer to = LoadRowPointer(bytes.data());
        const auto found = pages_.find(to.page);
        if (found == pages_.end() || to.row >= found->second.slots.size() ||
            found->second.slots[to.row].flags != Slot::kTarget)
            return run_.Fault(page, slot,
                              "says that the row went to page " + std::to_string(to.page) +
                                  " row " + std::to_string(to.row) + ", where it is not");
        if (!reached_.insert({to.page, to.row}).second)
            return run_.Fault(page, slot, "says that the row went where another one went");
        const auto view = run_.Page(to.page, page);
        if (view) CheckRow(page, slot, RowIn(*view, found->second, to.row));
    }

    void CheckTargets() {
        for (const auto& [page, slot] : targets_)
            if (!reached_.contains({page, slot}))
                run_.Warn(page, slot, "is a moved row that nothing leads to");
    }

    // `page` and `slot` are those of the row's first place, wherever its bytes lie.
    void CheckRow(PageNumber page, std::uint8_t slot, std::span<const std::byte> bytes) {
        ++run_.report().rows;
        std::string problem;
        const auto row = Row::Parse(bytes, definition_, run_.format(), problem);
        if (!row) return run_.Fault(page, slot, problem);
        std::vector<std::optional<Bytes>> contents(definition_.columns.size());
        for (std::size_t i = 0; i < definition_.columns.size(); ++i)
            CheckField(page, slot, *row, i, contents[i]);
        if (visit_row_) visit_row_(page, slot, *row);
        for (std::size_t i = 0; i < definition_.indexes.size(); ++i)
            ExpectEntry(page, slot, *row, contents, i);
    }

    void CheckField(PageNumber page, std::uint8_t slot, const Row& row, std::size_t index,
                    std::optional<Bytes>& content) {
        const Column& column = definition_.columns[index];
        if (column.type == ColumnType::kBoolean) return;
        std::string problem;
        const auto field = row.Field(column, problem);
        const std::string name = "column " + base::ToUtf8(column.name);
        if (!problem.empty()) run_.Fault(page, slot, name + ": " + problem);
        if (!field) return;
        const auto long_value = long_values_.find(column.number);
        if (column.is_long_value() && long_value != long_values_.end()) {
            content = long_value->second.Follow(*field, page, slot);
            if (visit_long_value_) visit_long_value_(page, slot, column, *content);
        } else {
            content.emplace(field->begin(), field->end());
        }
        const std::size_t size = SizeOf(column.type);
        if (size != 0 && field->size() != size)
            run_.Fault(page, slot,
                       name + ": the value has " + std::to_string(field->size()) + " bytes");
        if (column.is_text()) CheckText(page, slot, column, name, *content);
        if (column.autonumber() && column.type == ColumnType::kLong && field->size() == 4)
            greatest_autonumber_ =
                std::max(greatest_autonumber_, base::LoadLittle<std::int32_t>(field->data()));
        const bool is_short =
            column.type == ColumnType::kBinary || column.type == ColumnType::kFixedBinary;
        if (is_short && field->size() > column.length)
            run_.Fault(page, slot, name + ": the value is longer than the column");
    }

    void CheckText(PageNumber page, std::uint8_t slot, const Column& column,
                   const std::string& name, const Bytes& text) {
        const auto characters = run_.format().jet4() ? CountCharacters(text) : text.size();
        if (!characters) return run_.Fault(page, slot, name + ": the text ends inside a character");
        const std::size_t most = run_.format().jet4() ? column.length / 2U : column.length;
        if (column.type == ColumnType::kText && *characters > most)
            run_.Fault(page, slot, name + ": the text is longer than the column");
    }

    void ExpectEntry(PageNumber page, std::uint8_t slot, const Row& row,
                     const std::vector<std::optional<Bytes>>& contents, std::size_t index_number) {
        const RealIndex& index = definition_.indexes[index_number];
        Bytes& key = key_;
        key.clear();
        bool all_null = true;
        bool has_null = false;
        for (const IndexPart& part : index.parts) {
            const Column& column = definition_.columns[part.column];
            const bool is_null =
                column.type != ColumnType::kBoolean && !contents[part.column].has_value();
            all_null = all_null && is_null;
            has_null = has_null || is_null;
            if (!KnowsKeysOf(run_, column)) continue;
            std::optional<std::span<const std::byte>> field;
            if (!is_null && column.type != ColumnType::kBoolean) field = *contents[part.column];
            AppendKey(run_, column, part.ascending, field, row.Bit(column), key);
        }
        if (has_null && index.required())
            run_.Fault(page, slot,
                       "index " + base::ToUtf8(index.name) + ": a null where none is allowed");
        if (all_null && index.ignores_nulls()) return;
        base::AppendBig(key, static_cast<std::uint32_t>(page << 8 | slot));
        expected_[index_number].Append(key, all_null);
    }

    void CheckCounters() {
        if (live_rows_ != definition_.rows)
            run_.Warn(definition_.page, -1,
                      "says that it has " + std::to_string(definition_.rows) +
                          " rows, but it has " + std::to_string(live_rows_));
        if (greatest_autonumber_ > 0 &&
            static_cast<std::uint32_t>(greatest_autonumber_) > definition_.autonumber)
            run_.Warn(definition_.page, -1,
                      "the next automatic number is not greater than all there are");
    }

    void CheckIndexes() {
        for (std::size_t i = 0; i < definition_.indexes.size(); ++i) {
            const RealIndex& index = definition_.indexes[i];
            const bool knows_keys = std::ranges::all_of(index.parts, [&](const IndexPart& part) {
                return KnowsKeysOf(run_, definition_.columns[part.column]);
            });
            CheckIndex(run_, definition_, index, std::move(expected_[i]), knows_keys);
        }
    }

    using Place = std::pair<PageNumber, std::uint8_t>;

    CheckRun& run_;
    const Definition& definition_;
    const RowVisitor& visit_row_;
    const LongValueVisitor& visit_long_value_;
    std::map<PageNumber, DataPage> pages_;
    std::map<std::uint16_t, LongValues> long_values_;
    std::set<Place> targets_;
    std::set<Place> reached_;
    std::uint64_t live_rows_ = 0;
    std::int32_t greatest_autonumber_ = 0;
    std::vector<EntryList> expected_;  // by the index
    Bytes key_;
};

}  // namespace

void CheckTable(CheckRun& run, const Definition& definition, const RowVisitor& visit_row,
                const LongValueVisitor& visit_long_value) {
    TableCheck(run, definition, visit_row, visit_long_value).Run();
}

}  // namespace jet::check
