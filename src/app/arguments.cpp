#include "app/arguments.h"

#include "dialogs/program_version.h"

namespace app {
namespace {

void TakeTables(const QString& word, Arguments& arguments) {
    if (!arguments.tables.isEmpty())
        arguments.error = QStringLiteral("only one file or folder can be given");
    else if (word.isEmpty())
        arguments.error = QStringLiteral("the name of a file or folder is empty");
    else
        arguments.tables = word;
}

}  // namespace

Arguments ParseArguments(const QStringList& words) {
    const QString folder_equals = QStringLiteral("--folder=");
    Arguments arguments;
    bool only_names = false;
    for (qsizetype i = 0; i < words.size(); ++i) {
        const QString& word = words[i];
        if (only_names || !word.startsWith(u'-'))
            TakeTables(word, arguments);
        else if (word == u"--")
            only_names = true;
        else if (word == u"--help" || word == u"-h")
            arguments.help = true;
        else if (word == u"--version" || word == u"-v")
            arguments.version = true;
        else if (word == u"--demo")
            arguments.demo = true;
        else if (word == u"--folder" && i + 1 < words.size())
            arguments.folder = words[++i];
        else if (word.startsWith(folder_equals))
            arguments.folder = word.mid(folder_equals.size());
        else if (word == u"--folder")
            arguments.error = QStringLiteral("--folder needs the name of a folder");
        else
            arguments.error = QStringLiteral("unknown argument: ") + word;
    }
    return arguments;
}

QString HelpText() {
    return QStringLiteral(
        "usage: tavolo [--demo] [--folder DIR] [FILE|DIR]\n"
        "Catalogue manager and front end for Visual Pinball tables.\n"
        "\n"
        "  --folder DIR  use DIR as the application folder: the catalogue pinball.mdb, its "
        "backup,\n"
        "                the sounds and the help file are there. An empty DIR gets new ones.\n"
        "                Without it: the program's own folder, or, where that cannot be written,\n"
        "                the user's data folder.\n"
        "  --demo        open the example collection, in a folder of its own\n"
        "  FILE|DIR      add this table file, or those of this folder, and select the first\n"
        "  --help        show this text\n"
        "  --version     show the version\n");
}

QString VersionLine() {
    return dialogs::ApplicationTitle() + QStringLiteral(" ") +
           dialogs::VersionText(dialogs::ProgramVersion()) + QStringLiteral("\n");
}

}  // namespace app
