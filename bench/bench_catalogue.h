// BenchCatalogue: a fresh catalogue in a temporary folder, opened as the program opens it, for the
// benchmarks of commands.
#pragma once

#include "measure.h"

#include "catalogue/catalogue.h"
#include "catalogue/date_texts.h"
#include "catalogue/new_catalogue.h"
#include "catalogue/process_values.h"
#include "catalogue/start_up.h"
#include "jet/connection.h"
#include "platform/clock.h"
#include "platform/file_system.h"
#include "platform/settings_store.h"

#include <QtCore/QTemporaryDir>

#include <cstdlib>
#include <memory>
#include <string_view>
#include <vector>

namespace bench {

class BenchCatalogue {
public:
    BenchCatalogue() {
        values_.ApplicationFolder = folder_.path();
        catalogue_ = {&connection_, &values_, &settings_, &clock_};
        Require(catalogue::CreateEmptyCatalogue(
            *files_, folder_.filePath(QStringLiteral("pinball.mdb")).toStdString(),
            catalogue::ToOleDate(clock_.Now())));
        Require(catalogue::Main(catalogue_));
    }
    catalogue::Catalogue& get() { return catalogue_; }
    QString Path(const QString& name) const { return folder_.filePath(name); }
    void Execute(const QString& sql) {
        Require(connection_.Execute(sql.toStdU16String()).status());
    }

private:
    QTemporaryDir folder_;
    std::unique_ptr<jet::FileSystem> files_ = platform::MakeFileSystem();
    jet::Connection connection_{*files_};
    platform::SystemClock clock_;
    platform::NoSettings settings_;
    catalogue::ProcessValues values_;
    catalogue::Catalogue catalogue_;
};

// The number after `option` on the command line, else `fallback`.
inline int NumberOption(int argc, char** argv, const char* option, int fallback) {
    for (int i = 1; i + 1 < argc; ++i)
        if (std::string_view(argv[i]) == option) return std::atoi(argv[i + 1]);
    return fallback;
}

// All numbers after `option`, which may stand several times.
inline std::vector<int> NumberOptions(int argc, char** argv, const char* option) {
    std::vector<int> numbers;
    for (int i = 1; i + 1 < argc; ++i)
        if (std::string_view(argv[i]) == option) numbers.push_back(std::atoi(argv[i + 1]));
    return numbers;
}

}  // namespace bench
