#include "jet/text/plain_text.h"

#include "jet/text/collation.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace jet {
namespace {

constexpr std::size_t kUnits = 256;  // a table of one byte's values; half of it is never plain

// The one-byte weight of each character; 0: it is not plain. The weights come from the collation's
// own keys: the key of a plain character is its weight, 01 (end of the weights), 00 (end of the
// key).
std::array<unsigned char, kUnits> MakeWeights() {
    std::array<unsigned char, kUnits> weights{};
    for (char16_t c = 0x20; c < 0x7F; ++c) {
        // The x keeps a blank from being ignored as a trailing one.
        const char16_t text[] = {c, u'x'};
        Bytes key;
        AppendTextKey(std::u16string_view(text, 2), key);
        if (key.size() == 4 && key[0] > std::byte{1} && key[2] == std::byte{1})
            weights[c] = std::to_integer<unsigned char>(key[0]);
    }
    return weights;
}

const std::array<unsigned char, kUnits>& Weights() {
    static const std::array<unsigned char, kUnits> weights = MakeWeights();
    return weights;
}

using WeightTable = std::array<unsigned char, kUnits>;

unsigned char WeightOf(const WeightTable& weights, char16_t unit) {
    return unit < kUnits ? weights[unit] : 0;
}
unsigned char WeightOf(const WeightTable& weights, char narrow) {
    return weights[static_cast<unsigned char>(narrow)];
}

template <typename Unit>
std::basic_string_view<Unit> Counting(std::basic_string_view<Unit> text) {
    text = text.substr(0, kKeyUnits);
    while (!text.empty() && text.back() == Unit{' '})
        text.remove_suffix(1);
    return text;
}

template <typename Unit>
bool AppendKey(std::basic_string_view<Unit> text, std::string& key) {
    const WeightTable& weights = Weights();
    text = Counting(text);
    const std::size_t begin = key.size();
    key.resize(begin + text.size() + 2);
    char* const to = key.data() + begin;
    const std::size_t size = text.size();
    for (std::size_t i = 0; i < size; ++i)
        to[i] = static_cast<char>(WeightOf(weights, text[i]));
    if (size > 0 && std::memchr(to, 0, size) != nullptr) {
        key.resize(begin);
        return false;
    }
    to[size] = '\1';  // behind it stands a zero
    return true;
}

template <typename Unit>
std::optional<std::weak_ordering> OrderOf(std::basic_string_view<Unit> text,
                                          std::string_view constant) {
    if (text.size() > kKeyUnits) return std::nullopt;
    const WeightTable& weights = Weights();
    text = Counting(text);
    const std::size_t common = std::min(text.size(), constant.size());
    std::weak_ordering order = text.size() <=> constant.size();
    std::size_t i = 0;
    for (; i < common; ++i) {
        const unsigned char weight = WeightOf(weights, text[i]);
        if (weight == 0) return std::nullopt;
        const auto own = static_cast<unsigned char>(constant[i]);
        if (weight == own) continue;
        order = weight <=> own;
        break;
    }
    // What follows must be plain, too: a mark there could belong to this character.
    for (; i < text.size(); ++i)
        if (WeightOf(weights, text[i]) == 0) return std::nullopt;
    return order;
}

}  // namespace

std::optional<std::weak_ordering> ComparePlain(std::u16string_view a, std::u16string_view b) {
    if (a.size() > kKeyUnits || b.size() > kKeyUnits) return std::nullopt;
    const auto& weights = Weights();
    a = Counting(a);
    b = Counting(b);
    const std::size_t common = std::min(a.size(), b.size());
    std::weak_ordering order = a.size() <=> b.size();
    bool decided = false;
    for (std::size_t i = 0; i < common; ++i) {
        const unsigned char x = WeightOf(weights, a[i]);
        const unsigned char y = WeightOf(weights, b[i]);
        if (x == 0 || y == 0) return std::nullopt;
        if (x == y || decided) continue;
        order = x <=> y;
        decided = true;
    }
    // What follows must be plain, too: a mark there could belong to the last common character.
    for (const char16_t unit : (a.size() > b.size() ? a : b).substr(common))
        if (WeightOf(weights, unit) == 0) return std::nullopt;
    return order;
}

bool AppendPlainKey(std::u16string_view text, std::string& key) {
    return AppendKey(text, key);
}

bool AppendPlainKey(std::string_view narrow, std::string& key) {
    return AppendKey(narrow, key);
}

std::optional<PlainText> PlainText::Of(std::u16string_view text) {
    PlainText plain;
    if (text.size() > kKeyUnits || !AppendPlainKey(text, plain.weights_)) return std::nullopt;
    plain.weights_.resize(plain.weights_.size() - 2);  // without the end
    return plain;
}

std::optional<std::weak_ordering> PlainText::Order(std::u16string_view text) const {
    return OrderOf(text, weights_);
}

std::optional<std::weak_ordering> PlainText::Order(std::string_view narrow) const {
    return OrderOf(narrow, weights_);
}

}  // namespace jet
