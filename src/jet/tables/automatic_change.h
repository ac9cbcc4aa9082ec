// What the program changes by itself, without being asked to, is no change of its own to the user:
// it belongs to the one before it and is undone with that. NamedChange is given this in place of
// the id of a change that is undone.
#pragma once

#include <cstdint>
#include <limits>

namespace jet {

inline constexpr std::uint64_t kAutomaticChange = std::numeric_limits<std::uint64_t>::max();

}  // namespace jet
