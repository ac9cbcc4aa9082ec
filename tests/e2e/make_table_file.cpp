// make_table_file PATH [--text STREAM TEXT]... [--screenshot FILE] [--filler BYTES]: writes a table
// file through libgsf, for the end-to-end tests. Without --text and --screenshot the file carries
// no information.
#include "base/unicode.h"
#include "support/vpt_builder.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

namespace {

std::vector<std::byte> FileBytes(const char* path) {
    std::ifstream file(path, std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(file), {}};
    return test_support::BytesOf(bytes);
}

}  // namespace

int main(int argc, char** argv) {
    if (argc < 2) return 2;
    test_support::VptBuilder builder;
    for (int i = 2; i < argc; ++i) {
        const std::string option = argv[i];
        if (option == "--text" && i + 2 < argc) {
            builder.Text(base::ToUtf16(argv[i + 1]), base::ToUtf16(argv[i + 2]));
            i += 2;
        } else if (option == "--screenshot" && i + 1 < argc) {
            builder.Screenshot(FileBytes(argv[++i]));
        } else if (option == "--filler" && i + 1 < argc) {
            builder.Filler(std::strtoul(argv[++i], nullptr, 10));
        } else {
            std::fprintf(stderr, "unknown option %s\n", argv[i]);
            return 2;
        }
    }
    const auto written = builder.Write(argv[1]);
    if (!written.ok()) std::fprintf(stderr, "%s\n", written.message().c_str());
    return written.ok() ? 0 : 1;
}
