// The weights of characters in text keys; made from collation_data/ by
// scripts/make_collation_tables.py.
#pragma once

#include <cstdint>

namespace jet::collation {

// Sort order "General Legacy" of Jet 4. One word per UTF-16 unit: form << 24 | extra << 16 |
// weights.
enum class Form : std::uint8_t {
    kIgnored = 0,
    kOneByte = 1,
    kTwoBytes = 2,
    kOneByteAccent = 3,  // extra: the secondary byte
    kTwoBytesAccent = 4,
    kPositional = 5,  // extra: the code of the positional section
    kMark = 6,        // extra: added to the last secondary byte
    kSpecial = 7,     // weights: index into kSpecials
};

// Expansions and kana.
struct Special {
    std::uint8_t size;
    std::uint8_t weights[4];
    std::uint8_t elements;
    std::uint8_t accents[3];
    std::uint8_t kana;  // 0: no kana
};

extern const std::uint8_t kBlockOf[256];
extern const std::uint32_t kBlocks[][256];
extern const Special kSpecials[];

inline std::uint32_t WordOf(char16_t unit) {
    return kBlocks[kBlockOf[unit >> 8]][unit & 0xFF];
}

// Sort order "General" of Jet 3, one entry per byte of code page 1252.
struct ByteWeight {
    char kind;  // W, L or A: see the head of the data
    std::uint8_t size;
    std::uint8_t weights[2];
    std::uint8_t nibble;
};

extern const ByteWeight kByteWeights[256];

}  // namespace jet::collation
