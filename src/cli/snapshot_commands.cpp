// snapshot and restore.
#include "cli/commands.h"
#include "cli/opened_catalogue.h"
#include "cli/snapshot_before.h"

#include "catalogue/process_values.h"
#include "snapshots/restore_catalogue.h"

#include <algorithm>

namespace cli {
namespace {

using snapshots::RestoreEntry;

constexpr QStringView kBackupName = u"BU";

// The catalogue's place and its snapshots; the catalogue stays closed.
class Place {
public:
    explicit Place(Program& program)
        : connection_(program.outside.files), catalogue_{&connection_, &values_,
                                                         &program.outside.settings,
                                                         &program.outside.clock} {
        values_.ApplicationFolder = catalogue::ChooseApplicationFolder(
            program.arguments.Value("folder"), program.outside.folders);
        store_ = std::make_unique<snapshots::SnapshotStore>(program.outside.files,
                                                            snapshots::DatabaseOf(catalogue_));
    }
    catalogue::Catalogue& get() { return catalogue_; }
    const QString& folder() const { return values_.ApplicationFolder; }
    snapshots::SnapshotStore& store() { return *store_; }

private:
    catalogue::ProcessValues values_;
    jet::Connection connection_;
    catalogue::Catalogue catalogue_;
    std::unique_ptr<snapshots::SnapshotStore> store_;
};

QString NameOf(const RestoreEntry& entry) {
    return entry.snapshot ? QString::number(*entry.snapshot) : kBackupName.toString();
}

QString LineOf(const RestoreEntry& entry) {
    return QStringList{NameOf(entry), entry.time.toString(QStringLiteral("yyyy-MM-dd HH:mm:ss")),
                       entry.occasion, QString::number(entry.size_bytes),
                       snapshots::StateText(entry.state)}
        .join(u'\t');
}

int ListEntries(Program& program, const std::vector<RestoreEntry>& entries) {
    if (program.console.OutIsTerminal())
        program.console.Print(QStringLiteral("Name\tTime\tOccasion\tBytes\tState"));
    for (const RestoreEntry& entry : entries)
        program.console.Print(LineOf(entry));
    return kDone;
}

// What a restore would change, or has changed, on the messages or the results.
void TellDifferences(Program& program, const std::vector<snapshots::TableDifference>& tables) {
    for (const snapshots::TableDifference& table : tables)
        program.console.Print(QString::fromStdString(table.table) + QStringLiteral(": ") +
                              snapshots::DifferenceText(table));
}

int RestoreOne(Program& program, Place& place, const RestoreEntry& entry) {
    jet::FileSystem& files = program.outside.files;
    const auto differences = snapshots::CompareEntry(files, place.store(), entry);
    // Today's catalogue may be the very thing that cannot be read.
    if (differences.ok())
        TellDifferences(program, *differences);
    else if (program.is_dry_run())
        return Fail(program, differences.status());
    if (program.is_dry_run()) return kDone;
    const auto restored = snapshots::RestoreCatalogue(place.get(), files, place.store(), entry);
    if (!restored.ok()) return Fail(program, restored.status());
    const base::Status closed = place.get().CatalogueConnection->Close();
    if (!closed.ok()) return Fail(program, closed);
    program.console.WriteError((snapshots::RestoredText(*restored) + u'\n').toStdString());
    return kDone;
}

base::Status MakeBefore(Program& program, const catalogue::Catalogue& catalogue,
                        const char* command) {
    snapshots::SnapshotStore store(program.outside.files, snapshots::DatabaseOf(catalogue));
    const auto now = snapshots::ToLocalSeconds(program.outside.clock.Now());
    RETURN_IF_ERROR(store.Make({snapshots::Occasion::kBeforeCommand, now, command}).status());
    return store.Keep();
}

// A failure is told, and stops nothing.
void TryMakeBefore(Program& program, const catalogue::Catalogue& catalogue, const char* command) {
    if (program.is_dry_run()) return;
    const base::Status made = MakeBefore(program, catalogue, command);
    if (!made.ok())
        program.console.Complain(QStringLiteral("no snapshot was made: ") +
                                 QString::fromStdString(made.message()));
}

}  // namespace

void SnapshotBefore(Program& program, OpenedCatalogue& opened, const char* command) {
    TryMakeBefore(program, opened.get(), command);
}

void SnapshotBefore(Program& program, const char* command) {
    Place place(program);
    TryMakeBefore(program, place.get(), command);
}

int RunSnapshot(Program& program) {
    Place place(program);
    snapshots::SnapshotStore& store = place.store();
    const auto now = snapshots::ToLocalSeconds(program.outside.clock.Now());
    const auto made = store.Make({snapshots::Occasion::kByHand, now, {}});
    if (!made.ok()) return Fail(program, made.status());
    const base::Status checked = store.CheckAll();
    const base::Status kept = store.Keep();
    for (const base::Status& status : {checked, kept})
        if (!status.ok()) return Fail(program, status);
    const auto entries = snapshots::RestoreEntries(program.outside.files, store, place.folder());
    if (!entries.ok()) return Fail(program, entries.status());
    const auto newest = std::ranges::find_if(
        *entries, [](const RestoreEntry& entry) { return entry.snapshot.has_value(); });
    if (newest != entries->end()) program.console.Print(LineOf(*newest));
    if (!*made) program.console.WriteError("nothing has changed since then\n");
    return kDone;
}

int RunRestore(Program& program) {
    Place place(program);
    const auto entries =
        snapshots::RestoreEntries(program.outside.files, place.store(), place.folder());
    if (!entries.ok()) return Fail(program, entries.status());
    if (program.arguments.operands.isEmpty()) return ListEntries(program, *entries);
    const QString& name = program.arguments.operands.front();
    const auto found = std::ranges::find_if(
        *entries, [&](const RestoreEntry& entry) { return NameOf(entry) == name; });
    if (found == entries->end())
        return Fail(program,
                    {base::StatusCode::kNotFound, "there is no snapshot " + name.toStdString()});
    return RestoreOne(program, place, *found);
}

}  // namespace cli
