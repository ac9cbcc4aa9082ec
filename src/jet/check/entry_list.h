// EntryList: the entries of an index, of which a large table has millions, end to end in one piece
// of memory.
#pragma once

#include "jet/values/value.h"

#include <algorithm>
#include <cstddef>
#include <span>
#include <vector>

namespace jet::check {

class EntryList {
public:
    using Entry = std::span<const std::byte>;

    // A mark goes with its entry. Ends what operator[] has returned before.
    void Append(Entry entry, bool is_marked = false) {
        places_.push_back({bytes_.size(), static_cast<std::uint32_t>(entry.size()), is_marked});
        bytes_.insert(bytes_.end(), entry.begin(), entry.end());
    }

    bool empty() const { return places_.empty(); }
    std::size_t size() const { return places_.size(); }
    Entry operator[](std::size_t i) const { return At(places_[i]); }
    bool IsMarked(std::size_t i) const { return places_[i].is_marked; }
    Entry back() const { return At(places_.back()); }

    // `is_before`(Entry, Entry).
    template <typename IsBefore>
    void Sort(IsBefore is_before) {
        std::ranges::sort(places_,
                          [&](const Place& a, const Place& b) { return is_before(At(a), At(b)); });
    }

private:
    struct Place {
        std::size_t start;
        std::uint32_t size;
        bool is_marked;
    };
    Entry At(const Place& place) const { return Entry(bytes_).subspan(place.start, place.size); }

    Bytes bytes_;
    std::vector<Place> places_;
};

}  // namespace jet::check
