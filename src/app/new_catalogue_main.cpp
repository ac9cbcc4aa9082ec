// tavolo-new-catalogue FILE: creates the empty catalogue that is delivered with the program. Run by
// the build.
#include "app/print_failure.h"
#include "base/status.h"
#include "catalogue/date_texts.h"
#include "catalogue/new_catalogue.h"
#include "platform/clock.h"
#include "platform/file_system.h"

#include <cstdio>
#include <filesystem>

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fputs(
            "usage: tavolo-new-catalogue FILE\nMakes an empty catalogue; FILE must not exist.\n",
            stderr);
        return 2;
    }
    const auto files = platform::MakeFileSystem();
    platform::SystemClock clock;
    const base::Status made = catalogue::CreateEmptyCatalogue(
        *files, std::filesystem::path(argv[1]), catalogue::ToOleDate(clock.Now()));
    if (made.ok()) return 0;
    app::PrintFailure(argv[1], made);
    return 1;
}
