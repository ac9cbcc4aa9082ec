// tavolo-cli-documents KIND: prints one of the documents that the build makes of the table of
// commands: man, bash, zsh, fish, examples.
#include "cli/documents.h"

#include <cstdio>
#include <string_view>

int main(int argc, char** argv) {
    struct Document {
        std::string_view kind;
        std::string (*make)();
    };
    constexpr Document kDocuments[] = {{"man", cli::ManPage},
                                       {"bash", cli::BashCompletion},
                                       {"zsh", cli::ZshCompletion},
                                       {"fish", cli::FishCompletion},
                                       {"examples", cli::ExampleLines}};
    for (const Document& document : kDocuments)
        if (argc == 2 && document.kind == argv[1]) {
            const std::string text = document.make();
            return std::fwrite(text.data(), 1, text.size(), stdout) == text.size() ? 0 : 1;
        }
    std::fputs("usage: tavolo-cli-documents man|bash|zsh|fish|examples\n", stderr);
    return 2;
}
