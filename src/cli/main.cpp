// tavolo-cli: the catalogue on the command line.
#include "cli/program.h"

#include "platform/application_folder.h"
#include "platform/file_system.h"
#include "platform/program_arguments.h"
#include "platform/standard_streams.h"

int main(int argc, char** argv) {
    platform::KeepGoingWhenPipesClose();
    QStringList words;
    for (const std::string& word : platform::ProgramArguments(argc, argv))
        words.append(platform::ArgumentText(word.c_str()));
    const auto files = platform::MakeFileSystem();
    const auto settings = platform::MakeSettingsStore();
    platform::SystemClock clock;
    const auto programs = platform::MakeProcessStarter();
    const auto windows = platform::MakeWindowControl();
    cli::Outside outside{*files,    *settings, clock,
                         *programs, *windows,  catalogue::FoldersOfThisProgram()};
    cli::StandardConsole console;
    return cli::Run(words, outside, console);
}
