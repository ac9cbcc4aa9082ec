// New GUIDs for autonumber columns of that type.
#pragma once

#include "jet/values/value.h"

namespace jet {

// Random, version 4.
Guid MakeRandomGuid();

}  // namespace jet
