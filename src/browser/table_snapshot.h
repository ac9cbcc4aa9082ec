// TableSnapshot: what the tree shows of the selected tables and what Find looks at, read when the
// query runs. Takes 96 bytes per table and its texts (text_store.h).
#pragma once

#include "base/status.h"
#include "browser/text_store.h"
#include "jet/recordset.h"

#include <QtCore/QString>

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace browser {

// The number of detail lines under a table.
inline constexpr int kDetailCount = 6;
// Detail lines that are told from the others.
inline constexpr int kFileDateDetail = 0;
inline constexpr int kAuthorDetail = 1;
inline constexpr int kCompanyDetail = 2;
inline constexpr int kYearDetail = 3;
inline constexpr int kLastPlayedDetail = 4;
inline constexpr int kDateAddedDetail = 5;
// The label of a detail line (0..5): "File Date: ", "Author: "...
QString DetailLabel(int detail);

class TableSnapshot {
public:
    std::size_t size() const { return rows_.size(); }

    // Requires for all: table < size().
    std::int32_t Id(std::size_t table) const { return rows_[table].id; }
    QString DisplayName(std::size_t table) const { return Text(rows_[table].display_name); }
    QString FileName(std::size_t table) const { return Text(rows_[table].file_name); }
    // Empty for Null.
    QString ImageFile(std::size_t table) const { return Text(rows_[table].image_file); }
    bool Favorite(std::size_t table) const { return rows_[table].favorite; }
    bool PinMame(std::size_t table) const { return rows_[table].pinmame; }
    QString Version(std::size_t table) const { return Text(rows_[table].version); }
    // 0 for Null.
    std::int32_t TimesPlayed(std::size_t table) const { return rows_[table].times_played; }
    // The value of a detail line as text; empty for Null.
    QString DetailText(std::size_t table, int detail) const;
    // In days since 1899-12-30; nullopt: the value is no date.
    std::optional<double> DetailDate(std::size_t table, int detail) const;
    // Label and value; the label alone if the value is Null. Dates are in the general format.
    QString DetailLine(std::size_t table, int detail) const;

    // Reads `rows` from the current row to the end. Columns that are missing in `rows` count as
    // Null. `progress` (may be empty) is called after each row with the number of tables read.
    static base::Result<TableSnapshot> Read(jet::Recordset& rows,
                                            const std::function<void(std::int64_t)>& progress = {});

private:
    // Details are formatted when they are shown.
    enum class DetailKind : std::uint8_t { kNull, kDate, kText };
    struct Row {
        std::int32_t id = 0;
        std::int32_t times_played = 0;
        std::uint16_t detail_kinds = 0;  // two bits each
        bool favorite = false;
        bool pinmame = false;
        TextStore::Reference display_name;
        TextStore::Reference file_name;
        TextStore::Reference version;
        TextStore::Reference image_file;
        std::array<std::uint64_t, kDetailCount>
            details{};  // bits of a double or TextStore::Reference
    };

    struct Columns;
    DetailKind KindOf(const Row& row, int detail) const {
        return static_cast<DetailKind>((row.detail_kinds >> (2 * detail)) & 3);
    }
    base::Status AddRow(jet::Recordset& rows, const Columns& columns);
    TextStore::Reference KeepText(const jet::Value& value);
    void KeepDetail(Row& row, int detail, const jet::Value& value);
    QString Text(TextStore::Reference reference) const;

    TextStore texts_;
    std::vector<Row> rows_;
};

// Shared by the model and by the thread that makes Find's index of it; nobody changes it.
using TableSnapshotPointer = std::shared_ptr<const TableSnapshot>;

}  // namespace browser
