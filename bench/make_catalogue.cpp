// Makes the catalogue FOLDER/pinball.mdb of N tables, for window_bench.py, and prints the size of
// the file in bytes. The table files are named in it, and not made.
//   make_catalogue --folder FOLDER --tables N
#include "many_tables.h"

#include <QtCore/QCoreApplication>

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    const QStringList words = QCoreApplication::arguments();
    const qsizetype at = words.indexOf(QStringLiteral("--folder"));
    const int tables = bench::NumberOption(argc, argv, "--tables", 0);
    if (at < 0 || at + 1 >= words.size() || tables <= 0) {
        std::fputs("usage: make_catalogue --folder FOLDER --tables N\n", stderr);
        return 2;
    }
    const QString folder = words[at + 1];
    bench::MakeManyTables(folder, folder + QStringLiteral("/tables"), tables);
    std::printf("%lld\n",
                static_cast<long long>(QFile(folder + QStringLiteral("/pinball.mdb")).size()));
    return 0;
}
