#include "cli/command_table.h"

#include "catalogue/filter_kinds.h"
#include "catalogue/selection.h"
#include "cli/commands.h"
#include "cli/exit_status.h"

#include <algorithm>
#include <array>

namespace cli {
namespace {

using enum Completes;

// The texts of the window's boxes, which are ASCII, as this table has them.
template <std::size_t Count>
struct Letters {
    static constexpr std::size_t kMost = 16;
    char text[Count][kMost] = {};
};
template <std::size_t Count, typename Entry, typename TextOf>
consteval Letters<Count> LettersOf(const std::array<Entry, Count>& entries, TextOf text_of) {
    Letters<Count> letters;
    for (std::size_t i = 0; i < Count; ++i) {
        const QStringView text = text_of(entries[i]);
        for (qsizetype at = 0; at < text.size(); ++at)
            letters.text[i][at] = static_cast<char>(text.utf16()[at]);
    }
    return letters;
}
template <std::size_t Count>
consteval std::array<std::string_view, Count> Views(const Letters<Count>& letters) {
    std::array<std::string_view, Count> views;
    for (std::size_t i = 0; i < Count; ++i)
        views[i] = letters.text[i];
    return views;
}
constexpr auto kFilterLetters = LettersOf(
    catalogue::kFilterKinds, [](const catalogue::FilterKind& filter) { return filter.text; });
constexpr auto kOperatorLetters =
    LettersOf(catalogue::OperatorSymbols, [](QStringView symbol) { return symbol; });
constexpr auto kOrderLetters = LettersOf(
    catalogue::kOrderColumns, [](const catalogue::OrderColumn& order) { return order.caption; });
constexpr auto kFilters = Views(kFilterLetters);
constexpr auto kOperators = Views(kOperatorLetters);
constexpr auto kOrders = Views(kOrderLetters);
constexpr std::string_view kFormats[] = {"csv", "json", "jsonl"};
constexpr std::string_view kMatches[] = {"id", "file", "crc"};

constexpr Option kColumnsOption{.name = "columns",
                                .letter = 'c',
                                .value = "NAMES",
                                .help = "only these columns, with commas between them"};
constexpr Option kOrderOption{.name = "order",
                              .letter = 'o',
                              .value = "COLUMN",
                              .help = "sort by one of",
                              .completes = kChoices,
                              .choices = kOrders};
constexpr Option kDescendingOption{
    .name = "descending", .letter = 'd', .help = "sort from the largest to the smallest"};
constexpr Option kJsonOption{.name = "json", .letter = 'j', .help = "write JSON"};
constexpr Option kDryRunOption{
    .name = "dry-run", .letter = 'n', .help = "only tell what would be done; nothing is changed"};
constexpr Option kVerboseOption{
    .name = "verbose", .letter = 'v', .help = "tell every cell that was changed"};
constexpr Option kFilterOption{.name = "filter",
                               .letter = 'f',
                               .value = "FILTER",
                               .help = "only the tables that the filter selects, one of",
                               .completes = kChoices,
                               .choices = kFilters};
constexpr Option kOperatorOption{.name = "operator",
                                 .value = "OPERATOR",
                                 .help = "how the filter compares, = when not given",
                                 .completes = kChoices,
                                 .choices = kOperators};
constexpr Option kValueOption{
    .name = "value", .value = "VALUE", .help = "what the filter compares with"};
constexpr Option kFormatOption{.name = "format",
                               .value = "FORMAT",
                               .help = "instead of the one that the file's ending tells",
                               .completes = kChoices,
                               .choices = kFormats};

constexpr Option kListOptions[] = {kColumnsOption, kOrderOption, kDescendingOption, kJsonOption};
constexpr Example kListExamples[] = {{"tavolo-cli list", "lists all tables by their names"},
                                     {"tavolo-cli list --order='Times Played' --descending | head",
                                      "lists the ten tables that were played most"},
                                     {"tavolo-cli list --json --columns=ID,DisplayName,FileName",
                                      "writes three columns of all tables as JSON"}};

constexpr Operand kFindOperands[] = {
    {.name = "FILTER", .completes = kChoices, .choices = kFilters},
    {.name = "OPERATOR", .is_optional = true, .completes = kChoices, .choices = kOperators},
    {.name = "VALUE", .is_optional = true}};
constexpr Example kFindExamples[] = {
    {"tavolo-cli find Favorites", "lists the favourites"},
    {"tavolo-cli find Year '>' 1989", "lists the tables of 1990 and later"},
    {"tavolo-cli find 'Date Added' '>' 1/1/2000 --json", "writes what was added lately as JSON"}};

constexpr Operand kIdOperand[] = {{.name = "ID"}};
constexpr Option kShowOptions[] = {kJsonOption};
constexpr Example kShowExamples[] = {{"tavolo-cli show 1", "shows all fields of the table 1"}};

constexpr Operand kInfoOperands[] = {{.name = "FILE", .completes = kFiles}};
constexpr Option kInfoOptions[] = {kJsonOption,
                                   {.name = "extract",
                                    .letter = 'x',
                                    .value = "DIR",
                                    .help = "write the pictures into this folder",
                                    .completes = kFolders},
                                   kDryRunOption};
constexpr Example kInfoExamples[] = {
    {"tavolo-cli info --json game.vpt", "writes as JSON what a table file says of itself"},
    {"tavolo-cli info --extract=. game.vpt", "writes its pictures into the current folder, too"}};

constexpr Option kVerifyOptions[] = {
    {.name = "quick", .letter = 'q', .help = "see only whether the files are there"}, kJsonOption};
constexpr Example kVerifyExamples[] = {
    {"tavolo-cli verify --quick", "checks the catalogue, and whether every table file is there"}};

constexpr Operand kScanOperands[] = {{.name = "DIR", .completes = kFolders}};
constexpr Option kChangeOptions[] = {kDryRunOption, kVerboseOption};
constexpr Example kScanExamples[] = {
    {"tavolo-cli scan --dry-run tables", "tells which tables of a folder are new"}};
constexpr Example kUpdateExamples[] = {
    {"tavolo-cli update --verbose", "copies what the table files say, and tells what changed"}};
constexpr Example kCrcExamples[] = {{"tavolo-cli crc", "computes the checksums anew"}};

constexpr Operand kSetOperands[] = {{.name = "ID"},
                                    {.name = "FIELD=VALUE", .is_optional = true, .repeats = true}};
constexpr Option kSetOptions[] = {{.name = "null",
                                   .value = "FIELD",
                                   .help = "empty the field, so that it holds no value at all",
                                   .repeats = true},
                                  kDryRunOption,
                                  kVerboseOption};
constexpr Example kSetExamples[] = {{"tavolo-cli set 1 Favorite=true Notes='multi-ball at 3 a.m.'",
                                     "makes the table 1 a favourite and gives it a note"},
                                    {"tavolo-cli set 1 --null=FlyerFile", "takes its flyer away"}};

constexpr Option kBackupOptions[] = {kDryRunOption};
constexpr Example kBackupExamples[] = {{"tavolo-cli backup", "makes the backup"}};

constexpr Option kCompactOptions[] = {kJsonOption, kDryRunOption};
constexpr Example kCompactExamples[] = {
    {"tavolo-cli compact --dry-run", "tells what compacting the catalogue would bring"}};

constexpr Operand kRepairOperands[] = {{.name = "FILE", .completes = kFiles},
                                       {.name = "OUTPUT", .completes = kFiles}};
constexpr Option kRepairOptions[] = {kJsonOption, kDryRunOption};
constexpr Example kRepairExamples[] = {
    {"tavolo-cli repair damaged.mdb repaired.mdb",
     "writes what can still be read in a damaged file into a new one"}};

constexpr Example kSnapshotExamples[] = {
    {"tavolo-cli snapshot", "makes a snapshot of the catalogue as it is now"}};

constexpr Operand kRestoreOperands[] = {{.name = "NAME", .is_optional = true}};
constexpr Option kRestoreOptions[] = {kDryRunOption};
constexpr Example kRestoreExamples[] = {
    {"tavolo-cli restore", "lists what can be restored"},
    {"tavolo-cli restore --dry-run 1", "tells how the first snapshot differs from today"}};

constexpr std::string_view kPathMapActions[] = {"list", "add", "remove", "propose"};
constexpr Operand kPathMapOperands[] = {
    {.name = "ACTION", .is_optional = true, .completes = kChoices, .choices = kPathMapActions},
    {.name = "FOLDER", .is_optional = true, .repeats = true, .completes = kFolders}};
constexpr Option kPathMapOptions[] = {
    {.name = "take", .letter = 't', .help = "add what is proposed"}};
constexpr Example kPathMapExamples[] = {{"tavolo-cli path-map add 'C:\\Tables' tables",
                                         "looks for what is stored below C:\\Tables here"},
                                        {"tavolo-cli path-map", "lists the path map"}};

constexpr Operand kPlayOperands[] = {{.name = "NAME|ID"}};
constexpr Option kPlayOptions[] = {kDryRunOption};
constexpr Example kPlayExamples[] = {
    {"tavolo-cli play --dry-run 1", "shows how the table 1 would be started"}};

constexpr Operand kExportOperands[] = {{.name = "FILE", .is_optional = true, .completes = kFiles}};
constexpr Option kExportOptions[] = {
    kFormatOption,
    kFilterOption,
    kOperatorOption,
    kValueOption,
    kColumnsOption,
    kOrderOption,
    kDescendingOption,
    {.name = "escape-formulas",
     .help = "CSV: put an apostrophe before texts that a spreadsheet would run as a formula"},
    kDryRunOption};
constexpr Example kExportExamples[] = {
    {"tavolo-cli export tables.csv", "writes the whole catalogue as CSV"},
    {"tavolo-cli export --format=jsonl --filter=Favorites",
     "writes the favourites as JSON, a line each"}};

constexpr Operand kImportOperands[] = {{.name = "FILE", .completes = kFiles}};
constexpr Option kImportOptions[] = {
    {.name = "match",
     .letter = 'm',
     .value = "COLUMN",
     .help = "find the table of a row by its ID, its file name or its checksum",
     .completes = kChoices,
     .choices = kMatches},
    kFormatOption,
    {.name = "update-only", .help = "pass over rows whose table is not in the catalogue"},
    {.name = "ignore-unknown", .help = "leave out columns that the catalogue does not have"},
    {.name = "unescape-formulas",
     .help = "CSV: take away the apostrophes that export --escape-formulas has put"},
    kDryRunOption,
    kVerboseOption};
constexpr Example kImportExamples[] = {
    {"tavolo-cli import --dry-run tables.csv", "tells what importing the file would change"},
    {"tavolo-cli export | tavolo-cli import -",
     "sends the whole catalogue through a pipe and changes nothing"}};

constexpr Option kHistoryOptions[] = {kJsonOption};
constexpr Example kHistoryExamples[] = {
    {"tavolo-cli history | tail -n 5", "lists the five newest changes"}};
constexpr Operand kUndoOperands[] = {{.name = "NUMBER", .is_optional = true}};
constexpr Option kUndoOptions[] = {{.name = "redo", .help = "take the last undo back instead"}};
constexpr Example kUndoExamples[] = {{"tavolo-cli undo", "takes back what was changed last"},
                                     {"tavolo-cli undo --redo", "makes that change again"}};

constexpr Option kCommonOptions[] = {
    {.name = "folder",
     .letter = 'C',
     .value = "DIR",
     .help = "use the catalogue in this folder instead of the program's own",
     .completes = kFolders},
    {.name = "help", .letter = 'h', .help = "show help and end"},
    {.name = "version", .letter = 'V', .help = "show the version and end"}};

constexpr StatusMeaning kStatusMeanings[] = {
    {kDone, "everything was done"},
    {kFailed, "something failed, or find found nothing, verify found a fault, import met a row "
              "that it cannot take, repair lost something"},
    {kWrongUsage, "the command line is wrong; nothing was done"},
    {kInUse, "another program has the catalogue; nothing was done"},
    {kPipeClosed, "the program that read the results has ended"}};

constexpr std::string_view kFindText =
    "Lists the tables that a filter of the program's window selects. All, VPinMAME, Favorites and "
    "VP Only need no more; Author, Company, Year, File Date, Times Played and Date Added compare "
    "with a value, by =, <>, < or > (put these in quotes). Nothing found is told, with status 1."
    "\n\nDates and numbers are read as the program reads them: 11/20/2026, 20-Nov-26, 2026-11-20. "
    "Years are texts and are compared as such. A filter may be called by its column's name, too.";
constexpr Command kCommands[] = {
    {"list",
     "list all tables",
     "Lists all tables, one a line: ID, name, company, year, author and file, or the columns that "
     "are asked for, with tabs between them. On a terminal a line of their names comes first. "
     "Characters that would upset a terminal are written as \\n, \\t, \\xNN; a value that is not "
     "there is empty.\n\nJSON is one object: \"schema\" is 1, \"columns\" are the names, and "
     "\"rows\" has an object for each table. Dates are texts like 2026-11-20 15:04:05; a value "
     "that is not there is null.",
     {},
     kListOptions,
     kListExamples,
     RunList},
    {"find", "list the tables that a filter selects", kFindText, kFindOperands, kListOptions,
     kFindExamples, RunFind},
    {"show", "show all fields of a table",
     "Shows every field of the table with this ID, its name, a colon and its text.", kIdOperand,
     kShowOptions, kShowExamples, RunShow},
    {"scan", "add the new tables of a folder",
     "Searches the folder and all below it for table files that the catalogue does not have, adds "
     "them, and then copies what the table files say into the catalogue, as \"Scan for New "
     "Tables\" does.\n\nA dry run works on a copy in memory and tells every cell that would be "
     "changed.",
     kScanOperands, kChangeOptions, kScanExamples, RunScan},
    {"update",
     "copy what the table files say into the catalogue",
     "Reads the information in every table file and stores name, author, version, rules, notes, "
     "company and year where they are not empty, as \"Import Data from VPTs\" does.\n\nA dry run "
     "works on a copy in memory and tells every cell that would be changed.",
     {},
     kChangeOptions,
     kUpdateExamples,
     RunUpdate},
    {"crc",
     "compute the checksums anew",
     "Computes the checksum of every table file that is there and stores it, as \"Update CRC's\" "
     "does.\n\nA dry run works on a copy in memory and tells every cell that would be changed.",
     {},
     kChangeOptions,
     kCrcExamples,
     RunCrc},
    {"verify",
     "check the catalogue and the table files",
     "Checks every rule of the database file, then for each table whether its file is there and "
     "still has the checksum that the catalogue knows. Tells what is wrong, and ends with status 1 "
     "if anything is. A table without a checksum is told, and is no fault.",
     {},
     kVerifyOptions,
     kVerifyExamples,
     RunVerify},
    {"path-map", "say where the files of stored paths are on this machine",
     "A catalogue may have been written on another system, or its files moved to another disk. "
     "The path map of this user says that what is stored below one folder is below another one "
     "here; the paths in the catalogue stay as they are. Every command looks for files by it.\n\n"
     "list, or nothing, prints a line for each pair: the stored folder, the folder here, how many "
     "stored paths it counts for and how many of their files are found, with tabs between them; "
     "the last line is for all other paths. add STORED HERE adds a pair, and remove STORED takes "
     "it away. propose looks for the files that are not found in the folders that the program "
     "knows, or in those that are given, and prints the pairs that lead to them, with the number "
     "of those files and of the paths below the stored folder; --take adds them.",
     kPathMapOperands, kPathMapOptions, kPathMapExamples, RunPathMap},
    {"play", "play a table",
     "Counts the play and starts the simulator on the table with this name or ID, as the program "
     "does: with the executable of its settings. Returns when the play has ended. A name is taken "
     "in any letter case; when several tables have it, their IDs are told.",
     kPlayOperands, kPlayOptions, kPlayExamples, RunPlay},
    {"set", "change fields of a table",
     "Gives fields of the table with this ID new values. FIELD= stores the empty text; --null "
     "stores that there is no value. Yes/No fields take true and false, dates 2026-11-20 15:04:05 "
     "or what the program reads as one. Either all of it is stored or nothing.\n\nA dry run works "
     "on a copy in memory and tells every cell that would be changed.",
     kSetOperands, kSetOptions, kSetExamples, RunSet},
    {"export", "write tables as CSV or JSON",
     "Writes every column of the tables, or of those that a filter selects, into FILE, or to the "
     "standard output when it is - or left out. The format is that of the file's ending (.csv, "
     ".json, .jsonl), else CSV.\n\nCSV is that of RFC 4180 in UTF-8, with a line of the columns' "
     "names. A field with nothing in it is a value that is not there, and \"\" is the empty text. "
     "JSON is that of list --json; jsonl has an object a line and nothing around them. import "
     "reads all of them back without loss.",
     kExportOperands, kExportOptions, kExportExamples, RunExport},
    {"import", "take rows from CSV or JSON",
     "Takes the rows of FILE, or of the standard input when it is -, as export writes them. A row "
     "finds its table by ID, or by --match=file or --match=crc; a table that is not there is "
     "added. Only cells that differ are changed, and columns that the file does not have stay as "
     "they are.\n\nIf a single row cannot be taken, the lines and reasons are told and nothing is "
     "changed. A column that the catalogue does not have is such a reason, unless "
     "--ignore-unknown is given.\n\nA dry run works on a copy in memory and tells every cell that "
     "would be changed.",
     kImportOperands, kImportOptions, kImportExamples, RunImport},
    {"history",
     "list what was changed",
     "Lists the changes of the catalogue, the oldest first, one a line: number, time, name, rows "
     "and fields, with tabs between them. Of a row that was added or removed, the fields that hold "
     "something count. Every command of the program that changes tables is a change; the newest "
     "changes that fit into 200 MB are kept.\n\nJSON is one object: "
     "\"schema\" is 1, and \"changes\" has an object for each change.",
     {},
     kHistoryOptions,
     kHistoryExamples,
     RunHistory},
    {"undo", "take a change back",
     "Takes back the change that was made last and was not taken back yet, or the one with this "
     "number of history. A field gets what it held before only if it still holds what the change "
     "wrote; a table that was removed comes back with its ID if that is free; one that was added "
     "goes only if nothing in it was changed since. What stays as it is is told, with status 1. An "
     "undo is a change, too.",
     kUndoOperands, kUndoOptions, kUndoExamples, RunUndo},
    {"backup",
     "copy the catalogue to pinball.BU",
     "Copies pinball.mdb to pinball.BU beside it, as \"Backup Data\" does. The backup before is "
     "replaced once the new one is complete.",
     {},
     kBackupOptions,
     kBackupExamples,
     RunBackup},
    {"compact",
     "write the catalogue anew without unused space",
     "Writes pinball.mdb anew with the same tables, rows, IDs and indexes and without the space "
     "that deleted and changed rows have left. The new file is checked before it takes the place "
     "of the old one, in one step. Nobody may have the catalogue open, and the disk needs room "
     "for both. A file in which verify finds a fault is left as it is; see repair.",
     {},
     kCompactOptions,
     kCompactExamples,
     RunCompact},
    {"repair", "save what a damaged database file still holds",
     "Writes all that can still be read in the database FILE into the new file OUTPUT, page by "
     "page and without the structures that may be damaged. FILE is only read, and OUTPUT must not "
     "be there yet. Tells what could not be brought over, a line each, and ends with status 1 if "
     "there is anything. Put OUTPUT in the place of pinball.mdb while nobody has it open.",
     kRepairOperands, kRepairOptions, kRepairExamples, RunRepair},

    {"snapshot",
     "make a snapshot of the catalogue",
     "Stores the state of the catalogue in the folder pinball.mdb-snapshots beside it, also while "
     "the program is running, reads it back and checks it, and prints its line of the list that "
     "restore shows. It takes the room of what differs from the snapshot before; when nothing does "
     "none is made. The newest of 24 hours, 7 days, 4 weeks and 12 months are kept, and the last "
     "24 that were made by hand or before a command.",
     {},
     {},
     kSnapshotExamples,
     RunSnapshot},
    {"restore", "list the snapshots, or restore one",
     "Without a name lists the snapshots and pinball.BU, the newest first, one a line: name, time, "
     "occasion, bytes and state, with tabs between them.\n\nWith a name tells how many rows of "
     "each table that state has more and fewer than today and how many are different, and makes it "
     "the catalogue. Today's state is kept: as a snapshot or, when the catalogue is damaged, as a "
     "file of its own. scan, update, crc, import and compact make a snapshot before they begin.",
     kRestoreOperands, kRestoreOptions, kRestoreExamples, RunRestore},
    {"info", "show what a table file says of itself",
     "Shows the texts in a table file, those that its author added by other names, and its "
     "pictures. Needs no catalogue. --extract writes the pictures as files that are named after "
     "the table file; files that are there are not replaced.",
     kInfoOperands, kInfoOptions, kInfoExamples, RunInfo},
};

}  // namespace

std::span<const Command> Commands() {
    return kCommands;
}

const Command* FindCommand(std::string_view name) {
    const auto* const found = std::find_if(std::begin(kCommands), std::end(kCommands),
                                           [&](const Command& c) { return c.name == name; });
    return found == std::end(kCommands) ? nullptr : found;
}

std::span<const Option> CommonOptions() {
    return kCommonOptions;
}

std::span<const StatusMeaning> StatusMeanings() {
    return kStatusMeanings;
}

}  // namespace cli
