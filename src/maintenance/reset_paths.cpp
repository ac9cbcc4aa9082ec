#include "maintenance/reset_paths.h"

#include "base/marked_text.h"
#include "catalogue/field_text.h"
#include "catalogue/long_run.h"
#include "catalogue/path_names.h"
#include "catalogue/progress_meter.h"
#include "jet/connection.h"
#include "jet/recordset.h"
#include "maintenance/texts.h"

namespace maintenance {
namespace {

struct Move {
    std::u16string column;
    QString existing;
    QString next;
};

base::Status ChangeRow(jet::Recordset& rows, const Move& move) {
    ASSIGN_OR_RETURN(const jet::Value stored, rows.Fields(move.column));
    // Null has no folder, and so never the existing one.
    const QString moved = MovedPath(catalogue::FieldText(stored), move.existing, move.next);
    if (moved.isNull()) return {};
    RETURN_IF_ERROR(rows.SetField(move.column, jet::Value::Text(moved.toStdU16String())));
    return rows.Update();
}

base::Status ChangeRows(jet::Recordset& rows, const Move& move,
                        const catalogue::Progress& progress) {
    catalogue::ProgressMeter meter(progress, rows.RecordCount());
    while (!rows.Eof()) {
        RETURN_IF_ERROR(ChangeRow(rows, move));
        RETURN_IF_ERROR(rows.MoveNext());
        meter.Step();
    }
    return {};
}

// False: there are no tables.
base::Result<bool> ChangeTables(catalogue::Catalogue& catalogue, const Move& move,
                                const base::RunSteps& steps) {
    const jet::NamedChange named(*catalogue.CatalogueConnection,
                                 MARKED_TEXT("HistoryTexts", "Reset Paths"));
    jet::Recordset rows;
    RETURN_IF_ERROR(rows.Open(u"select * from tables", *catalogue.CatalogueConnection,
                              jet::CursorType::kStatic, jet::LockType::kOptimistic));
    if (rows.Bof() && rows.Eof()) return false;
    RETURN_IF_ERROR(ChangeRows(rows, move, steps.progress));
    return true;
}

void SayPathsChanged(platform::UserPrompts& prompts) {
    platform::Message message;
    message.text = MaintenanceTexts::tr("Paths Changed");
    message.title = MaintenanceTexts::tr("Reset Paths");
    message.icon = platform::MessageIcon::kInformation;
    prompts.Ask(message);
}

}  // namespace

QString PathColumn(const QString& kind) {
    for (const PathKind& known : kPathKinds)
        if (known.kind == kind) return known.column.toString();
    return {};
}

QString MovedPath(const QString& stored, const QString& existing, const QString& next) {
    if (catalogue::GetFolder(stored).compare(existing, Qt::CaseInsensitive) != 0) return {};
    return next + catalogue::GetFileName(stored);
}

base::Status ResetPaths(catalogue::Catalogue& catalogue, platform::UserPrompts& prompts,
                        const QString& kind, const QString& existing, const QString& next) {
    const QString column = PathColumn(kind);
    if (column.isEmpty())
        return {base::StatusCode::kInvalidArgument, "Unknown kind of path: " + kind.toStdString()};
    const Move move{column.toStdU16String(), catalogue::WithTrailingSeparator(existing),
                    catalogue::WithTrailingSeparator(next)};
    ASSIGN_OR_RETURN(const bool has_rows,
                     catalogue::RunLong(catalogue, {MaintenanceTexts::tr("Reset Paths")},
                                        [&](const base::RunSteps& steps) {
                                            return ChangeTables(catalogue, move, steps);
                                        }));
    if (has_rows) SayPathsChanged(prompts);
    return {};
}

}  // namespace maintenance
