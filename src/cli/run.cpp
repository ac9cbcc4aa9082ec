#include "cli/documents.h"
#include "cli/program.h"

#include "catalogue/error_report.h"
#include "platform/standard_streams.h"

namespace cli {
namespace {

int RunCommand(Program& program) {
    const Command* command = program.arguments.command;
    if (program.arguments.version) {
        program.console.Write(VersionText()).Ignore();
        return kDone;
    }
    if (program.arguments.help) {
        program.console.Write(command != nullptr ? CommandHelp(*command) : GeneralHelp()).Ignore();
        return kDone;
    }
    return command->run(program);
}

}  // namespace

int Run(const QStringList& words, Outside& outside, Console& console) {
    const Arguments arguments = ParseArguments(words);
    if (!arguments.error.isEmpty()) return FailUsage(console, arguments.error);
    Program program{outside, console, arguments};
    const int status = RunCommand(program);
    const base::Status& failure = console.write_failure();
    if (failure.ok()) return status;
    if (failure.number() == platform::kPipeClosed) return kPipeClosed;
    console.Complain(QStringLiteral("write error: ") + QString::fromStdString(failure.message()));
    return kFailed;
}

int Fail(Program& program, const base::Status& failure) {
    // Said at the end, once.
    if (!program.console.write_failure().ok()) return kFailed;
    program.console.Complain(failure);
    return failure.code() == base::StatusCode::kBusy ? kInUse : kFailed;
}

int Finish(Program& program, std::initializer_list<base::Status> outcomes) {
    int status = kDone;
    QStringList told;
    for (const base::Status& outcome : outcomes) {
        const QString text = catalogue::FailureText(outcome);
        if (outcome.ok() || told.contains(text)) continue;
        told.append(text);
        const int its_status = Fail(program, outcome);
        if (status == kDone) status = its_status;
    }
    return status;
}

int FailUsage(Console& console, const base::Status& wrong) {
    return FailUsage(console, catalogue::FailureText(wrong));
}

int FailUsage(Console& console, const QString& text) {
    console.Complain(text);
    console.WriteError("Try 'tavolo-cli --help' for more information.\n");
    return kWrongUsage;
}

}  // namespace cli
