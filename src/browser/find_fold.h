// How Find compares texts: without letter case, without accents, in UTF-8. "Søren BRÜCKNER" and
// "soren bruckner" are equal.
#pragma once

#include <QtCore/QStringView>

#include <string>

namespace browser {

// Appends the folded `text`. It has no control characters: each becomes a space, so that any of
// them may separate folded texts. Half a surrogate pair becomes U+FFFD.
void AppendFolded(QStringView text, std::string& folded);

inline std::string Folded(QStringView text) {
    std::string folded;
    AppendFolded(text, folded);
    return folded;
}

}  // namespace browser
