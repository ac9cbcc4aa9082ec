// What tests cannot ask of every system alike. One backend for each, in linux/ and windows/.
#pragma once

namespace test_support {

// A name of a file with such quotes as the system allows in names.
extern const char* const kQuotedName;

// Names of files that differ in letter case are those of different files.
extern const bool kNamesHaveLetterCase;

}  // namespace test_support
