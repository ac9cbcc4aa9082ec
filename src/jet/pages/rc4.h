// Rc4: the key stream that masks the header page and scrambles some columns of the catalog. An
// obstacle, not a protection.
#pragma once

#include <cstddef>
#include <span>

namespace jet {

// XORs `bytes` with the stream of `key`, from its start. Calling it again undoes it.
void ApplyRc4(std::span<const std::byte> key, std::span<std::byte> bytes);

}  // namespace jet
