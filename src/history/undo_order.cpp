#include "history/undo_order.h"

#include <algorithm>
#include <unordered_map>

namespace history {
namespace {

// Takes the number out; the one looked for is nearly always the last.
bool Take(std::vector<std::uint64_t>& numbers, std::uint64_t number) {
    const auto found = std::find(numbers.rbegin(), numbers.rend(), number);
    if (found == numbers.rend()) return false;
    numbers.erase(std::next(found).base());
    return true;
}

}  // namespace

UndoOrder OrderOf(std::span<const Change> changes) {
    UndoOrder order;
    std::unordered_map<std::uint64_t, std::uint64_t> numbers;  // by id
    for (const Change& change : changes) {
        numbers[change.label.id] = change.number;
        if (change.label.undoes == 0) {
            order.undo.push_back(change.number);
            order.redo.clear();
            continue;
        }
        const auto undone = numbers.find(change.label.undoes);
        if (undone == numbers.end()) continue;  // it has left the history
        if (Take(order.undo, undone->second))
            order.redo.push_back(change.number);
        else if (Take(order.redo, undone->second))
            order.undo.push_back(change.number);
    }
    return order;
}

const Change& OriginOf(std::span<const Change> changes, const Change& change) {
    const Change* origin = &change;
    // An undo comes after what it undoes, so the walk goes backwards and ends.
    while (origin->label.undoes != 0) {
        const Change* const end = origin;
        const auto before = changes.first(static_cast<std::size_t>(end - changes.data()));
        const auto found = std::find_if(before.rbegin(), before.rend(), [&](const Change& other) {
            return other.label.id == end->label.undoes;
        });
        if (found == before.rend()) break;
        origin = &*found;
    }
    return *origin;
}

const Change* FindChange(std::span<const Change> changes, std::uint64_t number) {
    const auto found = std::ranges::lower_bound(changes, number, {}, &Change::number);
    return found == changes.end() || found->number != number ? nullptr : &*found;
}

}  // namespace history
