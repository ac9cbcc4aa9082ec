// What the window says of the selection that the tree shows.
#pragma once

#include "catalogue/table_selection.h"

#include <QtCore/QString>

#include <cstdint>

namespace browser {

using catalogue::OpenSelection;
using catalogue::Selection;
using catalogue::WrongValue;

// The text of the count panel: "12 Tables in list.  ".
QString CountText(std::int64_t tables);

// The text of the tree's root: "Author = Some One", or the filter's text if it takes no value.
QString RootText(const QString& filter_text, const Selection& selection);

}  // namespace browser
