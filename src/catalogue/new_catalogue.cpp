#include "catalogue/new_catalogue.h"

#include "base/file_names.h"
#include "catalogue/data_source.h"
#include "jet/connection.h"
#include "jet/tables/database.h"

namespace catalogue {
namespace {

// Texts are stored compressed: a catalogue of Western names takes half the space.
constexpr std::u16string_view kStatements[] = {
    u"CREATE TABLE Tables ("
    u"ID COUNTER CONSTRAINT PrimaryKey PRIMARY KEY, "
    u"DisplayName TEXT(255) WITH COMPRESSION, "
    u"FileName TEXT(255) WITH COMPRESSION, "
    u"Author TEXT(255) WITH COMPRESSION, "
    u"Company TEXT(255) WITH COMPRESSION, "
    u"Year TEXT(50) WITH COMPRESSION, "
    u"Version TEXT(50) WITH COMPRESSION, "
    u"ImageFile TEXT(255) WITH COMPRESSION, "
    u"FlyerFile TEXT(255) WITH COMPRESSION, "
    u"Notes MEMO WITH COMPRESSION, "
    u"PinMame YESNO, "
    u"Favorite YESNO)",
    u"CREATE INDEX DisplayName ON Tables (DisplayName)",
    u"CREATE INDEX FileName ON Tables (FileName)",
};

base::Status MakeTables(jet::FileSystem& files, const std::filesystem::path& path, double now) {
    jet::Connection connection(files, [now] { return now; });
    RETURN_IF_ERROR(connection.Open(u"Data Source=" + DataSourceValue(base::TextOf(path))));
    for (const std::u16string_view statement : kStatements) {
        auto done = connection.Execute(statement);
        if (!done.ok()) return done.status();
    }
    return connection.Close();
}

}  // namespace

base::Status CreateEmptyCatalogue(jet::FileSystem& files, const std::filesystem::path& path,
                                  double now) {
    RETURN_IF_ERROR(jet::CreateDatabaseFile(files, path, now));
    base::Status made = MakeTables(files, path, now);
    if (!made.ok()) files.Remove(path).Ignore();
    return made;
}

}  // namespace catalogue
