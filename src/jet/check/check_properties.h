// The property blobs of the catalogue (LvProp).
#pragma once

#include <cstddef>
#include <span>
#include <string>

namespace jet::check {

// What is wrong with the blob; empty: nothing.
std::string CheckProperties(std::span<const std::byte> blob, bool jet4);

}  // namespace jet::check
