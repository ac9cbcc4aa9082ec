#include "cli/change_report.h"

#include "exchange/cell.h"

#include "base/unicode.h"

namespace cli {

bool TellsCells(const Program& program) {
    return program.is_dry_run() || program.arguments.Has("verbose");
}

void TellSummary(Program& program, std::int64_t added, std::int64_t changed) {
    const QString what = QStringLiteral("%1 added, %2 changed").arg(added).arg(changed);
    program.console.WriteError(
        ((program.is_dry_run() ? QStringLiteral("dry run: ") : QString()) + what + u'\n')
            .toStdString());
}

ChangeReport::ChangeReport(Program& program)
    : program_(program), tells_cells_(TellsCells(program)) {}

base::Result<ChangeReport> ChangeReport::Begin(Program& program, jet::Connection& connection) {
    ChangeReport report(program);
    ASSIGN_OR_RETURN(report.before_, report.Read(connection));
    return report;
}

base::Result<ChangeReport::Rows> ChangeReport::Read(jet::Connection& connection) {
    ASSIGN_OR_RETURN(jet::Recordset rows, connection.Execute(u"Select * from Tables"));
    names_.clear();
    for (std::size_t field = 0; field < rows.FieldCount(); ++field)
        names_.push_back(base::ToUtf8(rows.FieldName(field)));
    Rows read;
    while (!rows.Eof()) {
        Row row;
        std::string all;
        for (std::size_t field = 0; field < rows.FieldCount(); ++field) {
            ASSIGN_OR_RETURN(const jet::Value value, rows.Fields(field));
            std::string cell;
            exchange::AppendJsonCell(cell, value);
            all += cell + "\n";
            if (tells_cells_) row.cells.push_back(std::move(cell));
        }
        row.hash = std::hash<std::string>()(all);
        ASSIGN_OR_RETURN(const jet::Value id, rows.Fields(u"ID"));
        read[jet::ToInteger(id)] = std::move(row);
        RETURN_IF_ERROR(rows.MoveNext());
    }
    return read;
}

base::Status ChangeReport::Finish(jet::Connection& connection) {
    ASSIGN_OR_RETURN(const Rows after, Read(connection));
    std::int64_t added = 0;
    std::int64_t changed = 0;
    for (const auto& [id, row] : after) {
        const auto found = before_.find(id);
        const Row* before = found == before_.end() ? nullptr : &found->second;
        if (before != nullptr && before->hash == row.hash) continue;
        ++(before == nullptr ? added : changed);
        if (tells_cells_) TellCells(id, before, row);
    }
    TellSummary(program_, added, changed);
    return {};
}

void ChangeReport::TellCells(std::int64_t id, const Row* before, const Row& after) {
    std::string lines;
    for (std::size_t i = 0; i < after.cells.size(); ++i) {
        const std::string old = before == nullptr ? "null" : before->cells[i];
        if (old == after.cells[i]) continue;
        lines += std::to_string(id) + "\t" + names_[i] + "\t" + old + "\t" + after.cells[i] + "\n";
    }
    program_.console.Write(lines).Ignore();
}

}  // namespace cli
