// FieldText: a field's value as text: empty for Null, dates as general dates, booleans as True and
// False.
#pragma once

#include "base/status.h"
#include "jet/recordset.h"

#include <QtCore/QString>

namespace catalogue {

QString FieldText(const jet::Value& value);
// The field `field` of the current row. An error when it cannot be read.
base::Result<QString> FieldText(jet::Recordset& rows, QStringView field);

}  // namespace catalogue
