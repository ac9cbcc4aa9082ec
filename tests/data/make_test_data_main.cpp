// make_test_data FOLDER: writes FOLDER/databases and FOLDER/tables.
#include "data/make_test_data.h"

#include <cstdio>
#include <utility>

int main(int argc, char** argv) {
    if (argc != 2) {
        std::fprintf(stderr, "usage: make_test_data FOLDER\n");
        return 2;
    }
    const std::filesystem::path folder = argv[1];
    const std::pair<const char*, base::Status (*)(const std::filesystem::path&)> parts[] = {
        {"databases", test_data::MakeDatabases}, {"tables", test_data::MakeTableFiles}};
    for (const auto& [name, make] : parts) {
        std::filesystem::create_directories(folder / name);
        const base::Status made = make(folder / name);
        if (made.ok()) continue;
        std::fprintf(stderr, "%s\n", made.message().c_str());
        return 1;
    }
    return 0;
}
