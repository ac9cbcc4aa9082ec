// The machine's clock as the engine counts time.
#pragma once

namespace jet {

// Local time as days since 1899-12-30, in whole seconds.
double SystemNow();

// The year of a date that is written without one.
int CurrentYear();

}  // namespace jet
