#include "jet/sql/plans/key_sorter.h"

#include "base/byte_reader.h"

#include <algorithm>
#include <array>
#include <span>

namespace jet::sql {
namespace {

constexpr std::size_t kWord = 8;
// From so many items on, spreading them over 256 buckets beats comparing them.
constexpr std::size_t kWorthSpreading = 192;

// Eight bytes of a row's key, zeros behind its end, and how many there are: kWord + 1 stands for
// all eight with more to come. A key that ends comes before one that goes on with zeros.
struct Item {
    std::uint64_t word = 0;
    std::uint32_t row = 0;
    std::uint32_t used = 0;

    bool operator<(const Item& other) const {
        if (word != other.word) return word < other.word;
        if (used != other.used) return used < other.used;
        return row < other.row;
    }
    bool SameWord(const Item& other) const { return word == other.word && used == other.used; }
    bool goes_on() const { return used > kWord; }
    std::size_t Byte(std::size_t i) const { return word >> (8 * (kWord - 1 - i)) & 0xFF; }
};

// Sorts items that came in the order of their rows by word, those used, row.
class WordSorter {
public:
    explicit WordSorter(std::size_t most) : scratch_(most) {}

    // Requires: the words are equal in their first `byte` bytes.
    void Sort(std::span<Item> items, std::size_t byte) {
        while (items.size() >= kWorthSpreading && byte < kWord) {
            std::array<std::uint32_t, 256> counts{};
            for (const Item& item : items)
                ++counts[item.Byte(byte)];
            ++byte;
            if (counts[items[0].Byte(byte - 1)] == items.size()) continue;
            return Spread(items, byte, counts);
        }
        std::sort(items.begin(), items.end());
    }

private:
    void Spread(std::span<Item> items, std::size_t byte, std::array<std::uint32_t, 256> counts) {
        std::array<std::uint32_t, 256> places{};
        for (std::size_t i = 1; i < places.size(); ++i)
            places[i] = places[i - 1] + counts[i - 1];
        for (const Item& item : items)
            scratch_[places[item.Byte(byte - 1)]++] = item;
        std::copy_n(scratch_.begin(), items.size(), items.begin());
        for (const std::uint32_t count : counts) {
            if (count > 1) Sort(items.first(count), byte);
            items = items.subspan(count);
        }
    }

    std::vector<Item> scratch_;
};

}  // namespace

// The items of all rows, and the groups of them that are not in order yet.
class KeySorter::Run {
public:
    explicit Run(const KeySorter& keys) : keys_(keys), items_(keys.size()), words_(keys.size()) {
        for (std::size_t i = 0; i < items_.size(); ++i)
            items_[i].row = static_cast<std::uint32_t>(i);
    }

    const std::vector<Item>& Sort() {
        if (!items_.empty()) open_.push_back({0, items_.size(), 0});
        while (!open_.empty()) {
            const Group group = open_.back();
            open_.pop_back();
            SortGroup(group);
        }
        return items_;
    }

private:
    // Rows whose keys are equal up to byte `depth`, in the order in which they came.
    struct Group {
        std::size_t begin = 0;
        std::size_t end = 0;
        std::size_t depth = 0;
    };

    void Load(Item& item, std::size_t depth) const {
        const std::span<const std::byte> rest = keys_.Key(item.row).subspan(depth);
        if (rest.size() > kWord) {
            item.word = base::LoadBig<std::uint64_t>(rest.data());
            item.used = kWord + 1;
            return;
        }
        std::array<std::byte, kWord> bytes{};
        std::ranges::copy(rest, bytes.begin());
        item.word = base::LoadBig<std::uint64_t>(bytes.data());
        item.used = static_cast<std::uint32_t>(rest.size());
    }

    // Sorts by the next word; what is equal in it and goes on stays open.
    void SortGroup(const Group& group) {
        const std::span items = std::span(items_).subspan(group.begin, group.end - group.begin);
        bool all_equal = true;
        for (Item& item : items) {
            Load(item, group.depth);
            all_equal = all_equal && item.SameWord(items[0]);
        }
        if (!all_equal) words_.Sort(items, 0);
        for (std::size_t first = 0; first < items.size();) {
            std::size_t last = first + 1;
            while (last < items.size() && items[last].SameWord(items[first]))
                ++last;
            if (last - first > 1 && items[first].goes_on())
                open_.push_back({group.begin + first, group.begin + last, group.depth + kWord});
            first = last;
        }
    }

    const KeySorter& keys_;
    std::vector<Item> items_;
    std::vector<Group> open_;
    WordSorter words_;
};

std::vector<std::uint32_t> KeySorter::Order() const {
    Run run(*this);
    const std::vector<Item>& items = run.Sort();
    std::vector<std::uint32_t> order(items.size());
    std::ranges::transform(items, order.begin(), [](const Item& item) { return item.row; });
    return order;
}

}  // namespace jet::sql
