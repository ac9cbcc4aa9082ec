#include "catalogue/typed_values.h"

#include "jet/values/conversions.h"
#include "platform/text_view.h"

namespace catalogue {

bool IsDate(const QString& text) {
    return jet::IsDate(platform::View(text));
}

bool IsNumeric(const QString& text) {
    return jet::IsNumeric(platform::View(text));
}

}  // namespace catalogue
