// Names of files in folders to which links lead.
#include "discovery/known_names_fixture.h"

#include <QtCore/QDir>
#include <QtCore/QFile>

namespace discovery {
namespace {

TEST_F(KnownNamesTest, TheFolderOfThePathMapMayBeALink) {
    ASSERT_TRUE(QDir(folder.path()).mkdir(QStringLiteral("real")));
    ASSERT_TRUE(QFile::link(folder.filePath(QStringLiteral("real")),
                            folder.filePath(QStringLiteral("link"))));
    AddRow(QStringLiteral("D:\\x.vpt"));
    values.paths.Use(
        catalogue::PathMap({{QStringLiteral("D:\\"), folder.filePath(QStringLiteral("link"))}}));
    KnownNames names(*connection, values.paths);
    EXPECT_TRUE(Contains(names, folder.filePath(QStringLiteral("link/x.vpt"))));
    EXPECT_TRUE(Contains(names, folder.filePath(QStringLiteral("real/x.vpt"))));
    EXPECT_FALSE(Contains(names, folder.filePath(QStringLiteral("x.vpt"))));
}

}  // namespace
}  // namespace discovery
