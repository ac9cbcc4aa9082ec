#include "catalogue/field_text.h"

#include "platform/text_view.h"

namespace catalogue {

QString FieldText(const jet::Value& value) {
    return platform::ToQString(jet::ToText(value));
}

base::Result<QString> FieldText(jet::Recordset& rows, QStringView field) {
    ASSIGN_OR_RETURN(const jet::Value value, rows.Fields(platform::View(field)));
    return FieldText(value);
}

}  // namespace catalogue
