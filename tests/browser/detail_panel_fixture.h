// DetailPanelFixture: the detail panel on a real catalogue, its window and its boxes faked. Needs
// widgets; runs offscreen.
#pragma once

#include "browser/detail_panel.h"
#include "browser/fake_detail_host.h"
#include "catalogue/quoting.h"
#include "support/catalogue_fixture.h"

#include <QtCore/QFile>
#include <QtGui/QImage>
#include <QtTest/QSignalSpy>
#include <QtTest/QTest>
#include <QtWidgets/QAbstractButton>
#include <QtWidgets/QLabel>
#include <QtWidgets/QLineEdit>
#include <QtWidgets/QPlainTextEdit>
#include <QtWidgets/QTabWidget>

namespace browser {

class DetailPanelFixture : public test_support::CatalogueFixture {
protected:
    void SetUp() override {
        CatalogueFixture::SetUp();
        panel = std::make_unique<DetailPanel>(catalogue, prompts, host);
        panel->resize(500, 500);
        panel->show();
    }

    // A row with a DisplayName and a FileName in the folder of the test; the other columns as in
    // `assignments`.
    QString AddTable(const QString& name, const QString& assignments = {}) {
        const QString file = folder.filePath(name + QStringLiteral(".vpt"));
        Execute(QStringLiteral("insert into tables (DisplayName, FileName, FileDate, TimesPlayed) "
                               "values ('%1', '%2', #11/20/2026 3:04:05 PM#, 0)")
                    .arg(catalogue::QuoteSql(name), catalogue::QuoteSql(file)));
        if (!assignments.isEmpty())
            Execute(QStringLiteral("update tables set %1 where FileName = '%2'")
                        .arg(assignments, catalogue::QuoteSqlExpr(file)));
        return file;
    }
    // Adds the table, selects it in the tree and shows it.
    QString ShowTable(const QString& name, const QString& assignments = {}) {
        const QString file = AddTable(name, assignments);
        host.selected_tag = file;
        host.selected_text = name;
        panel->ShowTableDetails(file);
        return file;
    }
    QString Stored(const QString& column, const QString& name) {
        return Scalar(QStringLiteral("select %1 from tables where DisplayName = '%2'")
                          .arg(column, catalogue::QuoteSqlExpr(name)));
    }

    template <typename Widget>
    Widget* Find(const QString& name) {
        auto* widget = panel->findChild<Widget*>(name);
        EXPECT_NE(widget, nullptr) << name.toStdString();
        return widget;
    }
    QTabWidget* Tabs() { return Find<QTabWidget>(QStringLiteral("DetTab")); }
    QLineEdit* Line(int index) { return Find<QLineEdit>(QStringLiteral("txtDet_%1").arg(index)); }
    QPlainTextEdit* Lines(int index) {
        return Find<QPlainTextEdit>(QStringLiteral("txtDet_%1").arg(index));
    }
    // Replaces the text of a field of several lines as a user does.
    void Retype(int index, const QString& text) {
        Lines(index)->selectAll();
        Lines(index)->insertPlainText(text);
    }
    void Click(const char* button) { Find<QAbstractButton>(QLatin1String(button))->click(); }
    QLabel* Alert() { return Find<QLabel>(QStringLiteral("pnlAlert")); }
    QList<int> EnabledTabs() {
        QList<int> enabled;
        for (int tab = 0; tab < Tabs()->count(); ++tab)
            if (Tabs()->isTabEnabled(tab)) enabled << tab;
        return enabled;
    }

    QString WriteFile(const QString& name, const QByteArray& bytes) {
        QFile file(folder.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(bytes);
        return folder.filePath(name);
    }
    QString WritePicture(const QString& name, int width = 40, int height = 30) {
        QImage image(width, height, QImage::Format_RGB32);
        image.fill(Qt::red);
        const QString path = folder.filePath(name);
        EXPECT_TRUE(image.save(path, "jpg"));
        return path;
    }
    static QString Assign(const char* column, const QString& text) {
        return QStringLiteral("%1 = '%2'").arg(QLatin1String(column), catalogue::QuoteSql(text));
    }

    FakeDetailHost host;
    std::unique_ptr<DetailPanel> panel;
};

}  // namespace browser
