#include "support/encoded_file.h"

#include <utility>

namespace test_support {

void ApplyKeyStream(std::uint32_t key, std::span<std::byte> bytes) {
    unsigned char state[256];
    for (unsigned i = 0; i < 256; ++i)
        state[i] = static_cast<unsigned char>(i);
    for (unsigned i = 0, j = 0; i < 256; ++i) {
        j = (j + state[i] + (key >> 8 * (i % 4) & 0xFF)) & 0xFF;
        std::swap(state[i], state[j]);
    }
    unsigned i = 0;
    unsigned j = 0;
    for (std::byte& byte : bytes) {
        i = (i + 1) & 0xFF;
        j = (j + state[i]) & 0xFF;
        std::swap(state[i], state[j]);
        byte ^= std::byte{state[(state[i] + state[j]) & 0xFF]};
    }
}

void EncodeFile(std::span<std::byte> file, std::uint32_t key) {
    // Both masks, that of page 0 and this one, are XORs: their order does not matter.
    for (std::size_t i = 0; i < 4; ++i)
        file[0x3E + i] ^= static_cast<std::byte>(key >> 8 * i & 0xFF);
    const std::size_t page_size = file[0x14] == std::byte{0} ? 2048 : 4096;
    for (std::size_t page = 1; page < file.size() / page_size; ++page)
        ApplyKeyStream(key ^ static_cast<std::uint32_t>(page),
                       file.subspan(page * page_size, page_size));
}

}  // namespace test_support
