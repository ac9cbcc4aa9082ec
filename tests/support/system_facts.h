// What tests cannot ask of every system alike. One backend for each, in linux/ and windows/.
#pragma once

#include <vector>

namespace test_support {

// A name of a file with such quotes as the system allows in names.
extern const char* const kQuotedName;

// Names of files that differ in letter case are those of different files.
extern const bool kNamesHaveLetterCase;

// The formats of pictures that this system's Qt reads and writes, of those that the program knows.
std::vector<const char*> PictureFormats();

}  // namespace test_support
