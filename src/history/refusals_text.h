// What an undo has left as it is, for a message box.
#pragma once

#include "history/put_back.h"

#include <QtCore/QString>

namespace history {

// The first of the refusals, and how many more there are; empty: there are none.
QString RefusalsText(const std::vector<Refusal>& refusals);

}  // namespace history
