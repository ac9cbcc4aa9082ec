#include "example/example_folder.h"

#include "base/marked_text.h"
#include "catalogue/path_names.h"
#include "catalogue/program_files.h"
#include "catalogue/quoting.h"
#include "jet/tables/automatic_change.h"
#include "platform/application_folder.h"
#include "platform/error_numbers.h"
#include "platform/files.h"

#include <array>

namespace example {
namespace {

struct PathColumn {
    QStringView column;
    QStringView folder;
};

constexpr std::array kPathColumns = {PathColumn{u"FileName", kTablesFolder},
                                     PathColumn{u"ImageFile", kPicturesFolder},
                                     PathColumn{u"FlyerFile", kPicturesFolder}};

// A file that is there already stays.
base::Status Copy(const QString& from, const QString& to) {
    const base::Status copied = platform::CopyNewFile(from, to);
    return copied.code() == base::StatusCode::kAlreadyExists ? base::Status() : copied;
}

base::Status CopyFolder(const QString& from, const QString& to) {
    RETURN_IF_ERROR(platform::MakeFolder(to));
    QStringList names;
    RETURN_IF_ERROR(platform::ListFolder(from, [&](const platform::FolderEntry& entry) {
        if (!entry.is_folder) names.append(entry.name);
    }));
    for (const QString& name : names)
        RETURN_IF_ERROR(Copy(platform::FileIn(from, name), platform::FileIn(to, name)));
    return {};
}

}  // namespace

base::Status CopyExample(const QString& from, const QString& folder) {
    const QString catalogue = catalogue::kCatalogueFile.toString();
    if (platform::FileExists(platform::FileIn(folder, catalogue))) return {};
    if (!platform::FileExists(platform::FileIn(from, catalogue)))
        return {base::StatusCode::kNotFound,
                "The example collection is not installed: there is no " +
                    platform::FileIn(from, catalogue).toStdString(),
                platform::kFileNotFound};
    RETURN_IF_ERROR(platform::MakeFolder(folder));
    for (const QStringView part : {kTablesFolder, kPicturesFolder})
        RETURN_IF_ERROR(CopyFolder(platform::FileIn(from, part.toString()),
                                   platform::FileIn(folder, part.toString())));
    return Copy(platform::FileIn(from, catalogue), platform::FileIn(folder, catalogue));
}

base::Status SetExamplePaths(jet::Connection& connection, const QString& folder) {
    const jet::NamedChange named(connection, MARKED_TEXT("HistoryTexts", "Set Paths"),
                                 jet::kAutomaticChange);
    const QString prefix = catalogue::QuoteSqlExpr(catalogue::WithTrailingSeparator(folder));
    for (const PathColumn& path : kPathColumns) {
        const QString column = path.column.toString();
        const QString start = path.folder.toString() + u'/';
        const QString sql = QStringLiteral("UPDATE Tables SET %1 = '").arg(column) + prefix +
                            QStringLiteral("' & %1 WHERE Left(%1, %2) = '%3'")
                                .arg(column, QString::number(start.size()), start);
        RETURN_IF_ERROR(connection.Execute(sql.toStdU16String()).status());
    }
    return {};
}

}  // namespace example
