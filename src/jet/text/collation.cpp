#include "jet/text/collation.h"

#include "jet/text/collation_tables.h"
#include "jet/text/text_key.h"

#include <algorithm>
#include <cstring>

namespace jet {
namespace {

using collation::Form;

constexpr std::byte kNoAccent{2};
constexpr std::byte kSectionEnd{1};

std::byte ToByte(std::size_t value) {
    return static_cast<std::byte>(value & 0xFF);
}

// The parts of a key that come after the primary weights; empty for most texts.
class KeyTail {
public:
    void AddElement(std::byte accent) {
        ++elements_;
        if (accent != kNoAccent) {
            accents_.resize(elements_ - 1 + marks_, kNoAccent);
            accents_.push_back(accent);
        }
    }
    void AddMark(std::byte addend) {
        // A mark before the first element is an element of its own.
        if (elements_ == 0) {
            accents_.push_back(addend);
            ++marks_;
            return;
        }
        accents_.resize(elements_ + marks_, kNoAccent);
        accents_.back() = ToByte(std::to_integer<std::size_t>(accents_.back()) +
                                 std::to_integer<std::size_t>(addend));
    }
    void AddKana(std::uint8_t code) { kana_.push_back(code); }
    void AddPositional(std::byte code) {
        const std::size_t place = 0x8000 | (7 + 4 * elements_);
        positional_.insert(positional_.end(),
                           {ToByte(place >> 8), ToByte(place), std::byte{6}, code});
    }

    void AppendTo(Bytes& key) {
        key.push_back(kSectionEnd);
        while (!accents_.empty() && accents_.back() <= kNoAccent)
            accents_.pop_back();
        key.insert(key.end(), accents_.begin(), accents_.end());
        if (!kana_.empty() || !positional_.empty()) {
            key.push_back(kSectionEnd);
            key.push_back(kSectionEnd);
            AppendKana(key);
        }
        if (!positional_.empty()) {
            key.push_back(kSectionEnd);
            key.insert(key.end(), positional_.begin(), positional_.end());
        }
        key.push_back(std::byte{0});
    }

private:
    void AppendKana(Bytes& key) {
        if (kana_.empty()) return;
        while (!kana_.empty() && kana_.back() == 3)
            kana_.pop_back();
        for (std::size_t i = 0; i < kana_.size(); i += 3) {
            std::size_t packed = 0x80;
            for (std::size_t k = 0; k < 3 && i + k < kana_.size(); ++k)
                packed |= static_cast<std::size_t>(kana_[i + k]) << (4 - 2 * k);
            key.push_back(ToByte(packed));
        }
        for (const unsigned byte : {0xFFU, 0x02U, 0x80U, 0xFFU, 0x80U})
            key.push_back(ToByte(byte));
        if (!positional_.empty()) key.push_back(std::byte{0xFF});
    }

    std::size_t elements_ = 0;
    std::size_t marks_ = 0;  // marks in front of the first element
    Bytes accents_;
    std::vector<std::uint8_t> kana_;
    Bytes positional_;
};

void AppendSpecial(const collation::Special& special, Bytes& key, KeyTail& tail) {
    for (std::size_t i = 0; i < special.size; ++i)
        key.push_back(std::byte{special.weights[i]});
    for (std::size_t i = 0; i < special.elements; ++i)
        tail.AddElement(std::byte{special.accents[i]});
    if (special.kana != 0) tail.AddKana(special.kana);
}

void AppendUnit(char16_t unit, Bytes& key, KeyTail& tail) {
    const std::uint32_t word = collation::WordOf(unit);
    const auto extra = ToByte(word >> 16);
    switch (static_cast<Form>(word >> 24)) {
    case Form::kIgnored:
        return;
    case Form::kOneByte:
        key.push_back(ToByte(word));
        return tail.AddElement(kNoAccent);
    case Form::kOneByteAccent:
        key.push_back(ToByte(word));
        return tail.AddElement(extra);
    case Form::kTwoBytes:
        key.insert(key.end(), {ToByte(word >> 8), ToByte(word)});
        return tail.AddElement(kNoAccent);
    case Form::kTwoBytesAccent:
        key.insert(key.end(), {ToByte(word >> 8), ToByte(word)});
        return tail.AddElement(extra);
    case Form::kPositional:
        return tail.AddPositional(extra);
    case Form::kMark:
        return tail.AddMark(extra);
    case Form::kSpecial:
        return AppendSpecial(collation::kSpecials[word & 0xFFFF], key, tail);
    }
}

std::u16string_view Significant(std::u16string_view text) {
    text = text.substr(0, kKeyUnits);
    const std::size_t last = text.find_last_not_of(u' ');
    return last == std::u16string_view::npos ? std::u16string_view() : text.substr(0, last + 1);
}

}  // namespace

void AppendTextKey(std::u16string_view text, Bytes& key) {
    KeyTail tail;
    for (const char16_t unit : Significant(text))
        AppendUnit(unit, key, tail);
    tail.AppendTo(key);
}

namespace {

std::weak_ordering CompareKeys(std::u16string_view a, std::u16string_view b) {
    // Not kept for the thread: what a thread has of its own is freed by mingw-w64's runtime before
    // it is destroyed, at the end of the thread.
    Bytes key_a;
    Bytes key_b;
    key_a.reserve(TextKeyRoom(a));
    key_b.reserve(TextKeyRoom(b));
    AppendTextKey(a, key_a);
    AppendTextKey(b, key_b);
    const int order = std::memcmp(key_a.data(), key_b.data(), std::min(key_a.size(), key_b.size()));
    if (order != 0) return order < 0 ? std::weak_ordering::less : std::weak_ordering::greater;
    return key_a.size() <=> key_b.size();
}

}  // namespace

std::weak_ordering CompareText(std::u16string_view a, std::u16string_view b) {
    if (a == b) return std::weak_ordering::equivalent;
    for (;;) {
        const std::weak_ordering order = CompareKeys(a, b);
        if (order != 0 || (a.size() <= kKeyUnits && b.size() <= kKeyUnits)) return order;
        a.remove_prefix(std::min(a.size(), kKeyUnits));
        b.remove_prefix(std::min(b.size(), kKeyUnits));
    }
}

void AppendTextKeyJet3(std::span<const std::byte> text, Bytes& key) {
    text = text.first(std::min(text.size(), kKeyUnits));
    while (!text.empty() && text.back() == std::byte{' '})
        text = text.first(text.size() - 1);
    std::vector<std::uint8_t> nibbles{0};
    std::size_t nibbles_used = 0;  // up to and including the last accent
    for (const std::byte byte : text) {
        const auto& weight = collation::kByteWeights[std::to_integer<std::size_t>(byte)];
        for (std::size_t i = 0; i < weight.size; ++i)
            key.push_back(std::byte{weight.weights[i]});
        if (weight.kind == 'L') nibbles.insert(nibbles.end(), weight.nibble, std::uint8_t{2});
        if (weight.kind == 'A') {
            nibbles.push_back(weight.nibble);
            nibbles_used = nibbles.size();
        }
    }
    if (nibbles_used == 0) {
        key.push_back(std::byte{0});
        return;
    }
    nibbles.resize(nibbles_used);
    nibbles.push_back(0);
    if (nibbles.size() % 2 != 0) nibbles.push_back(0);
    for (std::size_t i = 0; i < nibbles.size(); i += 2)
        key.push_back(ToByte(static_cast<std::size_t>(nibbles[i] << 4 | nibbles[i + 1])));
}

}  // namespace jet
