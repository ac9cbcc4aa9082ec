#include "catalogue/stored_paths.h"

#include "catalogue/field_text.h"
#include "catalogue/local_paths.h"
#include "jet/recordset.h"
#include "jet/tables/database.h"
#include "platform/files.h"

#include <QtCore/QSet>

#include <algorithm>

namespace catalogue {
namespace {

constexpr std::u16string_view kPathColumns[] = {u"FileName", u"ImageFile", u"FlyerFile",
                                                u"RulesFile"};

// Catalogues of the first versions that are only read have no RulesFile.
bool HasColumn(jet::Database& database, std::u16string_view name) {
    const auto table = database.FindTable(u"Tables");
    return table.ok() && std::ranges::any_of((*table)->design().columns, [&](const auto& column) {
               return QStringView(column.name).compare(QStringView(name), Qt::CaseInsensitive) == 0;
           });
}

base::Status ReadColumn(jet::Connection& connection, const QString& column,
                        const base::RunSteps& steps, QSet<QString>& paths) {
    const QString sql = QStringLiteral("Select %1 from Tables").arg(column);
    ASSIGN_OR_RETURN(auto rows, connection.Execute(sql.toStdU16String()));
    base::StepCount count(steps, 0);
    while (!rows.Eof()) {
        ASSIGN_OR_RETURN(const QString path, FieldText(rows, column));
        if (!path.isEmpty()) paths.insert(path);
        RETURN_IF_ERROR(rows.MoveNext());
        RETURN_IF_ERROR(count.Next());
    }
    return {};
}

}  // namespace

base::Result<QStringList> StoredPaths(jet::Connection& connection, const base::RunSteps& steps) {
    QSet<QString> paths;
    for (const std::u16string_view column : kPathColumns)
        if (connection.database() != nullptr && HasColumn(*connection.database(), column))
            RETURN_IF_ERROR(ReadColumn(connection, QStringView(column).toString(), steps, paths));
    QStringList sorted(paths.begin(), paths.end());
    sorted.sort();  // files of one folder are looked for one after the other
    return sorted;
}

PathCounts CountPaths(const QStringList& stored, const PathMap& map, const base::RunSteps& steps) {
    LocalPaths local;
    local.Use(map);
    PathCounts counts;
    counts.pairs.resize(map.pairs().size());
    base::StepCount step(steps, stored.size());
    for (const QString& path : stored) {
        const auto pair = map.PairOf(path);
        PathCount& count = pair ? counts.pairs[*pair] : counts.others;
        ++count.stored;
        if (platform::FileExists(local.Of(path))) ++count.found;
        if (!step.Next().ok()) break;
    }
    return counts;
}

}  // namespace catalogue
