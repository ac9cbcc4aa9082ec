// tavolo-dbcheck FILE: checks a database file without changing it. Exit status: 0 sound, 1 faults,
// 2 the file cannot be checked. With --compact it makes the file smaller, with --repair a new one
// out of a damaged one: 0 done, 1 repaired with losses, 2 not done.
#include "app/print_failure.h"
#include "base/file_names.h"
#include "jet/check/check.h"
#include "jet/repair/compact.h"
#include "jet/repair/repair.h"
#include "platform/file_system.h"
#include "platform/program_arguments.h"

#include <cstdio>
#include <optional>
#include <string>
#include <vector>

namespace {

constexpr int kSound = 0;
constexpr int kFaults = 1;
constexpr int kCannotCheck = 2;

constexpr char kUsage[] =
    "Usage: tavolo-dbcheck [--json] FILE\n"
    "Checks every rule of a database file (.mdb) and prints what is wrong.\n"
    "Exit status: 0 sound (warnings may be printed), 1 faults, 2 cannot be checked.\n"
    "\n"
    "       tavolo-dbcheck --compact FILE\n"
    "Writes the file anew without pages that nothing uses. Nobody may have it open.\n"
    "Exit status: 0 done, 2 not done; the file is then as it was.\n"
    "\n"
    "       tavolo-dbcheck --repair FILE NEW\n"
    "Writes all that can still be read in a damaged FILE into the file NEW and prints what is "
    "lost.\n"
    "Exit status: 0 nothing is lost, 1 something is, 2 not done.\n";

std::string Quoted(const std::string& text) {
    std::string quoted = "\"";
    for (const char c : text) {
        if (c == '"' || c == '\\') {
            quoted += '\\';
            quoted += c;
        } else if (static_cast<unsigned char>(c) < 0x20) {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\u%04x", static_cast<unsigned>(c));
            quoted += escape;
        } else {
            quoted += c;
        }
    }
    return quoted + '"';
}

void Print(const std::string& text) {
    std::fwrite(text.data(), 1, text.size(), stdout);
}

std::string Counts(const jet::CheckReport& report) {
    return std::to_string(report.pages) + " pages, " + std::to_string(report.tables) + " tables, " +
           std::to_string(report.rows) + " rows, " + std::to_string(report.long_values) +
           " long values, " + std::to_string(report.index_entries) + " index entries";
}

void PrintText(const jet::CheckReport& report) {
    for (const jet::Finding& finding : report.findings)
        Print(jet::Describe(finding) + "\n");
    Print(Counts(report) + "\n");
    Print(std::to_string(report.faults) + " faults, " + std::to_string(report.warnings) +
          " warnings\n");
}

void PrintJson(const std::string& file, const jet::CheckReport& report) {
    Print("{\"file\": " + Quoted(file) + ", \"faults\": " + std::to_string(report.faults) +
          ", \"warnings\": " + std::to_string(report.warnings) + ", \"pages\": " +
          std::to_string(report.pages) + ", \"tables\": " + std::to_string(report.tables) +
          ", \"rows\": " + std::to_string(report.rows) +
          ", \"long_values\": " + std::to_string(report.long_values) +
          ", \"index_entries\": " + std::to_string(report.index_entries) + ", \"findings\": [");
    const char* separator = "\n";
    for (const jet::Finding& finding : report.findings) {
        const bool is_fault = finding.severity == jet::Severity::kFault;
        Print(separator + std::string("  {\"severity\": ") +
              (is_fault ? "\"fault\"" : "\"warning\"") +
              ", \"page\": " + std::to_string(finding.page) +
              (finding.row >= 0 ? ", \"row\": " + std::to_string(finding.row) : "") +
              ", \"table\": " + Quoted(finding.table) + ", \"text\": " + Quoted(finding.text) +
              "}");
        separator = ",\n";
    }
    Print("]}\n");
}

struct Arguments {
    std::optional<std::string> file;      // nullopt: none, or the arguments are wrong
    std::optional<std::string> new_file;  // of a repair
    bool compact = false;
    bool repair = false;
    bool json = false;
    bool help = false;
};

Arguments ParseArguments(const std::vector<std::string>& words) {
    Arguments arguments;
    for (const std::string& word : words) {
        if (word == "--help")
            arguments.help = true;
        else if (word == "--json")
            arguments.json = true;
        else if (word == "--compact")
            arguments.compact = true;
        else if (word == "--repair")
            arguments.repair = true;
        else if (word.starts_with("--") || arguments.new_file)
            return {};
        else
            (arguments.file ? arguments.new_file : arguments.file) = word;
        if (arguments.help) return arguments;
    }
    const int orders = int{arguments.json} + int{arguments.compact} + int{arguments.repair};
    if (orders > 1 || arguments.repair != arguments.new_file.has_value()) return {};
    return arguments;
}

std::filesystem::path PathOf(const std::string& word) {
    return base::PathOf(base::DecodeFileName(word));
}

int Check(const Arguments& arguments) {
    const auto files = platform::MakeFileSystem();
    jet::PageStoreOptions options;
    options.read_only = true;
    const auto store = jet::OpenPageStore(*files, PathOf(*arguments.file), options);
    if (!store.ok()) {
        app::PrintFailure("tavolo-dbcheck", store.status());
        return kCannotCheck;
    }
    const jet::CheckReport report = jet::CheckIntegrity(*store.value());
    if (arguments.json)
        PrintJson(*arguments.file, report);
    else
        PrintText(report);
    return report.sound() ? kSound : kFaults;
}

int Compact(const Arguments& arguments) {
    const auto files = platform::MakeFileSystem();
    const auto report = jet::CompactInPlace(*files, PathOf(*arguments.file));
    if (!report.ok()) {
        app::PrintFailure("tavolo-dbcheck", report.status());
        return kCannotCheck;
    }
    Print(std::to_string(report->pages_before) + " pages before, " +
          std::to_string(report->pages_after) + " pages now, " + std::to_string(report->tables) +
          " tables, " + std::to_string(report->rows) + " rows\n");
    return kSound;
}

int Repair(const Arguments& arguments) {
    const auto files = platform::MakeFileSystem();
    jet::RepairReport report;
    const base::Status done =
        jet::Repair(*files, PathOf(*arguments.file), PathOf(*arguments.new_file), report);
    for (const jet::RepairLoss& loss : report.losses)
        Print(jet::Describe(loss) + "\n");
    if (!done.ok()) {
        app::PrintFailure("tavolo-dbcheck", done);
        return kCannotCheck;
    }
    Print(std::to_string(report.tables) + " tables, " + std::to_string(report.rows) + " rows, " +
          std::to_string(report.loss_count) + " losses\n");
    return report.loss_count == 0 ? kSound : kFaults;
}

}  // namespace

int main(int argc, char** argv) {
    const Arguments arguments = ParseArguments(platform::ProgramArguments(argc, argv));
    if (arguments.help) {
        Print(kUsage);
        return kSound;
    }
    if (!arguments.file) {
        std::fputs(kUsage, stderr);
        return kCannotCheck;
    }
    if (arguments.compact) return Compact(arguments);
    if (arguments.repair) return Repair(arguments);
    return Check(arguments);
}
