// FolderScanTest: a folder of table files, and scans of it into an open catalogue.
#pragma once

#include "catalogue/quoting.h"
#include "discovery/folder_scan.h"
#include "support/catalogue_fixture.h"
#include "support/fakes.h"
#include "support/temporary_dir.h"

#include <gtest/gtest.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>

namespace discovery {

class RecordingObserver final : public ScanObserver {
public:
    QStringList listed;
    QStringList added;  // "name checksum"
    QStringList queue;
    void FolderQueued(const QString& folder) override { queue.append(folder); }
    void ListingFolder(const QString& folder) override {
        EXPECT_EQ(folder, queue.first());
        listed.append(folder);
    }
    void FolderListed() override { queue.removeFirst(); }
    void TableAdded(const QString& display_name, const QString& checksum_text) override {
        added.append(display_name + u' ' + checksum_text);
    }
};

class FolderScanTest : public test_support::CatalogueFixture {
protected:
    void SetUp() override {
        CatalogueFixture::SetUp();
        ASSERT_TRUE(tables.isValid());
    }
    QString Path(const QString& name) const { return tables.filePath(name); }
    QString MakeFile(const QString& name, const QByteArray& bytes = "123456789") const {
        QDir().mkpath(QFileInfo(Path(name)).path());
        QFile file(Path(name));
        EXPECT_TRUE(file.open(QFile::WriteOnly)) << name.toStdString();
        file.write(bytes);
        return Path(name);
    }
    std::int64_t Scan() { return Scan(tables.path()); }
    std::int64_t Scan(const QString& from) {
        observer = {};
        FolderScan scan(catalogue, events, observer);
        const base::Status done = scan.Run(from);
        EXPECT_TRUE(done.ok()) << done.message();
        return scan.found_count();
    }
    QString Count() { return Scalar(QStringLiteral("Select count(*) from Tables")); }
    QString FieldOf(const QString& column, const QString& path) {
        return Scalar(QStringLiteral("Select %1 from Tables where FileName = '%2'")
                          .arg(column, catalogue::QuoteSql(path)));
    }

    test_support::TemporaryDir tables;
    test_support::FakeEvents events;
    RecordingObserver observer;
};

}  // namespace discovery
