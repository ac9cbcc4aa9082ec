// tavolo-dbcheck FILE: checks a database file without changing it. Exit status: 0 sound, 1 faults,
// 2 the file cannot be checked.
#include "app/print_failure.h"
#include "jet/check/check.h"
#include "platform/file_system.h"

#include <cstdio>
#include <cstring>
#include <string>

namespace {

constexpr int kSound = 0;
constexpr int kFaults = 1;
constexpr int kCannotCheck = 2;

constexpr char kUsage[] =
    "Usage: tavolo-dbcheck [--json] FILE\n"
    "Checks every rule of a database file (.mdb) and prints what is wrong.\n"
    "Exit status: 0 sound (warnings may be printed), 1 faults, 2 cannot be checked.\n";

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
    const char* file = nullptr;  // nullptr: none, or the arguments are wrong
    bool json = false;
    bool help = false;
};

Arguments ParseArguments(int argc, char** argv) {
    Arguments arguments;
    for (int i = 1; i < argc && !arguments.help; ++i) {
        if (std::strcmp(argv[i], "--help") == 0)
            arguments.help = true;
        else if (std::strcmp(argv[i], "--json") == 0)
            arguments.json = true;
        else if (std::strncmp(argv[i], "--", 2) == 0 || arguments.file != nullptr)
            return {};
        else
            arguments.file = argv[i];
    }
    return arguments;
}

int Check(const Arguments& arguments) {
    const auto files = platform::MakeFileSystem();
    jet::PageStoreOptions options;
    options.read_only = true;
    const auto store = jet::OpenPageStore(*files, arguments.file, options);
    if (!store.ok()) {
        app::PrintFailure("tavolo-dbcheck", store.status());
        return kCannotCheck;
    }
    const jet::CheckReport report = jet::CheckIntegrity(*store.value());
    if (arguments.json)
        PrintJson(arguments.file, report);
    else
        PrintText(report);
    return report.sound() ? kSound : kFaults;
}

}  // namespace

int main(int argc, char** argv) {
    const Arguments arguments = ParseArguments(argc, argv);
    if (arguments.help) {
        Print(kUsage);
        return kSound;
    }
    if (arguments.file == nullptr) {
        std::fputs(kUsage, stderr);
        return kCannotCheck;
    }
    return Check(arguments);
}
