// table_info_bench: reading what the bulk update needs (is there information, then seven texts)
// from table files of 0.3 to 50 MB in the page cache, as ratios of our time to that of
//   - a plain libgsf loop that opens the file for each stream, as a simple script would (aim: 20
//   times as fast);
//   - the same libgsf calls with the file opened once, for comparison;
//   - `cat` of the same files to /dev/null, one process for all (aim: sooner, since few sectors are
//   needed).
// The rounds take turns; best of several.
// Then the bulk update itself, on catalogues of 1,000 to 100,000 rows over the same files: all of
// it, database included, against what its reading takes (once) and what the libgsf loop alone would
// take. Aim: the same cost for each row whatever their number.
#include "base/status.h"
#include "base/unicode.h"
#include "catalogue/catalogue.h"
#include "catalogue/new_catalogue.h"
#include "catalogue/process_values.h"
#include "catalogue/quoting.h"
#include "catalogue/start_up.h"
#include "jet/connection.h"
#include "platform/clock.h"
#include "platform/file_system.h"
#include "platform/settings_store.h"
#include "support/vpt_builder.h"
#include "tableinfo/storage_tools.h"
#include "tableinfo/update_from_table_files.h"

#include <gsf/gsf-infile-msole.h>
#include <gsf/gsf-infile.h>
#include <gsf/gsf-input-stdio.h>
#include <gsf/gsf-utils.h>

#include <QtCore/QProcess>
#include <QtCore/QStringList>
#include <QtCore/QTemporaryDir>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <functional>
#include <memory>
#include <vector>

namespace {

constexpr int kRounds = 5;
constexpr int kFiles = 60;
constexpr int kRowCounts[] = {1000, 10'000, 100'000};
constexpr double kSmallestBytes = 0.3e6;
constexpr double kMaxBytes = 50e6;
constexpr int kItemsPerTable = 400;  // streams of the table's parts, beside TableInfo

constexpr const char* kStreams[] = {"TableName",  "AuthorName",  "TableRules", "TableVersion",
                                    "TableBlurb", "CompanyName", "CompanyYear"};

QStringList MakeTableFiles(const QTemporaryDir& folder) {
    QStringList paths;
    for (int i = 0; i < kFiles; ++i) {
        const double size =
            kSmallestBytes * std::pow(kMaxBytes / kSmallestBytes, i / (kFiles - 1.0));
        test_support::VptBuilder table;
        table.Text(u"TableName", u"Table")
            .Text(u"AuthorName", u"Author")
            .Text(u"TableVersion", u"1.0");
        table.Text(u"TableBlurb", std::u16string(150, u'b'))
            .Text(u"TableRules", std::u16string(3000, u'r'));
        table.Text(u"CompanyName", u"Bally").Text(u"CompanyYear", u"1981");
        for (int item = 0; item < kItemsPerTable; ++item)
            table.Stream(u"GameStg/GameItem" + base::ToUtf16(std::to_string(item)),
                         test_support::FillerBytes(static_cast<std::size_t>(200 + item * 3)));
        table.Filler(static_cast<std::size_t>(size) - 250'000);
        paths.append(folder.filePath(QStringLiteral("%1.vpt").arg(i)));
        if (!table.Write(paths.last().toStdU16String()).ok()) return {};
    }
    return paths;
}

qsizetype ReadByOurs(const QStringList& paths) {
    qsizetype characters = 0;
    for (const QString& path : paths) {
        tableinfo::TableInfoFile file(path);
        if (!file.HasTableInfo()) continue;
        for (const char* stream : kStreams)
            characters += file.ReadStream(QLatin1String(stream)).size();
    }
    return characters;
}

struct Unref {
    template <typename T>
    void operator()(T* object) const {
        g_object_unref(object);
    }
};
using Input = std::unique_ptr<GsfInput, Unref>;

GsfInfile* AsInfile(const Input& input) {
    return reinterpret_cast<GsfInfile*>(input.get());
}

Input OpenInfo(const QByteArray& path) {
    const Input file(gsf_input_stdio_new(path.constData(), nullptr));
    if (!file) return nullptr;
    const Input root(reinterpret_cast<GsfInput*>(gsf_infile_msole_new(file.get(), nullptr)));
    return root ? Input(gsf_infile_child_by_name(AsInfile(root), "TableInfo")) : nullptr;
}

qsizetype CharactersOf(const Input& info, const char* stream_name) {
    const Input stream(gsf_infile_child_by_name(AsInfile(info), stream_name));
    if (!stream) return 0;
    const auto size = static_cast<std::size_t>(gsf_input_size(stream.get()));
    std::vector<guint8> bytes(size);
    if (size > 0) gsf_input_read(stream.get(), size, bytes.data());
    return static_cast<qsizetype>(size / 2);
}

qsizetype ReadByGsfPerStream(const QStringList& paths) {
    qsizetype characters = 0;
    for (const QString& path : paths) {
        const QByteArray name = path.toLocal8Bit();
        if (!OpenInfo(name)) continue;
        for (const char* stream : kStreams)
            characters += CharactersOf(OpenInfo(name), stream);
    }
    return characters;
}

qsizetype ReadByGsfOnce(const QStringList& paths) {
    qsizetype characters = 0;
    for (const QString& path : paths) {
        const Input info = OpenInfo(path.toLocal8Bit());
        if (!info) continue;
        for (const char* stream : kStreams)
            characters += CharactersOf(info, stream);
    }
    return characters;
}

// The number of characters stands for an answer: cat gives none.
qsizetype ReadByCat(const QStringList& paths) {
    QProcess cat;
    cat.setStandardOutputFile(QProcess::nullDevice());
    cat.start(QStringLiteral("cat"), paths);
    cat.waitForFinished(-1);
    return cat.exitCode() == 0 ? -1 : -2;
}

struct Contender {
    const char* name;
    qsizetype (*read)(const QStringList&);
    double best_seconds = 1e9;
    qsizetype characters = 0;
};

void Run(Contender& contender, const QStringList& paths) {
    const auto start = std::chrono::steady_clock::now();
    contender.characters = contender.read(paths);
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
    contender.best_seconds = std::min(contender.best_seconds, took.count());
}

// A catalogue whose rows name the files in turn.
class BenchCatalogue {
public:
    base::Status Fill(const QString& folder, const QStringList& paths, int rows) {
        values_.ApplicationFolder = folder;
        const QString database = folder + QStringLiteral("/pinball.mdb");
        RETURN_IF_ERROR(catalogue::CreateEmptyCatalogue(*files_, database.toStdU16String(), 45000));
        RETURN_IF_ERROR(catalogue::Main(catalogue));
        for (int row = 0; row < rows; ++row) {
            const QString statement =
                QStringLiteral(
                    "Insert into Tables (DisplayName, FileName) Values ('Table %1', '%2')")
                    .arg(row)
                    .arg(catalogue::QuoteSql(paths[row % paths.size()]));
            RETURN_IF_ERROR(connection_.Execute(statement.toStdU16String()).status());
        }
        return connection_.Flush();
    }

private:
    std::unique_ptr<jet::FileSystem> files_ = platform::MakeFileSystem();
    jet::Connection connection_{*files_};
    platform::SystemClock clock_;
    platform::NoSettings settings_;
    catalogue::ProcessValues values_;

public:
    catalogue::Catalogue catalogue{&connection_, &values_, &settings_, &clock_};
};

double SecondsOf(const std::function<void()>& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

// `gsf_seconds`: of the libgsf loop over each of the files once.
int BenchBulkUpdate(const QStringList& paths, int rows, double gsf_seconds) {
    const QTemporaryDir folder;
    BenchCatalogue bench;
    if (const auto filled = bench.Fill(folder.path(), paths, rows); !filled.ok())
        return std::fprintf(stderr, "%s\n", filled.message().c_str()), 1;
    double update = 1e9;
    double reading = 1e9;
    for (int round = 0; round < (rows > 10'000 ? 2 : kRounds); ++round) {
        update = std::min(update, SecondsOf([&] {
                              tableinfo::UpdateFromTableFiles(bench.catalogue, 0, nullptr).Ignore();
                          }));
        reading = std::min(reading, SecondsOf([&] {
                               for (int row = 0; row < rows; row += kFiles)
                                   ReadByOurs(paths);
                           }));
    }
    std::printf("\nBulk update of %d rows: %.2f s, %.1f us / row\n", rows, update,
                update * 1e6 / rows);
    std::printf("  %.1f times its reading (%.2f s); the libgsf loop alone would take %.1f times as "
                "long as all of it\n",
                update / reading, reading, gsf_seconds / kFiles * rows / update);
    std::fflush(stdout);
    return 0;
}

}  // namespace

int main() {
    gsf_init();
    const QTemporaryDir folder;
    const QStringList paths = MakeTableFiles(folder);
    Contender contenders[] = {{"TableInfoFile", ReadByOurs},
                              {"libgsf, opened per stream", ReadByGsfPerStream},
                              {"libgsf, opened once", ReadByGsfOnce},
                              {"cat", ReadByCat}};
    for (int round = 0; round < kRounds; ++round)
        for (Contender& contender : contenders)
            Run(contender, paths);

    const Contender& ours = contenders[0];
    std::printf(
        "Eight questions to each of %d table files of 0.3 to 50 MB\n%-26s %10s   theirs / ours\n",
        kFiles, "", "ms / file");
    for (const Contender& contender : contenders) {
        if (contender.characters != ours.characters && contender.characters != -1)
            return std::fprintf(stderr, "%s disagrees\n", contender.name), 1;
        std::printf("%-26s %10.3f   %.1f\n", contender.name, contender.best_seconds * 1000 / kFiles,
                    contender.best_seconds / ours.best_seconds);
    }
    for (const int rows : kRowCounts)
        if (BenchBulkUpdate(paths, rows, contenders[1].best_seconds) != 0) return 1;
    return 0;
}
