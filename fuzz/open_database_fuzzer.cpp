// Opens a database in memory, reads every row of every table, both ways, changes rows and takes
// that back, and runs the checker. Input: byte 0 even: the rest is the file itself. Odd: the rest
// are patches (u24 offset, u8 size, bytes) of a sound file that the engine made; so small inputs
// reach deep. With bit 1 the file of the patches is encoded.
#include "damaged_database.h"
#include "jet/check/check.h"
#include "jet/connection.h"
#include "jet/rows/stored_fields.h"
#include "jet/tables/database.h"
#include "support/encoded_file.h"

#include <cstdlib>
#include <cstring>

namespace {

using Bytes = std::vector<std::byte>;

constexpr std::size_t kMaxFileSize = 1U << 20;

std::unique_ptr<jet::PageStore> StoreOf(const Bytes& file) {
    const bool is_jet3 = file.size() > 0x14 && file[0x14] == std::byte{0};
    return jet::MakeMemoryPageStore(is_jet3 ? 2048 : 4096, file);
}

void ReadRows(jet::Table& table, std::vector<jet::RowId>& some) {
    auto cursor = table.Scan();
    if (!cursor.ok()) return;
    std::vector<std::size_t> columns(table.design().columns.size());
    for (std::size_t i = 0; i < columns.size(); ++i)
        columns[i] = i;
    std::vector<jet::Value> values(columns.size());
    for (int i = 0; i < 20000; ++i) {
        const auto row = cursor.value()->Next();
        if (!row.ok() || !*row) return;
        cursor.value()->Read(columns, values).Ignore();
        if (some.size() < 3) some.push_back(**row);
    }
}

// A number that is none equals nothing, not even itself.
bool AreSame(const jet::Value& one, const jet::Value& other) {
    return one == other || jet::ToText(one) == jet::ToText(other);
}

// What is put away of a row must give the values that its table reads.
void PutAway(jet::Table& table, const std::vector<jet::RowId>& rows) {
    const jet::StoredFieldReader& reader = *table.stored_reader();
    jet::StoredFieldDecoder decoder(reader.text());
    std::vector<std::size_t> columns;
    for (std::size_t i = 0; i < table.design().columns.size(); ++i) {
        if (!jet::StoredFieldDecoder::CanDecode(reader.stored_column(i))) continue;
        decoder.Add(reader.stored_column(i), columns.size());
        columns.push_back(i);
    }
    std::vector<jet::Value> values(columns.size());
    const auto compare = [&](std::size_t row, std::span<const std::byte> fields) {
        if (!table.Read(rows[row], columns, values).ok()) std::abort();
        for (std::size_t i = 0; i < columns.size(); ++i)
            if (!AreSame(decoder.Read(fields, i), values[i])) std::abort();
    };
    table.VisitStored(rows, columns, compare).Ignore();
}

void WalkIndexes(jet::Table& table) {
    for (std::size_t i = 0; i < table.design().indexes.size(); ++i) {
        if (!table.design().indexes[i].maintainable) continue;
        auto cursor = table.Range(i, {}, {}, i % 2 == 1);
        if (!cursor.ok()) continue;
        for (int rows = 0; rows < 20000; ++rows) {
            const auto row = cursor.value()->Next();
            if (!row.ok() || !*row) break;
        }
    }
}

void ChangeRows(jet::Database& database, jet::Table& table, const std::vector<jet::RowId>& rows) {
    if (!database.Begin().ok()) return;
    std::vector<jet::Value> values(table.design().columns.size());
    table.Insert(values).status().Ignore();
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (i == 0)
            table.Delete(rows[i]).Ignore();
        else if (!values.empty())
            table.Update(rows[i], std::vector<jet::ColumnChange>{{values.size() - 1, {}}}).Ignore();
    }
    database.Rollback();
}

void Walk(const Bytes& file) {
    auto database = jet::OpenDatabase(StoreOf(file), "fuzz.mdb");
    if (!database.ok()) return;
    const auto names = database.value()->TableNames();
    if (!names.ok()) return;
    for (const std::u16string& name : *names) {
        const auto table = database.value()->FindTable(name);
        if (!table.ok()) continue;
        std::vector<jet::RowId> rows;
        ReadRows(**table, rows);
        PutAway(**table, rows);
        WalkIndexes(**table);
        ChangeRows(*database.value(), **table, rows);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const Bytes sound = fuzz::MakeSoundFile();
    if (size < 2 || size > kMaxFileSize) return 0;
    const std::span input(reinterpret_cast<const std::byte*>(data), size);
    const auto rest = input.subspan(1);
    Bytes file = (data[0] & 1) != 0 ? fuzz::Patched(sound, rest) : Bytes(rest.begin(), rest.end());
    if ((data[0] & 3) == 3) test_support::EncodeFile(file, 0x1234ABCD);
    const auto store = StoreOf(file);
    if (store->page_count() == 0) return 0;
    Walk(file);
    (void)jet::CheckIntegrity(*store);
    return 0;
}
