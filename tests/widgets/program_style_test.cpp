#include "widgets/program_style.h"

#include <gtest/gtest.h>

#include <QtWidgets/QApplication>
#include <QtWidgets/QDialogButtonBox>
#include <QtWidgets/QPushButton>
#include <QtWidgets/QStyleFactory>

namespace widgets {
namespace {

TEST(ProgramStyleTest, TheButtonsOfARowHaveIconsAllOrNone) {
    QApplication::setStyle(new ProgramStyle);
    {
        QDialogButtonBox row(QDialogButtonBox::Ok | QDialogButtonBox::Close |
                             QDialogButtonBox::Cancel);
        row.addButton(QStringLiteral("Restore"), QDialogButtonBox::AcceptRole);
        ASSERT_EQ(row.buttons().size(), 4);
        for (const QAbstractButton* button : row.buttons())
            EXPECT_TRUE(button->icon().isNull()) << button->text().toStdString();
    }
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
}

}  // namespace
}  // namespace widgets
