#include "jet/values/guid_source.h"

#include <random>

namespace jet {

Guid MakeRandomGuid() {
    std::random_device source;
    Guid guid;
    for (std::byte& byte : guid.bytes)
        byte = static_cast<std::byte>(source() & 0xFF);
    // Version in the third field (little endian), variant in the fourth.
    guid.bytes[7] = (guid.bytes[7] & std::byte{0x0F}) | std::byte{0x40};
    guid.bytes[8] = (guid.bytes[8] & std::byte{0x3F}) | std::byte{0x80};
    return guid;
}

}  // namespace jet
