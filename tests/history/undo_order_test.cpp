#include "history/undo_order.h"

#include <gtest/gtest.h>

namespace history {
namespace {

using Numbers = std::vector<std::uint64_t>;

// Changes 1, 2, 3... whose ids are 10, 20, 30...; each entry is the number that it undoes, or 0.
std::vector<Change> Made(const Numbers& undoes) {
    std::vector<Change> changes;
    for (std::size_t i = 0; i < undoes.size(); ++i) {
        Change change;
        change.number = i + 1;
        change.label.id = change.number * 10;
        change.label.undoes = undoes[i] * 10;
        changes.push_back(change);
    }
    return changes;
}

void ExpectOrder(const Numbers& undoes, const Numbers& undo, const Numbers& redo) {
    const UndoOrder order = OrderOf(Made(undoes));
    EXPECT_EQ(order.undo, undo);
    EXPECT_EQ(order.redo, redo);
}

TEST(UndoOrderTest, TheNewestIsUndoneFirst) {
    ExpectOrder({0, 0, 0}, {1, 2, 3}, {});
    ExpectOrder({0, 0, 0, 3}, {1, 2}, {4});
    ExpectOrder({0, 0, 0, 3, 2}, {1}, {4, 5});
}

TEST(UndoOrderTest, ARedoIsUndoneAgain) {
    ExpectOrder({0, 0, 2, 3}, {1, 4}, {});
    ExpectOrder({0, 0, 2, 3, 4}, {1}, {5});
}

TEST(UndoOrderTest, AnOlderChangeCanBeUndone) {
    ExpectOrder({0, 0, 1}, {2}, {3});
}

TEST(UndoOrderTest, ANewChangeLeavesNothingToRedo) {
    ExpectOrder({0, 0, 2, 0}, {1, 4}, {});
}

TEST(UndoOrderTest, WhatHasLeftTheHistoryIsNotMissed) {
    std::vector<Change> changes = Made({0, 0, 1, 2});
    changes.erase(changes.begin());
    const UndoOrder order = OrderOf(changes);
    EXPECT_EQ(order.undo, Numbers());
    EXPECT_EQ(order.redo, Numbers({4}));
}

TEST(UndoOrderTest, TheOriginIsWhatTheUserDid) {
    const std::vector<Change> changes = Made({0, 0, 2, 3});
    EXPECT_EQ(OriginOf(changes, changes[3]).number, 2U);
    EXPECT_EQ(OriginOf(changes, changes[0]).number, 1U);
    const std::vector<Change> rest(changes.begin() + 2, changes.end());
    EXPECT_EQ(OriginOf(rest, rest[1]).number, 3U);
    EXPECT_EQ(FindChange(rest, 4)->number, 4U);
    EXPECT_EQ(FindChange(rest, 2), nullptr);
}

}  // namespace
}  // namespace history
