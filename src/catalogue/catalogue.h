// Catalogue: what the commands work on.
#pragma once

namespace jet {
class Connection;
}
namespace platform {
class Clock;
class SettingsStore;
}  // namespace platform

namespace catalogue {

class LongRunner;
struct ProcessValues;

// Borrowed pointers; all live from Main to the end of the program.
struct Catalogue {
    jet::Connection* CatalogueConnection = nullptr;  // the only one of the process
    ProcessValues* values = nullptr;
    platform::SettingsStore* settings = nullptr;
    platform::Clock* clock = nullptr;
    LongRunner* runner = nullptr;  // a window's, as long as there is one
};

}  // namespace catalogue
