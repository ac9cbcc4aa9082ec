// WorkloadValues: seeded random values for columns of every type, and mutations of what is there.
#pragma once

#include "jet/values/schema.h"

#include <random>
#include <string>

namespace jet::test {

class WorkloadValues {
public:
    WorkloadValues(unsigned seed, int jet_version) : random_(seed), jet4_(jet_version == 4) {}

    // Texts of columns of 255 characters have some 200, of those that take most bytes in a key.
    void MakeTextsLong() { long_texts_ = true; }

    // 0 .. count-1. Requires: count > 0.
    std::size_t Pick(std::size_t count) {
        return std::uniform_int_distribution<std::size_t>(0, count - 1)(random_);
    }
    bool OneIn(std::size_t count) { return Pick(count) == 0; }

    // Of the column's type, within its size, and no null where one is refused.
    Value Of(const ColumnDesign& column);
    // One that the column refuses when it can: null, empty, too long, outside of its rule.
    Value Refused(const ColumnDesign& column);
    // The same text in other letter case and with blanks behind it; other values as they are.
    Value OtherSpelling(const Value& value, const ColumnDesign& column);

private:
    std::u16string Text(std::size_t longest);
    std::u16string LongText();
    Value Number(const ColumnDesign& column);
    Value Binary(const ColumnDesign& column);

    std::mt19937 random_;
    bool jet4_;
    bool long_texts_ = false;
};

}  // namespace jet::test
