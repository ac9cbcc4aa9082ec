// Snapshots of a large catalogue, against what programs of the system take to copy, to checksum and
// to compress the same file in the same run.
//   snapshot_bench [--tables 100000]
#include "bench_catalogue.h"

#include "jet/pages/page_copy.h"
#include "jet/tables/database.h"
#include "snapshots/compare.h"
#include "snapshots/restore.h"
#include "snapshots/restore_catalogue.h"

#include <cstdlib>
#include <random>
#include <string>

namespace {

using bench::Require;
using bench::Seconds;
using snapshots::Occasion;

void Fill(bench::BenchCatalogue& made, int tables) {
    std::mt19937 random(1);
    Require(made.get().CatalogueConnection->Change([&](jet::Database& database) -> base::Status {
        ASSIGN_OR_RETURN(jet::Table* const table, database.FindTable(u"Tables"));
        const auto& columns = table->design().columns;
        for (int i = 0; i < tables; ++i) {
            std::vector<jet::Value> row(columns.size());
            const QString name = QStringLiteral("Table %1 %2").arg(random() % 100000).arg(i);
            QString notes;
            for (int word = 0; word < 18; ++word)
                notes += QString::number(random()) + u' ';
            for (std::size_t c = 0; c < columns.size(); ++c) {
                if (columns[c].name == u"DisplayName")
                    row[c] = jet::Value::Text(name.toStdU16String());
                if (columns[c].name == u"FileName")
                    row[c] = jet::Value::Text(
                        QStringLiteral("/tables/%1.vpt").arg(name).toStdU16String());
                if (columns[c].name == u"Notes") row[c] = jet::Value::Text(notes.toStdU16String());
            }
            RETURN_IF_ERROR(table->Insert(row).status());
        }
        return {};
    }));
    Require(made.get().CatalogueConnection->Flush());
}

double Shell(const std::string& command) {
    return Seconds([&] {
        if (std::system(command.c_str()) != 0) std::exit(1);
    });
}

void Print(const char* what, double seconds) {
    std::printf("%-44s %8.0f ms\n", what, seconds * 1000);
}

}  // namespace

int main(int argc, char** argv) {
    bench::BenchCatalogue made;
    Fill(made, bench::NumberOption(argc, argv, "--tables", 100'000));
    const auto files = platform::MakeFileSystem();
    const std::filesystem::path path = snapshots::DatabaseOf(made.get());
    snapshots::SnapshotStore store(*files, path);
    std::printf("catalogue of %.1f MB\n",
                static_cast<double>(std::filesystem::file_size(path)) / 1e6);
    const auto make = [&](const char* what) {
        Print(what, Seconds([&] { Require(store.Make({Occasion::kClock, 0, ""}).status()); }));
    };
    const auto check = [&] {
        Print("  read back and checked", Seconds([&] { Require(store.CheckAll()); }));
    };
    make("first snapshot, all pages");
    check();
    make("nothing has changed");
    for (int i = 0; i < 100; ++i)
        made.Execute(
            QStringLiteral("Update Tables set TimesPlayed = 1 where ID = %1").arg(i * 997 + 1));
    make("100 tables changed, not yet in the file");
    check();
    Require(made.get().CatalogueConnection->Flush());
    made.Execute(QStringLiteral("Update Tables set TimesPlayed = 2"));
    Require(made.get().CatalogueConnection->Flush());
    make("every table changed");
    check();
    Print("keeping", Seconds([&] { Require(store.Keep()); }));
    Print("list, every byte tested", Seconds([&] { Require(store.List().status()); }));
    std::vector<std::byte> then;
    Print("read one", Seconds([&] {
              auto read = store.Read((*store.List())[0].number);
              Require(read.status());
              then = std::move(read).value();
          }));
    Print("compared with today", Seconds([&] {
              const auto now = jet::CopyFileBytes(*files, path);
              Require(now.status());
              Require(snapshots::CompareFiles(*now, then).status());
          }));
    Require(made.get().CatalogueConnection->Close());
    Print("restored",
          Seconds([&] { Require(snapshots::Restore(*files, store, then, 1).status()); }));
    const std::string file = "'" + path.string() + "'";
    Print("cp, synced", Shell("cp " + file + " " + file + ".copy && sync " + file + ".copy"));
    Print("sha256sum", Shell("sha256sum " + file + " > /dev/null"));
    Print("gzip -1", Shell("gzip -1 -c " + file + " > /dev/null"));
    return 0;
}
