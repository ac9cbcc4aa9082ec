// TableSnapshot: what the tree shows of the selected tables and what Find looks at, as it was when
// the query ran; made into texts when it is asked for.
#pragma once

#include "base/status.h"
#include "jet/recordset.h"

#include <QtCore/QString>

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
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
    std::int32_t Id(std::size_t table) const;
    // Of all tables; kept once they were asked for.
    const std::vector<std::int32_t>& Ids() const;
    QString DisplayName(std::size_t table) const;
    QString FileName(std::size_t table) const;
    // Empty for Null.
    QString ImageFile(std::size_t table) const;
    bool Favorite(std::size_t table) const;
    bool PinMame(std::size_t table) const;
    QString Version(std::size_t table) const;
    // 0 for Null.
    std::int32_t TimesPlayed(std::size_t table) const;
    // The value of a detail line as text; empty for Null.
    QString DetailText(std::size_t table, int detail) const;
    // Who reads all tables tells each before; see HeldRows::Expect.
    void ExpectAfter(std::size_t table) const { rows_.Expect(table + jet::HeldRows::kAhead); }
    // In days since 1899-12-30; nullopt: the value is no date.
    std::optional<double> DetailDate(std::size_t table, int detail) const;
    // Label and value; the label alone if the value is Null. Dates are in the general format.
    QString DetailLine(std::size_t table, int detail) const;

    // All rows. Columns that are missing in `rows` count as Null. `progress` (may be empty) is
    // called with the number of tables read so far, unless the question has read them all.
    static base::Result<TableSnapshot> Read(jet::Recordset& rows,
                                            const std::function<void(std::int64_t)>& progress = {});

private:
    jet::Value ValueOf(std::size_t table, int column) const;
    QString Text(std::size_t table, int column) const;

    jet::HeldRows rows_;
    // Of each column that is shown, its place in rows_; nullopt: an old read-only catalogue does
    // not have it.
    std::vector<std::optional<std::size_t>> places_;
    struct KeptIds {
        std::once_flag once;
        std::vector<std::int32_t> ids;
    };
    std::unique_ptr<KeptIds> ids_ = std::make_unique<KeptIds>();
};

// Shared by the model and by the thread that makes Find's index of it; nobody changes it.
using TableSnapshotPointer = std::shared_ptr<const TableSnapshot>;

}  // namespace browser
