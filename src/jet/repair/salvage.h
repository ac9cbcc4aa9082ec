// What is left of a damaged file, page by page: which pages hold rows of which table, which
// definitions can be used, and the rows of a table as far as they can be read.
#pragma once

#include "jet/repair/copied_row.h"
#include "jet/repair/repair.h"

#include <functional>
#include <map>
#include <set>

namespace jet {

struct Survey {
    std::map<PageNumber, TableDefinition> definitions;  // usable ones, by first page
    // Pages on which some definition goes on, or says so: its link may be damaged.
    std::set<PageNumber> continuations;
    std::map<PageNumber, std::vector<PageNumber>> data_pages;  // by owner; ascending
    // In use, but of no known kind or unreadable. Ascending.
    std::vector<PageNumber> damaged_pages;
};

Survey SurveyPages(FileContext& file);

// The damaged pages of which nothing tells what was on them. What tells it is the page map of an
// index, of long values or of rows (these are told with their table), if all else that it lists is
// of that kind.
std::vector<PageNumber> UnexplainedPages(FileContext& file, const Survey& survey);

// Whether the map of free pages has it. That map may be damaged: one witness alone does not count.
bool IsGivenBack(FileContext& file, PageNumber page);

// Whether a definition can be used, after what is wrong with its indexes has been taken out of it.
bool MakeUsable(TableDefinition& definition, const Format& format);

// Reads the rows of one table.
class RowSalvage {
public:
    // `budget`: bytes of rows and long values that may still be made out of this file, so that
    // one page that many rows lead to does not become many.
    RowSalvage(FileContext& file, const Survey& survey, const TableDefinition& table,
               std::string name, RepairReport& report, std::uint64_t& budget)
        : file_(file), survey_(survey), table_(table), name_(std::move(name)), report_(report),
          budget_(budget) {}

    using Visitor = std::function<base::Status(RowId, CopiedRow)>;
    // Calls `visit` for every row that can be read, in stored order; fields that cannot are null
    // and told.
    base::Status Run(const Visitor& visit);

private:
    // Whether the table's map lists data pages of the table and nothing else.
    bool ReportMissingPages(const std::set<PageNumber>& members);
    base::Status ReadPage(PageNumber number, const Visitor& visit);
    base::Status ReadLeftTargets(const Visitor& visit);
    base::Status ReadRow(RowId at, std::span<const std::byte> bytes, const Visitor& visit);
    void ReadField(RowId at, const RowView& row, std::size_t column, CopiedField& field);
    bool Spend(std::uint64_t bytes);
    void Lose(PageNumber page, int row, const std::string& field, const std::string& reason) {
        report_.Add({name_, page, row, field, reason});
    }

    FileContext& file_;
    const Survey& survey_;
    const TableDefinition& table_;
    std::string name_;
    RepairReport& report_;
    std::uint64_t& budget_;
    std::set<RowId> targets_;
    std::set<RowId> reached_;
};

}  // namespace jet
