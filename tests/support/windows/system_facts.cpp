#include "support/system_facts.h"

namespace test_support {

const char* const kQuotedName = "a 'quoted' name";
const bool kNamesHaveLetterCase = false;

}  // namespace test_support
