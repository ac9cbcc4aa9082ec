// A catalogue of any number of tables, each row with its own texts and dates, for the benchmarks of
// the window.
#pragma once

#include "bench_catalogue.h"

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QString>

namespace bench {

inline constexpr int kFolders = 300;  // of table files

// Where the table file `i` lies; `root` without a separator at its end.
inline QString TableFileName(const QString& root, int i) {
    return QStringLiteral("%1/folder %2/Table number %3 of many.vpt")
        .arg(root)
        .arg(i % kFolders)
        .arg(i);
}

inline QString RowValues(const QString& root, int i) {
    const auto flag = [](bool on) { return on ? QStringLiteral("true") : QStringLiteral("false"); };
    return QStringLiteral("'Pinball table number %1', '%2', 'Author %3', 'Company %4', '%5', "
                          "'1.%6', 'Some notes on table %1', ")
               .arg(QString::number(i), TableFileName(root, i), QString::number(i % 911),
                    QString::number(i % 37), QString::number(1950 + i % 60),
                    QString::number(i % 10)) +
           QStringLiteral("%1, %2, #%3/%4/%5 10:%6:%7 AM#, '%8-Nov-%9', %10, 'A1B2C3D4'")
               .arg(flag(i % 3 == 0), flag(i % 20 == 0), QString::number(1 + i % 12),
                    QString::number(1 + i % 28), QString::number(2000 + i % 20),
                    QString::number(i / 60 % 60), QString::number(i % 60),
                    QString::number(1 + i % 30), QString::number(10 + i % 16),
                    QString::number(i % 10));
}

// Makes the catalogue folder/pinball.mdb of `tables` tables below `root`.
inline void MakeManyTables(const QString& folder, const QString& root, int tables) {
    const auto files = platform::MakeFileSystem();
    platform::SystemClock clock;
    platform::NoSettings settings;
    catalogue::ProcessValues values;
    values.ApplicationFolder = folder;
    Require(catalogue::CreateEmptyCatalogue(
        *files, (folder + QStringLiteral("/pinball.mdb")).toStdString(), 46000));
    jet::Connection connection(*files);
    catalogue::Catalogue catalogue{&connection, &values, &settings, &clock};
    Require(catalogue::Main(catalogue));
    for (int i = 0; i < tables; ++i) {
        const QString sql =
            QStringLiteral(
                "INSERT INTO Tables (DisplayName, FileName, Author, Company, Year, Version, "
                "Notes, PinMame, Favorite, FileDate, DateAdded, TimesPlayed, CRC) VALUES (") +
            RowValues(root, i) + QStringLiteral(")");
        Require(connection.Execute(sql.toStdU16String()).status());
    }
    Require(connection.Close());
}

}  // namespace bench
