// The machine's clock in the engine's own count.
#pragma once

namespace jet {

// Local time as days since 1899-12-30, in whole seconds.
double SystemNow();

// The year that completes a date of two parts.
int CurrentYear();

}  // namespace jet
