// TableSnapshot: what the tree shows of the selected tables, as they were when the query ran; 72
// bytes a table and its texts.
#pragma once

#include "base/status.h"
#include "browser/text_store.h"
#include "jet/recordset.h"

#include <QtCore/QString>

#include <array>
#include <cstdint>
#include <functional>
#include <vector>

namespace browser {

// The detail lines under a table, in their order.
inline constexpr int kDetailCount = 6;
// "File Date: ", "Author: " and so on.
QString DetailLabel(int detail);

class TableSnapshot {
public:
    std::size_t size() const { return rows_.size(); }

    // Requires for all: table < size().
    std::int32_t Id(std::size_t table) const { return rows_[table].id; }
    QString DisplayName(std::size_t table) const { return Text(rows_[table].display_name); }
    QString FileName(std::size_t table) const { return Text(rows_[table].file_name); }
    bool Favorite(std::size_t table) const { return rows_[table].favorite; }
    bool PinMame(std::size_t table) const { return rows_[table].pinmame; }
    // The label and the value, a date in the general form; nothing after the label when the column
    // is null.
    QString DetailLine(std::size_t table, int detail) const;

    // Reads `rows` from the current one to the end; columns that the query lacks count as null.
    // `progress` (may be empty) is called after each row with the number of tables read so far.
    static base::Result<TableSnapshot> Read(jet::Recordset& rows,
                                            const std::function<void(std::int64_t)>& progress = {});

private:
    // A detail is kept as the database holds it and becomes text when it is shown.
    enum class DetailKind : std::uint8_t { kNull, kDate, kText };
    struct Row {
        std::int32_t id = 0;
        std::uint16_t detail_kinds = 0;  // two bits each
        bool favorite = false;
        bool pinmame = false;
        TextStore::Reference display_name;
        TextStore::Reference file_name;
        std::array<std::uint64_t, kDetailCount> details{};  // bits of a double, or a reference
    };

    struct Columns;
    base::Status AddRow(jet::Recordset& rows, const Columns& columns);
    TextStore::Reference KeepText(const jet::Value& value);
    void KeepDetail(Row& row, int detail, const jet::Value& value);
    QString Text(TextStore::Reference reference) const;

    TextStore texts_;
    std::vector<Row> rows_;
};

}  // namespace browser
