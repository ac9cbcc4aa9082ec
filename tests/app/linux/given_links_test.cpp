// Links among the tables that the program is given. (Windows has shortcuts, which are files.)
#include "app/commands_fixture.h"
#include "support/vpt_builder.h"

#include <QtCore/QDir>
#include <QtCore/QFile>

namespace app {
namespace {

using test_support::S;

class LinkToATableTest : public CommandsTest {};

TEST_F(LinkToATableTest, SelectsTheTable) {
    ASSERT_TRUE(QDir(folder.path()).mkpath(S(u"given")));
    const QString file = folder.filePath(S(u"given/Real.vpt"));
    ASSERT_TRUE(
        test_support::VptBuilder().Text(u"TableName", u"Real").Write(file.toStdU16String()).ok());
    commands->TakeTables(file);
    const QString link = folder.filePath(S(u"link.vpt"));
    const QString folder_link = folder.filePath(S(u"link"));
    ASSERT_TRUE(QFile::link(file, link));
    ASSERT_TRUE(QFile::link(folder.filePath(S(u"given")), folder_link));
    for (const QString& given : {link, folder_link}) {
        Select(0);
        commands->TakeTables(given);
        EXPECT_EQ(window->SelectedTag(), file) << given.toStdString();
    }
    EXPECT_EQ(Scalar(S(u"Select count(*) from Tables")), S(u"3"));
}

}  // namespace
}  // namespace app
