// KeptEdit: an edit that was in progress when the system ended the program, in a file beside the
// catalogue until the next start, which goes on with it. The file may be lost without harm to the
// catalogue. Format: JSON, the texts by the numbers of the detail fields.
#pragma once

#include "base/status.h"
#include "browser/table_record.h"

#include <QtCore/QString>

#include <optional>

namespace browser {

struct KeptEdit {
    TableRecord record;  // the texts and check marks of the fields; its id says whose they are
    int tab = 0;         // the tab that was being edited
    bool operator==(const KeptEdit&) const = default;
};

// The file for this catalogue.
QString KeptEditFile(const QString& catalogue);

base::Status KeepEdit(const QString& file, const KeptEdit& edit);
// The edit, whose file is gone afterwards. nullopt: there is none. kCorruption: the file makes no
// sense; it is gone, too.
base::Result<std::optional<KeptEdit>> TakeKeptEdit(const QString& file);

}  // namespace browser
