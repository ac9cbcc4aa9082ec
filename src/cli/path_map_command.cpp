// path-map: where the files of stored paths are on this machine.
#include "cli/commands.h"
#include "cli/opened_catalogue.h"
#include "cli/terminal_text.h"

#include "catalogue/local_paths.h"
#include "catalogue/path_proposals.h"
#include "catalogue/stored_paths.h"
#include "platform/files.h"
#include "platform/text_view.h"

namespace cli {
namespace {

using catalogue::PathPair;

void PrintLine(Console& console, const PathPair& pair, std::int64_t first, std::int64_t second) {
    std::string line;
    AppendTerminalText(line, platform::View(pair.stored));
    line += '\t';
    AppendTerminalText(line, platform::View(pair.here));
    line += '\t' + std::to_string(first) + '\t' + std::to_string(second) + '\n';
    console.Write(line).Ignore();
}

base::RunSteps StepsOf(Program& program) {
    return {[&program](std::int64_t done, std::int64_t total) {
                program.console.ShowProgress(done, total);
            },
            {}};
}

base::Status List(Program& program) {
    ASSIGN_OR_RETURN(const auto pairs, catalogue::ReadPathPairs(program.outside.settings));
    ASSIGN_OR_RETURN(const auto opened, OpenedCatalogue::Open(program, Access::kRead));
    ASSIGN_OR_RETURN(const QStringList stored, catalogue::StoredPaths(opened->connection()));
    const catalogue::PathCounts counts =
        catalogue::CountPaths(stored, catalogue::PathMap(pairs), StepsOf(program));
    for (std::size_t i = 0; i < pairs.size(); ++i)
        PrintLine(program.console, pairs[i], counts.pairs[i].stored, counts.pairs[i].found);
    PrintLine(program.console, {}, counts.others.stored, counts.others.found);
    return {};
}

base::Status Add(Program& program, const QString& stored, const QString& here) {
    platform::SettingsStore& settings = program.outside.settings;
    ASSIGN_OR_RETURN(auto pairs, catalogue::ReadPathPairs(settings));
    pairs.push_back({stored, platform::AbsolutePath(here)});
    return catalogue::WritePathPairs(settings, pairs);
}

// The folder may be written in another way than in the pair.
base::Status Remove(Program& program, const QString& stored) {
    platform::SettingsStore& settings = program.outside.settings;
    // What cannot be read is made empty by removing from it.
    const auto known = catalogue::ReadPathPairs(settings);
    std::vector<PathPair> pairs = known.value_or({});
    const std::size_t erased = std::erase_if(pairs, [&](const PathPair& pair) {
        const PathPair removed{stored, pair.here};
        return catalogue::CheckPairs({removed}).ok() &&
               !catalogue::CheckPairs({pair, removed}).ok();
    });
    if (known.ok() && erased == 0)
        return {base::StatusCode::kNotFound,
                "there is no \"" + stored.toStdString() + "\" in the path map"};
    return catalogue::WritePathPairs(settings, pairs);
}

base::Status Propose(Program& program, QStringList folders) {
    ASSIGN_OR_RETURN(auto pairs, catalogue::ReadPathPairs(program.outside.settings));
    ASSIGN_OR_RETURN(const auto opened, OpenedCatalogue::Open(program, Access::kRead));
    if (folders.isEmpty()) {
        ASSIGN_OR_RETURN(folders, catalogue::FoldersToSearch(opened->get()));
    }
    for (QString& folder : folders)
        folder = platform::AbsolutePath(folder);
    ASSIGN_OR_RETURN(const QStringList stored, catalogue::StoredPaths(opened->connection()));
    const auto proposed =
        catalogue::ProposePairs(stored, folders, catalogue::PathMap(pairs), StepsOf(program));
    for (const catalogue::ProposedPair& each : proposed) {
        PrintLine(program.console, each.pair, each.found, each.stored);
        pairs.push_back(each.pair);
    }
    if (!program.arguments.Has("take") || proposed.empty()) return {};
    return catalogue::WritePathPairs(program.outside.settings, pairs);
}

}  // namespace

int RunPathMap(Program& program) {
    const QStringList& operands = program.arguments.operands;
    const QString action = operands.value(0, QStringLiteral("list"));
    const qsizetype folders = std::max<qsizetype>(operands.size() - 1, 0);
    const auto is = [&](const char* name, qsizetype wanted) {
        return action == QLatin1String(name) && folders == wanted;
    };
    base::Status done;
    if (is("list", 0))
        done = List(program);
    else if (is("add", 2))
        done = Add(program, operands[1], operands[2]);
    else if (is("remove", 1))
        done = Remove(program, operands[1]);
    else if (action == QLatin1String("propose"))
        done = Propose(program, operands.mid(1));
    else
        return FailUsage(program.console,
                         QStringLiteral("path-map takes list, add STORED HERE, remove STORED or "
                                        "propose [FOLDER...]"));
    return done.ok() ? kDone : Fail(program, done);
}

}  // namespace cli
