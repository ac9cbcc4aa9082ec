#include "catalogue/new_catalogue.h"

#include "base/file_names.h"
#include "base/unicode.h"
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

}  // namespace

base::Status CreateEmptyCatalogue(jet::FileSystem& files, const std::filesystem::path& path,
                                  double now) {
    ASSIGN_OR_RETURN(auto pages, jet::MakeEmptyDatabase(now));
    ASSIGN_OR_RETURN(auto database,
                     jet::OpenDatabase(std::move(pages), base::ToUtf8(base::TextOf(path))));
    jet::Connection connection(std::move(database), [now] { return now; });
    for (const std::u16string_view statement : kStatements)
        RETURN_IF_ERROR(connection.Execute(statement).status());
    return jet::WriteDatabaseFile(files, path, connection.database()->pages());
}

}  // namespace catalogue
