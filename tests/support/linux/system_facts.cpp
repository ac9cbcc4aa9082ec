#include "support/system_facts.h"

namespace test_support {

const char* const kQuotedName = "a \"quoted\" name";
const bool kNamesHaveLetterCase = true;

std::vector<const char*> PictureFormats() {
    return {"bmp", "jpg", "png", "webp"};
}

}  // namespace test_support
