// The time that questions to a catalogue take by themselves, in milliseconds, for window_bench.py:
// one line for each that is read from the standard input, best of R, with cold caches of the
// processor. A line is a kind, a tab, and the statement.
//   first    asks whether there is a row
//   values   reads the first column of all rows
//   list     opens the rows as the tree does, counts them and reads what the tree shows of each
//   row      reads every column of the first row
//   ask_catalogue --folder FOLDER [--rounds R]                                              R: 5
#include "bench_catalogue.h"

#include <QtCore/QCoreApplication>

#include <algorithm>
#include <iostream>
#include <limits>
#include <string>

namespace {

constexpr const char16_t* kShown[] = {u"ID",         u"DisplayName", u"FileName",    u"Favorite",
                                      u"PinMame",    u"Version",     u"TimesPlayed", u"ImageFile",
                                      u"FileDate",   u"Author",      u"Company",     u"Year",
                                      u"LastPlayed", u"DateAdded"};

std::vector<std::size_t> PlacesOf(const jet::Recordset& rows) {
    std::vector<std::size_t> places;
    for (const char16_t* name : kShown)
        for (std::size_t field = 0; field < rows.FieldCount(); ++field)
            if (rows.FieldName(field) == name) places.push_back(field);
    return places;
}

void Walk(jet::Recordset& rows, const std::vector<std::size_t>& places) {
    while (!rows.Eof()) {
        for (const std::size_t place : places)
            bench::Require(rows.Fields(place).status());
        bench::Require(rows.MoveNext());
    }
}

void AskList(jet::Connection& connection, const std::u16string& sql) {
    jet::Recordset rows;
    bench::Require(
        rows.Open(sql, connection, jet::CursorType::kKeyset, jet::LockType::kOptimistic));
    if (rows.Eof()) return;
    bench::Require(rows.MoveLast());
    bench::Require(rows.MoveFirst());
    bench::Require(rows.Hold(PlacesOf(rows)).status());
}

// A question of the program comes after an input, when the processor has done other things: asked
// again and again it would be answered out of its caches, and the difference would count as the
// window's time.
void ForgetCaches() {
    constexpr std::size_t kMoreThanTheCaches = std::size_t{128} << 20;
    static std::vector<unsigned char> other(kMoreThanTheCaches);
    for (unsigned char& byte : other)
        ++byte;
}

void Ask(jet::Connection& connection, const std::string& kind, const std::u16string& sql) {
    if (kind == "list") return AskList(connection, sql);
    auto rows = connection.Execute(sql);
    bench::Require(rows.status());
    if (kind == "values") Walk(*rows, {0});
    if (kind != "row") return;
    for (std::size_t field = 0; field < rows->FieldCount(); ++field)
        bench::Require(rows->Fields(field).status());
}

}  // namespace

int main(int argc, char** argv) {
    QCoreApplication application(argc, argv);
    const QStringList words = QCoreApplication::arguments();
    const qsizetype at = words.indexOf(QStringLiteral("--folder"));
    if (at < 0 || at + 1 >= words.size()) return 2;
    const int rounds = bench::NumberOption(argc, argv, "--rounds", 5);
    const auto files = platform::MakeFileSystem();
    platform::SystemClock clock;
    platform::NoSettings settings;
    catalogue::ProcessValues values;
    values.ApplicationFolder = words[at + 1];
    jet::Connection connection(*files);
    catalogue::Catalogue catalogue{&connection, &values, &settings, &clock};
    bench::Require(catalogue::Main(catalogue));
    for (std::string line; std::getline(std::cin, line);) {
        const std::size_t tab = line.find('\t');
        if (tab == std::string::npos) return 2;
        const std::u16string sql = QString::fromStdString(line.substr(tab + 1)).toStdU16String();
        double best = std::numeric_limits<double>::max();
        for (int round = 0; round < rounds; ++round) {
            ForgetCaches();
            best =
                std::min(best, bench::Seconds([&] { Ask(connection, line.substr(0, tab), sql); }));
        }
        std::printf("%.3f\n", best * 1000);
        std::fflush(stdout);
    }
    return 0;
}
