#include "snapshots/compare.h"

#include "base/byte_writer.h"
#include "base/unicode.h"
#include "jet/pages/journal_format.h"
#include "jet/pages/page_copy.h"
#include "jet/text/names.h"

#include <algorithm>
#include <bit>
#include <unordered_map>

namespace snapshots {
namespace {

using jet::Value;
using Bytes = std::vector<std::byte>;

// The bytes that stand for a value: the kind, then what it holds; those of different values differ.
class ValueBytes {
public:
    explicit ValueBytes(Bytes& out) : out_(out) {}

    void operator()(std::monostate) const {}
    void operator()(bool value) const { Append(std::uint8_t{value}); }
    void operator()(std::uint8_t value) const { Append(value); }
    void operator()(std::int16_t value) const { Append(value); }
    void operator()(std::int32_t value) const { Append(value); }
    void operator()(jet::Money value) const { Append(value.units); }
    void operator()(float value) const { Append(std::bit_cast<std::uint32_t>(value)); }
    void operator()(double value) const { Append(std::bit_cast<std::uint64_t>(value)); }
    void operator()(jet::Date value) const { (*this)(value.days); }
    void operator()(const std::u16string& text) const {
        Append(static_cast<std::uint64_t>(text.size()));
        for (const char16_t unit : text)
            Append(static_cast<std::uint16_t>(unit));
    }
    void operator()(const Bytes& bytes) const {
        Append(static_cast<std::uint64_t>(bytes.size()));
        out_.insert(out_.end(), bytes.begin(), bytes.end());
    }
    void operator()(const jet::Guid& guid) const {
        out_.insert(out_.end(), guid.bytes.begin(), guid.bytes.end());
    }
    void operator()(const jet::Numeric& number) const {
        Append(std::uint8_t{number.negative});
        Append(number.scale);
        for (const std::uint32_t word : number.magnitude)
            Append(word);
    }

private:
    template <typename T>
    void Append(T value) const {
        base::AppendLittle(out_, value);
    }
    Bytes& out_;
};

void AppendValue(Bytes& out, const Value& value) {
    base::AppendLittle(out, static_cast<std::uint8_t>(value.content().index()));
    std::visit(ValueBytes(out), value.content());
}

std::uint64_t HashOf(const Bytes& bytes) {
    return jet::JournalChecksum(1, bytes);
}

// One of the two states of a table: where the columns of both stand in it.
struct Side {
    jet::Table* table = nullptr;  // null: this state has no such table
    std::vector<std::optional<std::size_t>> columns;
    std::vector<std::size_t> read;  // those that are there
};

struct Row {
    std::string key;
    std::uint64_t hash = 0;
};

std::optional<std::size_t> FindColumn(const jet::TableDesign& design, std::u16string_view name) {
    const auto found = std::ranges::find_if(design.columns, [&](const jet::ColumnDesign& column) {
        return jet::SameName(column.name, name);
    });
    if (found == design.columns.end()) return std::nullopt;
    return static_cast<std::size_t>(found - design.columns.begin());
}

std::vector<std::u16string> PrimaryKeyOf(const jet::Table* table) {
    std::vector<std::u16string> names;
    if (table == nullptr) return names;
    for (const jet::IndexDesign& index : table->design().indexes)
        if (index.primary)
            for (const jet::IndexColumn& column : index.columns)
                names.push_back(table->design().columns[column.column].name);
    return names;
}

// The names of the columns of both, those of the key first.
class Layout {
public:
    Layout(jet::Table* now, jet::Table* then) {
        names_ = PrimaryKeyOf(now != nullptr ? now : then);
        const auto other = PrimaryKeyOf(then != nullptr ? then : now);
        const bool is_same = std::ranges::equal(names_, other, jet::SameName);
        if (!is_same) names_.clear();
        key_columns_ = names_.size();
        for (const jet::Table* table : {now, then})
            if (table != nullptr)
                for (const jet::ColumnDesign& column : table->design().columns)
                    Add(column.name);
    }
    std::size_t key_columns() const { return key_columns_; }  // 0: the row as a whole

    Side Of(jet::Table* table) const {
        Side side;
        side.table = table;
        if (table == nullptr) return side;
        for (const std::u16string& name : names_) {
            side.columns.push_back(FindColumn(table->design(), name));
            if (side.columns.back()) side.read.push_back(*side.columns.back());
        }
        return side;
    }

private:
    void Add(const std::u16string& name) {
        const bool is_known = std::ranges::any_of(
            names_, [&](const std::u16string& known) { return jet::SameName(known, name); });
        if (!is_known) names_.push_back(name);
    }
    std::vector<std::u16string> names_;
    std::size_t key_columns_ = 0;
};

// Calls `take` for each row.
template <typename Take>
base::Status Walk(const Side& side, std::size_t key_columns, Take take) {
    if (side.table == nullptr) return {};
    ASSIGN_OR_RETURN(const auto cursor, side.table->Scan());
    std::vector<Value> values(side.read.size());
    const Value null;
    Bytes bytes;
    Row row;
    for (;;) {
        ASSIGN_OR_RETURN(const auto id, cursor->Next());
        if (!id) return {};
        RETURN_IF_ERROR(cursor->Read(side.read, values));
        bytes.clear();
        std::size_t next = 0;
        std::size_t key_bytes = 0;
        for (std::size_t i = 0; i < side.columns.size(); ++i) {
            AppendValue(bytes, side.columns[i] ? values[next++] : null);
            if (i + 1 == key_columns) key_bytes = bytes.size();
        }
        row.hash = HashOf(bytes);
        row.key.assign(reinterpret_cast<const char*>(bytes.data()), key_bytes);
        if (key_columns == 0)
            row.key.assign(reinterpret_cast<const char*>(&row.hash), sizeof row.hash);
        take(row);
    }
}

base::Result<TableDifference> CompareTables(jet::Table* now, jet::Table* then) {
    const Layout layout(now, then);
    TableDifference difference;
    difference.table = base::ToUtf8((now != nullptr ? now : then)->design().name);
    // More than one row of a key: a table without a primary key.
    std::unordered_multimap<std::string, std::uint64_t> rows;
    RETURN_IF_ERROR(Walk(layout.Of(now), layout.key_columns(),
                         [&](const Row& row) { rows.emplace(row.key, row.hash); }));
    RETURN_IF_ERROR(Walk(layout.Of(then), layout.key_columns(), [&](const Row& row) {
        const auto found = rows.find(row.key);
        if (found == rows.end()) {
            ++difference.more;
            return;
        }
        ++(found->second == row.hash ? difference.equal : difference.different);
        rows.erase(found);
    }));
    difference.fewer = rows.size();
    return difference;
}

// nullptr: there is none.
base::Result<jet::Table*> TableOf(jet::Database& database, std::u16string_view name,
                                  const std::vector<std::u16string>& names) {
    const bool is_there = std::ranges::any_of(
        names, [&](const std::u16string& known) { return jet::SameName(known, name); });
    if (!is_there) return nullptr;
    return database.FindTable(name);
}

base::Result<std::unique_ptr<jet::Database>> Open(const Bytes& bytes, const char* name) {
    ASSIGN_OR_RETURN(const std::uint32_t page_size, jet::PageSizeOf(bytes));
    return jet::OpenDatabase(jet::MakeReadOnlyPageStore(jet::PagesOf(bytes, page_size)), name);
}

}  // namespace

base::Result<std::vector<TableDifference>> CompareDatabases(jet::Database& now,
                                                            jet::Database& then) {
    ASSIGN_OR_RETURN(const std::vector<std::u16string> names_now, now.TableNames());
    ASSIGN_OR_RETURN(const std::vector<std::u16string> names_then, then.TableNames());
    std::vector<std::u16string> names = names_now;
    for (const std::u16string& name : names_then)
        if (std::ranges::none_of(names_now,
                                 [&](const auto& known) { return jet::SameName(known, name); }))
            names.push_back(name);
    std::vector<TableDifference> differences;
    for (const std::u16string& name : names) {
        ASSIGN_OR_RETURN(jet::Table* const table_now, TableOf(now, name, names_now));
        ASSIGN_OR_RETURN(jet::Table* const table_then, TableOf(then, name, names_then));
        ASSIGN_OR_RETURN(TableDifference difference, CompareTables(table_now, table_then));
        differences.push_back(std::move(difference));
    }
    return differences;
}

base::Result<std::vector<TableDifference>> CompareFiles(const Bytes& now, const Bytes& then) {
    ASSIGN_OR_RETURN(const auto database_now, Open(now, "the catalogue"));
    ASSIGN_OR_RETURN(const auto database_then, Open(then, "the snapshot"));
    return CompareDatabases(*database_now, *database_then);
}

}  // namespace snapshots
