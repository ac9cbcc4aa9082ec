#include "support/system_facts.h"

namespace test_support {

const char* const kQuotedName = "a 'quoted' name";
const bool kNamesHaveLetterCase = false;

// WebP comes with a plugin that is not built for Windows.
std::vector<const char*> PictureFormats() {
    return {"bmp", "jpg", "png"};
}

}  // namespace test_support
