// The two tables of jet_bench: lines that read and lines that write.
#pragma once

#include "jet/pages/file_system.h"

#include <filesystem>
#include <string>

namespace bench {

struct JetBench {
    jet::FileSystem& files;
    std::filesystem::path folder;
    int rows = 0;
    std::string only;  // lines whose name holds this text; empty: all

    std::filesystem::path jet_path() const { return folder / "catalogue.mdb"; }
    std::filesystem::path sqlite_path() const { return folder / "catalogue.sqlite"; }
    bool Wants(const std::string& line) const { return line.find(only) != std::string::npos; }
};

void BenchReading(const JetBench& bench);
void BenchWriting(const JetBench& bench);

}  // namespace bench
