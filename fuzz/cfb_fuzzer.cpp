// Opens arbitrary bytes as a compound file and reads everything that can be reached.
#include "cfb/compound_file.h"

#include <cstdint>

namespace {

// Each storage counts as a step, so that a storage inside itself ends the walk.
constexpr int kMaxSteps = 2000;

void Walk(cfb::CompoundFile& file, const cfb::Element& storage, int& steps, int depth) {
    if (depth > 50) return;
    file.Find(storage, u"tableinfo").status().Ignore();
    file.List(storage).status().Ignore();
    for (const cfb::Element& member : file.ListReadable(storage)) {
        if (++steps > kMaxSteps) return;
        if (member.type == cfb::ElementType::kStorage)
            Walk(file, member, steps, depth + 1);
        else
            file.Read(member).status().Ignore();
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto* begin = reinterpret_cast<const std::byte*>(data);
    auto file = cfb::CompoundFile::Open(cfb::MakeMemorySource({begin, begin + size}));
    int steps = 0;
    if (file.ok()) Walk(**file, (*file)->root(), steps, 0);
    return 0;
}
