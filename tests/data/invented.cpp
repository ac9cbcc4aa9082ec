#include "data/invented.h"

#include <array>

namespace test_data {
namespace {

constexpr std::array kAdjectives = {u"Quiet",  u"Copper", u"Wandering", u"Seventh", u"Hollow",
                                    u"Golden", u"Paper",  u"Midnight",  u"Gentle",  u"Broken"};
constexpr std::array kNouns = {u"Harbour", u"Lantern", u"Railway",  u"Orchard", u"Compass",
                               u"Circus",  u"Glacier", u"Windmill", u"Castle",  u"Comet"};
constexpr std::array kFirstNames = {u"Ada", u"Jürgen", u"Zoë", u"Milo", u"Søren", u"Inès", u"Otto"};
constexpr std::array kLastNames = {u"Marlow",   u"O'Dell",    u"Brückner", u"Vance",
                                   u"Perrault", u"Lindqvist", u"Ash-Weber"};
constexpr std::array kMakers = {u"Brightball", u"Kugelwerk", u"Silver & Sons", u"Élan",
                                u"North Pier Games"};
constexpr std::array kWords = {u"the",   u"ball",  u"left",  u"ramp",  u"lights", u"a",
                               u"bonus", u"after", u"three", u"hits",  u"target", u"opens",
                               u"lane",  u"drop",  u"spins", u"wheel", u"second", u"gate"};

}  // namespace

// One choice a statement: the order within an expression is the compiler's.
std::u16string Invented::Title() {
    const std::u16string noun = kNouns[Below(kNouns.size())];
    const std::u16string adjective = kAdjectives[Below(kAdjectives.size())];
    return adjective + u" " + noun;
}

std::u16string Invented::Person() {
    const std::u16string last = kLastNames[Below(kLastNames.size())];
    const std::u16string first = kFirstNames[Below(kFirstNames.size())];
    return first + u" " + last;
}

std::u16string Invented::Maker() {
    return kMakers[Below(kMakers.size())];
}

std::u16string Invented::Prose(std::size_t characters) {
    std::u16string text;
    while (true) {
        const std::u16string word = kWords[Below(kWords.size())];
        if (text.size() + word.size() + 2 > characters) break;
        text += (text.empty() ? u"" : u" ") + word;
    }
    return text + u".";
}

std::vector<std::byte> Invented::Bytes(std::size_t size) {
    std::vector<std::byte> bytes(size);
    for (std::byte& byte : bytes)
        byte = static_cast<std::byte>(1 + random_() % 255);
    return bytes;
}

std::u16string Digits(std::size_t number) {
    const std::string digits = std::to_string(number);
    return {digits.begin(), digits.end()};
}

}  // namespace test_data
