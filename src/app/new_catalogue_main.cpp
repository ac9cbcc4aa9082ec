// tavolo-new-catalogue FILE: creates the empty catalogue that is delivered with the program. Run by
// the build. Its date is the time in SOURCE_DATE_EPOCH (seconds since 1970, UTC), so that a package
// is the same whenever it is built; now when that is not set.
#include "app/print_failure.h"
#include "base/status.h"
#include "catalogue/date_texts.h"
#include "catalogue/new_catalogue.h"
#include "platform/clock.h"
#include "platform/file_system.h"

#include <cstdio>
#include <filesystem>

namespace {

QDateTime CreationTime() {
    bool is_set = false;
    const qlonglong seconds = qEnvironmentVariable("SOURCE_DATE_EPOCH").toLongLong(&is_set);
    if (is_set) return QDateTime::fromSecsSinceEpoch(seconds, Qt::UTC);
    platform::SystemClock clock;
    return clock.Now();
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fputs(
            "usage: tavolo-new-catalogue FILE\nMakes an empty catalogue; FILE must not exist.\n",
            stderr);
        return 2;
    }
    const auto files = platform::MakeFileSystem();
    const base::Status made = catalogue::CreateEmptyCatalogue(
        *files, std::filesystem::path(argv[1]), catalogue::ToOleDate(CreationTime()));
    if (made.ok()) return 0;
    app::PrintFailure(argv[1], made);
    return 1;
}
