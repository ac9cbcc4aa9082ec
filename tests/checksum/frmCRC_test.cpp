#include "checksum/frmCRC.h"

#include "support/catalogue_fixture.h"
#include "support/fakes.h"
#include "support/unreadable.h"

#include <gtest/gtest.h>

#include <QtCore/QFile>
#include <QtCore/QTimer>
#include <QtTest/QTest>
#include <QtWidgets/QLabel>
#include <QtWidgets/QPushButton>

namespace checksum {
namespace {

class FrmCrcTest : public test_support::CatalogueFixture {
protected:
    void AddTables(int count) {
        for (int i = 0; i < count; ++i) {
            QFile file(folder.filePath(QStringLiteral("t%1.vpt").arg(i)));
            ASSERT_TRUE(file.open(QFile::WriteOnly));
            file.write("123456789");
            Execute(QStringLiteral("Insert into Tables (DisplayName, FileName, CRC) Values "
                                   "('<b>T%1</b>', '%2', 'old')")
                        .arg(i)
                        .arg(file.fileName()));
        }
    }
    QString Refreshed() {
        return Scalar(QStringLiteral("Select count(*) from Tables where CRC = 'CBF43926'"));
    }
};

TEST_F(FrmCrcTest, ShowsItsCaptions) {
    const frmCRC window(catalogue);
    EXPECT_EQ(window.windowTitle(),
              QStringLiteral("CRC Utility - Update all CRC Values in database"));
    EXPECT_EQ(window.findChild<QPushButton*>(QStringLiteral("Command1"))->text(),
              QStringLiteral("Command1"));
    EXPECT_EQ(window.findChild<QLabel*>(QStringLiteral("Label1"))->text(), QString());
}

TEST_F(FrmCrcTest, StartsByItselfAndClosesItselfWhenDone) {
    AddTables(3);
    frmCRC window(catalogue);
    window.exec();
    EXPECT_FALSE(window.isVisible());
    EXPECT_EQ(window.findChild<QLabel*>(QStringLiteral("Label1"))->text(),
              QStringLiteral("Task Complete!"));
    EXPECT_EQ(Refreshed(), QStringLiteral("3"));
}

TEST_F(FrmCrcTest, WithAnEmptyCatalogueItIsCompleteAtOnce) {
    frmCRC window(catalogue);
    window.exec();
    EXPECT_EQ(window.findChild<QLabel*>(QStringLiteral("Label1"))->text(),
              QStringLiteral("Task Complete!"));
}

TEST_F(FrmCrcTest, ClosingIsRefusedDuringTheRun) {
    AddTables(5);
    frmCRC window(catalogue);
    int attempts = 0;
    QStringList lines;
    QTimer impatience;
    QObject::connect(&impatience, &QTimer::timeout, &window, [&] {
        const QString line = window.findChild<QLabel*>(QStringLiteral("Label1"))->text();
        if (line.isEmpty()) return;  // not started yet
        ++attempts;
        lines.append(line);
        QTest::keyClick(&window, Qt::Key_Escape);
        EXPECT_FALSE(window.close());
        EXPECT_TRUE(window.isVisible());
    });
    impatience.start(0);
    window.exec();
    impatience.stop();
    EXPECT_GT(attempts, 0);
    EXPECT_EQ(lines.first(), QStringLiteral("Processing: <b>T0</b>  CBF43926"));
    EXPECT_EQ(Refreshed(), QStringLiteral("5"));
}

TEST_F(FrmCrcTest, AFailureEndsWithAWindowThatIsGone) {
    AddTables(1);
    ASSERT_TRUE(connection->Close().ok());
    frmCRC window(catalogue);
    window.exec();
    EXPECT_FALSE(window.isVisible());
}

TEST_F(FrmCrcTest, TheCommandRunsOnlyAfterOk) {
    AddTables(2);
    prompts.answers = {platform::MessageAnswer::kCancel, platform::MessageAnswer::kOk};
    EXPECT_TRUE(UpdateCrcs(catalogue, prompts, nullptr).ok());
    EXPECT_EQ(Refreshed(), QStringLiteral("0"));
    EXPECT_TRUE(UpdateCrcs(catalogue, prompts, nullptr).ok());
    EXPECT_EQ(Refreshed(), QStringLiteral("2"));
}

// Activating the window again presses its button again.
TEST_F(FrmCrcTest, ASecondStartDuringTheRunIsNone) {
    AddTables(3);
    frmCRC window(catalogue);
    QStringList lines;
    QTimer again;
    QObject::connect(&again, &QTimer::timeout, &window, [&] {
        auto* label = window.findChild<QLabel*>(QStringLiteral("Label1"));
        if (label->text().isEmpty()) return;  // not started yet
        const QString before = label->text();
        window.findChild<QPushButton*>(QStringLiteral("Command1"))->click();
        EXPECT_EQ(label->text(), before) << "a run inside the run";
        lines.append(before);
    });
    again.start(0);
    window.exec();
    EXPECT_FALSE(lines.isEmpty());
}

TEST_F(FrmCrcTest, AFailureIsKeptForTheStatusBar) {
    ASSERT_TRUE(connection->Close().ok());
    EXPECT_FALSE(UpdateCrcs(catalogue, prompts, nullptr).ok());
    EXPECT_EQ(prompts.messages.size(), 1U) << "the question only";
}

TEST_F(FrmCrcTest, AFileThatCannotBeReadIsNamedAtTheEnd) {
    AddTables(2);
    base::Status done;
    {
        const test_support::Unreadable unreadable(
            {folder.filePath(QStringLiteral("t0.vpt")).toStdU16String(),
             folder.filePath(QStringLiteral("t1.vpt")).toStdU16String()});
        done = UpdateCrcs(catalogue, prompts, nullptr);
    }
    EXPECT_EQ(done.message().rfind("2 could not be read. The first: ", 0), 0U) << done.message();
    EXPECT_NE(done.message().find("t0.vpt"), std::string::npos) << done.message();
    EXPECT_EQ(Refreshed(), QStringLiteral("0"));
}

}  // namespace
}  // namespace checksum
