// Names and texts for the test data: invented, and the same on every machine.
#pragma once

#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace test_data {

class Invented {
public:
    explicit Invented(std::uint32_t seed) : random_(seed) {}

    std::size_t Below(std::size_t limit) { return random_() % limit; }
    // "Quiet Harbour"
    std::u16string Title();
    std::u16string Person();
    std::u16string Maker();
    // Words with a full stop at their end; `characters` at most.
    std::u16string Prose(std::size_t characters);
    // None of them 0: there mdb-export would end a short binary value.
    std::vector<std::byte> Bytes(std::size_t size);

private:
    std::mt19937 random_;
};

// "7" for 7.
std::u16string Digits(std::size_t number);

}  // namespace test_data
