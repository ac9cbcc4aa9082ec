// NamesAreEqual: two texts with names of files, as the system takes them for the same.
#pragma once

#include "support/system_facts.h"

#include <QtCore/QString>

namespace test_support {

inline bool NamesAreEqual(const QString& one, const QString& other) {
    return one.compare(other, kNamesHaveLetterCase ? Qt::CaseSensitive : Qt::CaseInsensitive) == 0;
}

}  // namespace test_support
